# `cmake --install` lays out the core for other CMake projects:
#   lib/libbvxcore.a, include/bvxcad/<folder>/<header>, lib/cmake/bvxcad/
# so that they write find_package(bvxcad) and link bvxcad::core. The headers
# keep their folders because they include each other as "buffer/CadBuf.h".
include(CMakePackageConfigHelpers)

set(BVX_PACKAGE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/bvxcad)

install(TARGETS bvxcore EXPORT bvxcadTargets
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})

# Table files (.def) and any .inc are included by the headers, so they go too.
# The hosts and the build tools are not part of the library; the GDI device
# only exists in Windows builds.
set(BVX_HEADER_EXCLUDES PATTERN hosts EXCLUDE PATTERN tools EXCLUDE)
if(NOT WIN32)
  list(APPEND BVX_HEADER_EXCLUDES PATTERN win32 EXCLUDE)
endif()
install(DIRECTORY ${PROJECT_SOURCE_DIR}/src/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/bvxcad
  FILES_MATCHING PATTERN "*.h" PATTERN "*.def" PATTERN "*.inc" ${BVX_HEADER_EXCLUDES})

if(TARGET bvxcad)
  install(TARGETS bvxcad RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
endif()

install(EXPORT bvxcadTargets NAMESPACE bvxcad:: DESTINATION ${BVX_PACKAGE_DIR})
configure_package_config_file(${CMAKE_CURRENT_LIST_DIR}/bvxcadConfig.cmake.in
  ${CMAKE_CURRENT_BINARY_DIR}/bvxcadConfig.cmake INSTALL_DESTINATION ${BVX_PACKAGE_DIR})
# Before 1.0 a minor version may change the interface.
write_basic_package_version_file(${CMAKE_CURRENT_BINARY_DIR}/bvxcadConfigVersion.cmake
  COMPATIBILITY SameMinorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/bvxcadConfig.cmake ${CMAKE_CURRENT_BINARY_DIR}/bvxcadConfigVersion.cmake
  DESTINATION ${BVX_PACKAGE_DIR})
