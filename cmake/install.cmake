# Install rules, the CMake package and the pkg-config files.
#
# Components (one Debian package each, see cmake/packaging.cmake):
#   runtime      libispdsp.so.X.Y.Z and its SONAME link                 -> libispdspX
#   development  public headers, libispdsp.so, CMake package (ispdsp::ispdsp),
#                ispdsp.pc, the integration notes                        -> libispdsp-dev
#   host         the reference host layer libispdsp_host (library, header,
#                ispdsp::host, ispdsp-host.pc), the host tools and the
#                sample data                                             -> ispdsp-tools
#
#   cmake --install <build> --prefix <dir> [--component <name>]
#
# libispdsp.so leaves the host services OSA_* undefined on purpose: a consumer
# links libispdsp_host (ispdsp::host, ispdsp-host) or defines OSA_* itself.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

set(ISPDSP_CMAKE_INSTALL_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/ispdsp)
set(ISPDSP_PKGCONFIG_INSTALL_DIR ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

# ---- Libraries ----

# The include directories travel with the targets ($<INSTALL_INTERFACE:include>).
install(TARGETS ispdsp EXPORT ispdspTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
    COMPONENT runtime
    NAMELINK_COMPONENT development)

install(TARGETS ispdsp_host EXPORT ispdspHostTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
    COMPONENT host
    NAMELINK_COMPONENT host)

# ---- Headers ----

install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/ispdsp
  DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}
  COMPONENT development
  FILES_MATCHING PATTERN "*.h")
install(FILES ${PROJECT_SOURCE_DIR}/host/include/ispdsp_host/host.h
  DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/ispdsp_host
  COMPONENT host)

# ---- Host tools and sample data ----

# The tools find the libraries beside them in an installed tree, whatever the prefix.
file(RELATIVE_PATH ISPDSP_BIN_TO_LIB
  ${CMAKE_INSTALL_PREFIX}/${CMAKE_INSTALL_BINDIR} ${CMAKE_INSTALL_PREFIX}/${CMAKE_INSTALL_LIBDIR})
foreach(tool ispdsp-cfg ispdsp-sim)
  if(TARGET ${tool})
    set_target_properties(${tool} PROPERTIES INSTALL_RPATH "$ORIGIN/${ISPDSP_BIN_TO_LIB}")
    install(TARGETS ${tool} RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT host)
  endif()
endforeach()

install(DIRECTORY ${PROJECT_SOURCE_DIR}/data/sample/
  DESTINATION ${CMAKE_INSTALL_DATADIR}/ispdsp/sample
  COMPONENT host
  FILES_MATCHING PATTERN "*.bin" PATTERN "*.txt" PATTERN "*.json")

# Lays out a sandbox root (ISPDSP_ROOT) from the sample beside it.
install(PROGRAMS ${PROJECT_SOURCE_DIR}/scripts/prepare-sandbox.sh
  DESTINATION ${CMAKE_INSTALL_DATADIR}/ispdsp
  COMPONENT host)

install(FILES ${PROJECT_SOURCE_DIR}/docs/integration.md
  DESTINATION ${CMAKE_INSTALL_DOCDIR}
  COMPONENT development
  OPTIONAL)

# ---- CMake package: find_package(ispdsp [COMPONENTS host]) ----

install(EXPORT ispdspTargets
  NAMESPACE ispdsp::
  DESTINATION ${ISPDSP_CMAKE_INSTALL_DIR}
  COMPONENT development)
# A separate export set, so the driver's package stands alone where the
# reference host layer is not installed (a device image, the arm64 -dev package).
install(EXPORT ispdspHostTargets
  NAMESPACE ispdsp::
  DESTINATION ${ISPDSP_CMAKE_INSTALL_DIR}
  COMPONENT host)

configure_package_config_file(${CMAKE_CURRENT_LIST_DIR}/ispdspConfig.cmake.in
  ${PROJECT_BINARY_DIR}/package/ispdspConfig.cmake
  INSTALL_DESTINATION ${ISPDSP_CMAKE_INSTALL_DIR})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/package/ispdspConfigVersion.cmake
  VERSION ${PROJECT_VERSION}
  COMPATIBILITY SameMajorVersion)
install(FILES
  ${PROJECT_BINARY_DIR}/package/ispdspConfig.cmake
  ${PROJECT_BINARY_DIR}/package/ispdspConfigVersion.cmake
  DESTINATION ${ISPDSP_CMAKE_INSTALL_DIR}
  COMPONENT development)

# ---- pkg-config: ispdsp.pc, ispdsp-host.pc ----

# Written at install time, so `prefix` is the prefix actually installed to
# (cmake --install --prefix, or /usr inside a Debian package), not the one
# the build tree was configured with.
if(IS_ABSOLUTE "${CMAKE_INSTALL_LIBDIR}")
  set(ISPDSP_PC_LIBDIR "${CMAKE_INSTALL_LIBDIR}")
else()
  set(ISPDSP_PC_LIBDIR "\${prefix}/${CMAKE_INSTALL_LIBDIR}")
endif()
if(IS_ABSOLUTE "${CMAKE_INSTALL_INCLUDEDIR}")
  set(ISPDSP_PC_INCLUDEDIR "${CMAKE_INSTALL_INCLUDEDIR}")
else()
  set(ISPDSP_PC_INCLUDEDIR "\${prefix}/${CMAKE_INSTALL_INCLUDEDIR}")
endif()

function(ispdsp_install_pkgconfig name component)
  set(template ${PROJECT_BINARY_DIR}/package/${name}.pc.in)
  # First pass now: everything but the prefix (kept as @ISPDSP_PC_PREFIX@).
  set(ISPDSP_PC_PREFIX "@ISPDSP_PC_PREFIX@")
  configure_file(${CMAKE_CURRENT_FUNCTION_LIST_DIR}/${name}.pc.in ${template} @ONLY)
  set(generated ${PROJECT_BINARY_DIR}/package/${component}/${name}.pc)
  install(CODE "
    set(ISPDSP_PC_PREFIX \"\${CMAKE_INSTALL_PREFIX}\")
    configure_file(\"${template}\" \"${generated}\" @ONLY)
  " COMPONENT ${component})
  install(FILES ${generated} DESTINATION ${ISPDSP_PKGCONFIG_INSTALL_DIR} COMPONENT ${component})
endfunction()
ispdsp_install_pkgconfig(ispdsp development)
ispdsp_install_pkgconfig(ispdsp-host host)
