# Debian packages, one per install component:
#   libidxbase0     the shared library (runtime)
#   libidxbase-dev  headers, the .so link, the CMake package, idxbase.pc (dev)
#   idxbase-tools   the idxbase program (tools)
# Build them with `cpack -G DEB` in the build directory.
set(CPACK_PACKAGE_NAME idxbase)
set(CPACK_PACKAGE_VENDOR "idxbase")
set(CPACK_PACKAGE_CONTACT "idxbase maintainers <idxbase@localhost>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "${PROJECT_DESCRIPTION}")
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_GENERATOR DEB)

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_ALL runtime dev tools)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION libs)

# The library's own dependencies (libc, libstdc++) come from dpkg-shlibdeps.
set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME libidxbase${PROJECT_VERSION_MAJOR})
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SHLIBDEPS ON)
set(CPACK_COMPONENT_RUNTIME_DESCRIPTION
  "${PROJECT_DESCRIPTION}\nThe shared library libidxbase.so.${PROJECT_VERSION_MAJOR}.")

set(CPACK_DEBIAN_DEV_PACKAGE_NAME libidxbase-dev)
set(CPACK_DEBIAN_DEV_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEV_PACKAGE_DEPENDS
  "libidxbase${PROJECT_VERSION_MAJOR} (= ${PROJECT_VERSION})")
set(CPACK_COMPONENT_DEV_DESCRIPTION
  "${PROJECT_DESCRIPTION}\nHeaders, CMake package and pkg-config file of idxbase.")

set(CPACK_DEBIAN_TOOLS_PACKAGE_NAME idxbase-tools)
set(CPACK_DEBIAN_TOOLS_PACKAGE_SECTION utils)
# dpkg-shlibdeps finds the program's system libraries; the library itself
# is found in the build tree and named here.
set(CPACK_DEBIAN_TOOLS_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${PROJECT_BINARY_DIR})
set(CPACK_DEBIAN_TOOLS_PACKAGE_DEPENDS
  "libidxbase${PROJECT_VERSION_MAJOR} (= ${PROJECT_VERSION})")
set(CPACK_COMPONENT_TOOLS_DESCRIPTION
  "${PROJECT_DESCRIPTION}\nThe idxbase command-line tool: checksums, locks, switches.")

include(CPack)
