# An installed copy is found by find_package(tvmath) and by pkg-config.
include(CMakePackageConfigHelpers)

install(TARGETS tvmath EXPORT tvmath-targets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
  INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(DIRECTORY include/tvmath DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} FILES_MATCHING PATTERN "*.h")

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/tvmath)
install(EXPORT tvmath-targets NAMESPACE tvmath:: DESTINATION ${package_dir})
configure_package_config_file(cmake/tvmath-config.cmake.in ${PROJECT_BINARY_DIR}/tvmath-config.cmake
  INSTALL_DESTINATION ${package_dir})
# Before 1.0 every minor version may change the interface.
write_basic_package_version_file(${PROJECT_BINARY_DIR}/tvmath-config-version.cmake
  COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/tvmath-config.cmake ${PROJECT_BINARY_DIR}/tvmath-config-version.cmake
  DESTINATION ${package_dir})

# Relative to the file itself, so that the tree can be moved after installing.
file(RELATIVE_PATH pc_prefix "/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "/")
string(REGEX REPLACE "/$" "" pc_prefix "${pc_prefix}")
configure_file(cmake/tvmath.pc.in ${PROJECT_BINARY_DIR}/tvmath.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/tvmath.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
