# idxbase_toolkit: the reusable parts of the idxbase tool (the typed CSV
# reader, record tables and their evaluation, input files, the command
# line), one static library linked by the tool, its tests and the fuzz
# targets; its headers are tools/*.h. Like the tool, it uses the library's
# public headers only. It leaves the choice of the library to whoever
# links it: the tool takes the shared library, the tests and fuzz targets
# the library's objects.
add_library(idxbase_toolkit STATIC
  ${PROJECT_SOURCE_DIR}/tools/byte_units.cpp
  ${PROJECT_SOURCE_DIR}/tools/chunk_filter.cpp
  ${PROJECT_SOURCE_DIR}/tools/command_line.cpp
  ${PROJECT_SOURCE_DIR}/tools/csv_table.cpp
  ${PROJECT_SOURCE_DIR}/tools/csv_values.cpp
  ${PROJECT_SOURCE_DIR}/tools/input_file.cpp
  ${PROJECT_SOURCE_DIR}/tools/record_table.cpp)
target_include_directories(idxbase_toolkit
  PUBLIC ${PROJECT_SOURCE_DIR}/tools ${PROJECT_SOURCE_DIR}/include)
idxbase_set_warnings(idxbase_toolkit)
