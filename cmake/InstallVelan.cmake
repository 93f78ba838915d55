# Installs the library, its headers, its CMake package and its pkg-config file. The folder may be moved afterwards: both
# files find the rest from where they stand.
include(CMakePackageConfigHelpers)

install(
  TARGETS velan
  EXPORT VelanTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
  FILE_SET HEADERS)
install(
  EXPORT VelanTargets
  NAMESPACE Velan::
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/Velan)

# What stands behind the static library its users have to link, too.
get_property(requires GLOBAL PROPERTY VELAN_PC_REQUIRES)
get_property(libraries GLOBAL PROPERTY VELAN_PC_LIBRARIES)
list(JOIN requires " " PC_REQUIRES)
list(JOIN libraries " " libraries)
if(velan_kind STREQUAL "STATIC_LIBRARY")
  get_property(DEPENDENCIES GLOBAL PROPERTY VELAN_FIND_DEPENDENCIES)
  set(PC_PUBLIC_LIBRARIES "${libraries} -lstdc++ -pthread")
else()
  set(PC_PRIVATE .private)
  set(PC_PRIVATE_LIBRARIES "${libraries} -lstdc++ -pthread")
endif()

# A folder of the installation as the pkg-config file names it.
function(velan_pc_folder variable folder)
  if(IS_ABSOLUTE ${folder})
    set(${variable} ${folder} PARENT_SCOPE)
  else()
    set(${variable} "\${prefix}/${folder}" PARENT_SCOPE)
  endif()
endfunction()
velan_pc_folder(PC_LIBDIR ${CMAKE_INSTALL_LIBDIR})
velan_pc_folder(PC_INCLUDEDIR ${CMAKE_INSTALL_INCLUDEDIR})
if(IS_ABSOLUTE ${CMAKE_INSTALL_LIBDIR})
  set(PC_PREFIX ${CMAKE_INSTALL_PREFIX})
else()
  cmake_path(RELATIVE_PATH CMAKE_INSTALL_PREFIX BASE_DIRECTORY
             ${CMAKE_INSTALL_PREFIX}/${CMAKE_INSTALL_LIBDIR}/pkgconfig OUTPUT_VARIABLE up)
  set(PC_PREFIX "\${pcfiledir}/${up}")
endif()
configure_file(${PROJECT_SOURCE_DIR}/cmake/velan.pc.in ${PROJECT_BINARY_DIR}/velan.pc @ONLY)
configure_file(${PROJECT_SOURCE_DIR}/cmake/VelanConfig.cmake.in ${PROJECT_BINARY_DIR}/VelanConfig.cmake @ONLY)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/VelanConfigVersion.cmake COMPATIBILITY SameMajorVersion)

install(FILES ${PROJECT_BINARY_DIR}/VelanConfig.cmake ${PROJECT_BINARY_DIR}/VelanConfigVersion.cmake
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/Velan)
install(FILES ${PROJECT_BINARY_DIR}/velan.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
