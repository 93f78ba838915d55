include(CMakePackageConfigHelpers)

install(
  TARGETS velan
  EXPORT VelanTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  FILE_SET HEADERS)
install(
  EXPORT VelanTargets
  NAMESPACE Velan::
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/Velan)

write_basic_package_version_file(${PROJECT_BINARY_DIR}/VelanConfigVersion.cmake COMPATIBILITY SameMajorVersion)
file(WRITE ${PROJECT_BINARY_DIR}/VelanConfig.cmake "include(\"\${CMAKE_CURRENT_LIST_DIR}/VelanTargets.cmake\")\n")
install(FILES ${PROJECT_BINARY_DIR}/VelanConfig.cmake ${PROJECT_BINARY_DIR}/VelanConfigVersion.cmake
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/Velan)

configure_file(${PROJECT_SOURCE_DIR}/cmake/velan.pc.in ${PROJECT_BINARY_DIR}/velan.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/velan.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
