# What `cmake --install` gives: headers, the shared library, and the files by which find_package() and pkg-config find
# them. The simulator and the tool install themselves.
include(CMakePackageConfigHelpers)

set(NORV_BATTERY_CONFIG_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/norv-battery-info)

set_target_properties(norv-battery-headers PROPERTIES EXPORT_NAME battery-headers)
set_target_properties(norv-battery-info PROPERTIES EXPORT_NAME battery-info)
install(TARGETS norv-battery-headers EXPORT norv-battery-info-targets)
install(TARGETS norv-battery-info EXPORT norv-battery-info-targets
        RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
        ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/battery DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/norv/platform ${PROJECT_SOURCE_DIR}/include/norv/shared
        DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/norv)

# Windows hosts of other compilers make their import library from this.
if(WIN32)
  include(CExports)
  norv_c_exports(${PROJECT_SOURCE_DIR}/include/battery/norv_battery.h norv-battery-info.dll
                 ${PROJECT_BINARY_DIR}/norv-battery-info.def)
  install(FILES ${PROJECT_BINARY_DIR}/norv-battery-info.def DESTINATION ${CMAKE_INSTALL_LIBDIR})
endif()

install(EXPORT norv-battery-info-targets NAMESPACE norv:: DESTINATION ${NORV_BATTERY_CONFIG_DIR})
configure_package_config_file(
  ${CMAKE_CURRENT_LIST_DIR}/norv-battery-info-config.cmake.in
  ${PROJECT_BINARY_DIR}/norv-battery-info-config.cmake
  INSTALL_DESTINATION ${NORV_BATTERY_CONFIG_DIR}
  NO_SET_AND_CHECK_MACRO)
# Before 1.0 every minor version may change what hosts see.
write_basic_package_version_file(${PROJECT_BINARY_DIR}/norv-battery-info-config-version.cmake
                                 COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/norv-battery-info-config.cmake
              ${PROJECT_BINARY_DIR}/norv-battery-info-config-version.cmake
        DESTINATION ${NORV_BATTERY_CONFIG_DIR})

# The prefix is told from where the .pc file lies, so that an installed tree can be moved as a whole.
set(NORV_BATTERY_PC_DIR ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
file(RELATIVE_PATH NORV_BATTERY_PC_PREFIX /${NORV_BATTERY_PC_DIR} /)
string(REGEX REPLACE "/$" "" NORV_BATTERY_PC_PREFIX "${NORV_BATTERY_PC_PREFIX}")
configure_file(${CMAKE_CURRENT_LIST_DIR}/norv-battery-info.pc.in ${PROJECT_BINARY_DIR}/norv-battery-info.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/norv-battery-info.pc DESTINATION ${NORV_BATTERY_PC_DIR})
