# cmake --install: headers under the names they are included by, the library,
# pkg-config and CMake package files.
include(CMakePackageConfigHelpers)
set(_cmakedir ${CMAKE_INSTALL_LIBDIR}/cmake/QBLCore)
install(TARGETS QBLCore EXPORT QBLCoreTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT runtime NAMELINK_COMPONENT development
  FILE_SET HEADERS DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT development)
install(TARGETS qblmsgc EXPORT QBLCoreTargets DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT development)
install(EXPORT QBLCoreTargets NAMESPACE QBLCore:: DESTINATION ${_cmakedir} COMPONENT development)
configure_package_config_file(cmake/QBLCoreConfig.cmake.in QBLCoreConfig.cmake
  INSTALL_DESTINATION ${_cmakedir})
write_basic_package_version_file(QBLCoreConfigVersion.cmake COMPATIBILITY SameMajorVersion)
# qblcore.pc finds its prefix from where it lies itself, so that --prefix and moving are right.
if(IS_ABSOLUTE "${CMAKE_INSTALL_LIBDIR}")
  set(_pc_prefix "${CMAKE_INSTALL_PREFIX}")
else()
  file(RELATIVE_PATH _pc_prefix "/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "/")
  string(REGEX REPLACE "/$" "" _pc_prefix "\${pcfiledir}/${_pc_prefix}")
endif()
foreach(_dir LIBDIR INCLUDEDIR)
  set(_pc_${_dir} "${CMAKE_INSTALL_${_dir}}")
  if(NOT IS_ABSOLUTE "${_pc_${_dir}}")
    string(PREPEND _pc_${_dir} "\${prefix}/")
  endif()
endforeach()
configure_file(cmake/qblcore.pc.in qblcore.pc @ONLY)
install(FILES "${CMAKE_BINARY_DIR}/QBLCoreConfig.cmake" "${CMAKE_BINARY_DIR}/QBLCoreConfigVersion.cmake"
  cmake/QblCatalog.cmake
  DESTINATION ${_cmakedir} COMPONENT development)
install(FILES "${CMAKE_BINARY_DIR}/qblcore.pc"
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT development)

# What has to be built for cmake --install.
add_custom_target(installed DEPENDS QBLCore qblmsgc)
add_dependencies(installed qblpluginmsgs_files qblmsgcmsgs_files)
