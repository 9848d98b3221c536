# Installation: the library, its headers, a CMake package and a pkg-config file.
include(CMakePackageConfigHelpers)

install(TARGETS idxbase EXPORT idxbaseTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
  INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(DIRECTORY include/idxbase DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})

set(IDXBASE_CMAKE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/idxbase)
install(EXPORT idxbaseTargets
  NAMESPACE idxbase::
  DESTINATION ${IDXBASE_CMAKE_DIR})
configure_package_config_file(cmake/idxbaseConfig.cmake.in
  ${PROJECT_BINARY_DIR}/idxbaseConfig.cmake
  INSTALL_DESTINATION ${IDXBASE_CMAKE_DIR})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/idxbaseConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES
  ${PROJECT_BINARY_DIR}/idxbaseConfig.cmake
  ${PROJECT_BINARY_DIR}/idxbaseConfigVersion.cmake
  DESTINATION ${IDXBASE_CMAKE_DIR})

# The pkg-config file finds the prefix from its own place, so an installed
# tree can be moved (as CI does with its staging install).
file(RELATIVE_PATH IDXBASE_PC_TO_PREFIX
  /prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig /prefix)
configure_file(cmake/idxbase.pc.in ${PROJECT_BINARY_DIR}/idxbase.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/idxbase.pc
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
