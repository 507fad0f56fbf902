# What `cmake --install` installs: the header, both libraries, the CMake package and the pkg-config file. The installed
# tree can be moved. Neither package names the prefix, unless an installation folder was given as an absolute path.
include(CMakePackageConfigHelpers)

install(FILES ${ORV_PUBLIC_DIR}/orv.h DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(TARGETS orv orv_static EXPORT orvTargets
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})

# find_package(orv) with the targets orv::orv and orv::orv_static
set(ORV_PACKAGE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/orv)
configure_package_config_file(${CMAKE_CURRENT_LIST_DIR}/orvConfig.cmake.in ${PROJECT_BINARY_DIR}/orvConfig.cmake
  INSTALL_DESTINATION ${ORV_PACKAGE_DIR} NO_SET_AND_CHECK_MACRO)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/orvConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/orvConfig.cmake ${PROJECT_BINARY_DIR}/orvConfigVersion.cmake
  DESTINATION ${ORV_PACKAGE_DIR})
install(EXPORT orvTargets NAMESPACE orv:: DESTINATION ${ORV_PACKAGE_DIR})

# pkg-config orv
if(IS_ABSOLUTE ${CMAKE_INSTALL_LIBDIR})
  set(ORV_PC_PREFIX ${CMAKE_INSTALL_PREFIX})
  set(ORV_PC_LIBDIR ${CMAKE_INSTALL_LIBDIR})
else()
  file(RELATIVE_PATH ORV_PC_PREFIX /prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig /prefix)
  string(REGEX REPLACE "/$" "" ORV_PC_PREFIX "\${pcfiledir}/${ORV_PC_PREFIX}")
  set(ORV_PC_LIBDIR "\${prefix}/${CMAKE_INSTALL_LIBDIR}")
endif()
if(IS_ABSOLUTE ${CMAKE_INSTALL_INCLUDEDIR})
  set(ORV_PC_INCLUDEDIR ${CMAKE_INSTALL_INCLUDEDIR})
else()
  set(ORV_PC_INCLUDEDIR "\${prefix}/${CMAKE_INSTALL_INCLUDEDIR}")
endif()
configure_file(${CMAKE_CURRENT_LIST_DIR}/orv.pc.in ${PROJECT_BINARY_DIR}/orv.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/orv.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
