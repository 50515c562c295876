# Installs the library, the public headers under include/quillon/, a CMake package
# (find_package(quillon), target quillon::quillon) and quillon.pc. Both package files locate
# the prefix from their own place, so an installed tree can be moved or installed with
# `cmake --install --prefix`.
if(QN_FUZZ)
  # The fuzz build's static, instrumented library is not something to ship.
  return()
endif()
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

set(QN_CMAKE_PACKAGE_DIR "${CMAKE_INSTALL_LIBDIR}/cmake/quillon")
set(QN_PKGCONFIG_DIR "${CMAKE_INSTALL_LIBDIR}/pkgconfig")

install(TARGETS quillon EXPORT quillonTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
  INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(DIRECTORY include/quillon DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}
  FILES_MATCHING PATTERN "*.h")
install(EXPORT quillonTargets NAMESPACE quillon:: DESTINATION ${QN_CMAKE_PACKAGE_DIR})
configure_package_config_file(cmake/quillonConfig.cmake.in
  "${CMAKE_CURRENT_BINARY_DIR}/quillonConfig.cmake"
  INSTALL_DESTINATION ${QN_CMAKE_PACKAGE_DIR})
write_basic_package_version_file("${CMAKE_CURRENT_BINARY_DIR}/quillonConfigVersion.cmake"
  COMPATIBILITY SameMajorVersion)
install(FILES "${CMAKE_CURRENT_BINARY_DIR}/quillonConfig.cmake"
  "${CMAKE_CURRENT_BINARY_DIR}/quillonConfigVersion.cmake"
  DESTINATION ${QN_CMAKE_PACKAGE_DIR})

# The .pc file names its prefix relative to ${pcfiledir} (the folder pkg-config found it in).
file(RELATIVE_PATH QN_PC_TO_PREFIX "/prefix/${QN_PKGCONFIG_DIR}" "/prefix")
string(REGEX REPLACE "/$" "" QN_PC_TO_PREFIX "${QN_PC_TO_PREFIX}")
configure_file(cmake/quillon.pc.in "${CMAKE_CURRENT_BINARY_DIR}/quillon.pc" @ONLY)
install(FILES "${CMAKE_CURRENT_BINARY_DIR}/quillon.pc" DESTINATION ${QN_PKGCONFIG_DIR})
