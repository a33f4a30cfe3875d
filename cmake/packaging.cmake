# What `cmake --install` puts where, and the two Debian packages built from it:
#   runtime  (libqm-api1)    the shared library, qm_sim with its private library, qm_latency
#   dev      (libqm-api-dev) headers, static library, CMake package, pkg-config file, examples
# Install rules elsewhere that name no component land in runtime (the top-level default).
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

set(QM_CMAKE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/qm_api)
# qm_sim's library is no API of ours: it lives beside the tools, not on the linker's path.
set(QM_PRIVATE_LIBDIR ${CMAKE_INSTALL_LIBDIR}/qm_api)

# C projects link the static library with the C driver, which adds no C++ runtime of its own.
target_link_libraries(qm_api_static PRIVATE stdc++ m)

install(TARGETS qm_api EXPORT qm_apiTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT runtime NAMELINK_COMPONENT dev)
install(TARGETS qm_api_static EXPORT qm_apiTargets
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT dev)
# Only the public headers, under one directory; internal and kinematics headers stay in the tree.
install(DIRECTORY src/Application/public_headers/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/qm_api
  COMPONENT dev FILES_MATCHING PATTERN "*.h")

install(EXPORT qm_apiTargets NAMESPACE qm_api:: DESTINATION ${QM_CMAKE_DIR} COMPONENT dev)
configure_package_config_file(cmake/qm_apiConfig.cmake.in ${CMAKE_CURRENT_BINARY_DIR}/qm_apiConfig.cmake
  INSTALL_DESTINATION ${QM_CMAKE_DIR})
# The soname carries the major version, so a find_package(qm_api 1.x) accepts any 1.y >= 1.x.
write_basic_package_version_file(${CMAKE_CURRENT_BINARY_DIR}/qm_apiConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/qm_apiConfig.cmake ${CMAKE_CURRENT_BINARY_DIR}/qm_apiConfigVersion.cmake
  DESTINATION ${QM_CMAKE_DIR} COMPONENT dev)

# The pkg-config file names the prefix it is installed under, which `cmake --install --prefix`
# and CPack only settle at install time.
set(QM_PC_PREFIX @QM_PC_PREFIX@)  # kept for the install-time pass
configure_file(cmake/qm_api.pc.in ${CMAKE_CURRENT_BINARY_DIR}/qm_api.pc.in @ONLY)
install(CODE "set(QM_PC_PREFIX \"\${CMAKE_INSTALL_PREFIX}\")
  configure_file(\"${CMAKE_CURRENT_BINARY_DIR}/qm_api.pc.in\" \"${CMAKE_CURRENT_BINARY_DIR}/qm_api.pc\" @ONLY)"
  COMPONENT dev)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/qm_api.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT dev)

file(GLOB QM_EXAMPLE_SOURCES CONFIGURE_DEPENDS examples/*.c examples/*.cpp examples/*.py)
install(FILES ${QM_EXAMPLE_SOURCES} DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/doc/libqm-api-dev/examples COMPONENT dev)

if(TARGET qm_sim)
  file(RELATIVE_PATH QM_BIN_TO_PRIVATE /${CMAKE_INSTALL_BINDIR} /${QM_PRIVATE_LIBDIR})
  set_target_properties(qm_sim PROPERTIES INSTALL_RPATH "$ORIGIN/${QM_BIN_TO_PRIVATE}")
  install(TARGETS qm_sim RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT runtime)
  install(TARGETS qm_sim_lib LIBRARY DESTINATION ${QM_PRIVATE_LIBDIR} COMPONENT runtime)
endif()
if(TARGET qm_latency)
  install(TARGETS qm_latency RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT runtime)
endif()

# Debian packages: `cpack -G DEB` in a build configured with CMAKE_INSTALL_PREFIX=/usr
# (scripts/package.sh does both).
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME qm-api)
set(CPACK_PACKAGE_VENDOR "qm")
set(CPACK_PACKAGE_CONTACT "qm developers <dev@qm.local>")
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_COMPONENTS_ALL runtime dev)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_ENABLE_COMPONENT_DEPENDS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)

set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME libqm-api1)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SHLIBDEPS ON)  # libcjson1, libc6, libstdc++6, libgcc-s1 at their versions
set(CPACK_DEBIAN_RUNTIME_DESCRIPTION "client library for six- and seven-axis robot arms
libqm_api.so.1 drives arm controllers over TCP through a flat C API and the C++ facade
QM_Service, receives their realtime state push over UDP and computes kinematics locally.
Also holds qm_sim, a controller simulator, and qm_latency.")

set(CPACK_DEBIAN_DEV_PACKAGE_NAME libqm-api-dev)
set(CPACK_DEBIAN_DEV_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEV_PACKAGE_DEPENDS "libcjson-dev")
set(CPACK_COMPONENT_DEV_DEPENDS runtime)
set(CPACK_DEBIAN_DEV_DESCRIPTION "client library for robot arms - development files
Headers, the static library, the CMake package (find_package(qm_api)), the pkg-config
file qm_api.pc and example programs for libqm_api.")

include(CPack)
