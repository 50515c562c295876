# Installs the library, the public headers under include/quillon/, a CMake package
# (find_package(quillon), target quillon::quillon) and quillon.pc.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

install(TARGETS quillon EXPORT quillonTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(DIRECTORY include/quillon DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}
  FILES_MATCHING PATTERN "*.h")
install(EXPORT quillonTargets NAMESPACE quillon::
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/quillon)
configure_package_config_file(cmake/quillonConfig.cmake.in
  "${CMAKE_CURRENT_BINARY_DIR}/quillonConfig.cmake"
  INSTALL_DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/quillon)
write_basic_package_version_file("${CMAKE_CURRENT_BINARY_DIR}/quillonConfigVersion.cmake"
  COMPATIBILITY SameMajorVersion)
install(FILES "${CMAKE_CURRENT_BINARY_DIR}/quillonConfig.cmake"
  "${CMAKE_CURRENT_BINARY_DIR}/quillonConfigVersion.cmake"
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/quillon)
configure_file(cmake/quillon.pc.in "${CMAKE_CURRENT_BINARY_DIR}/quillon.pc" @ONLY)
install(FILES "${CMAKE_CURRENT_BINARY_DIR}/quillon.pc"
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
