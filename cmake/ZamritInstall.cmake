# The installed package, for find_package and for pkg-config.

include(CMakePackageConfigHelpers)

set(zamrit_package_dir "${CMAKE_INSTALL_LIBDIR}/cmake/zamrit")

install(
  TARGETS zamrit
  EXPORT zamritTargets
  FILE_SET HEADERS)
install(
  EXPORT zamritTargets
  NAMESPACE zamrit::
  DESTINATION "${zamrit_package_dir}")

configure_package_config_file("${CMAKE_CURRENT_LIST_DIR}/zamritConfig.cmake.in" zamritConfig.cmake
                              INSTALL_DESTINATION "${zamrit_package_dir}")
write_basic_package_version_file(zamritConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(FILES "${CMAKE_CURRENT_BINARY_DIR}/zamritConfig.cmake" "${CMAKE_CURRENT_BINARY_DIR}/zamritConfigVersion.cmake"
        DESTINATION "${zamrit_package_dir}")

# Relative to the file itself, so that the prefix may still change when the project is installed.
set(zamrit_pc_dir "${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig")
cmake_path(RELATIVE_PATH CMAKE_INSTALL_PREFIX BASE_DIRECTORY "${zamrit_pc_dir}" OUTPUT_VARIABLE zamrit_pc_prefix)
if(ZAMRIT_SCALAR)
  set(zamrit_pc_cflags " -DZM_SCALAR=1")
endif()
configure_file("${CMAKE_CURRENT_LIST_DIR}/zamrit.pc.in" zamrit.pc @ONLY)
install(FILES "${CMAKE_CURRENT_BINARY_DIR}/zamrit.pc" DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig")
