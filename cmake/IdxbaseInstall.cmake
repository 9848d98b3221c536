# Installation: the library, its headers, a CMake package and a pkg-config file.
# Each file belongs to a component, one per binary package: "runtime" (the
# versioned shared library), "dev" (headers, the .so link, the CMake package
# and the pkg-config file) and "tools" (the idxbase program, installed by
# tools/).
include(CMakePackageConfigHelpers)

install(TARGETS idxbase EXPORT idxbaseTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT runtime NAMELINK_COMPONENT dev
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT dev
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT runtime
  INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(DIRECTORY include/idxbase DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT dev)

set(IDXBASE_CMAKE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/idxbase)
install(EXPORT idxbaseTargets
  NAMESPACE idxbase::
  DESTINATION ${IDXBASE_CMAKE_DIR}
  COMPONENT dev)
configure_package_config_file(cmake/idxbaseConfig.cmake.in
  ${PROJECT_BINARY_DIR}/idxbaseConfig.cmake
  INSTALL_DESTINATION ${IDXBASE_CMAKE_DIR})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/idxbaseConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES
  ${PROJECT_BINARY_DIR}/idxbaseConfig.cmake
  ${PROJECT_BINARY_DIR}/idxbaseConfigVersion.cmake
  DESTINATION ${IDXBASE_CMAKE_DIR}
  COMPONENT dev)

# The pkg-config file finds the prefix from its own place, so an installed
# tree can be moved (as CI does with its staging install).
file(RELATIVE_PATH IDXBASE_PC_TO_PREFIX
  /prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig /prefix)
configure_file(cmake/idxbase.pc.in ${PROJECT_BINARY_DIR}/idxbase.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/idxbase.pc
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig
  COMPONENT dev)

include(IdxbasePackaging)
