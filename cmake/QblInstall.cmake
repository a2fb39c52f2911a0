# cmake --install: headers under the names they are included by, the library,
# pkg-config and CMake package files.
include(CMakePackageConfigHelpers)
set(_cmakedir ${CMAKE_INSTALL_LIBDIR}/cmake/QBLCore)
install(TARGETS QBLCore EXPORT QBLCoreTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT runtime NAMELINK_COMPONENT development
  FILE_SET HEADERS DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT development)
install(EXPORT QBLCoreTargets NAMESPACE QBLCore:: DESTINATION ${_cmakedir} COMPONENT development)
configure_package_config_file(cmake/QBLCoreConfig.cmake.in QBLCoreConfig.cmake
  INSTALL_DESTINATION ${_cmakedir})
write_basic_package_version_file(QBLCoreConfigVersion.cmake COMPATIBILITY SameMajorVersion)
configure_file(cmake/qblcore.pc.in qblcore.pc @ONLY)
install(FILES "${CMAKE_BINARY_DIR}/QBLCoreConfig.cmake" "${CMAKE_BINARY_DIR}/QBLCoreConfigVersion.cmake"
  DESTINATION ${_cmakedir} COMPONENT development)
install(FILES "${CMAKE_BINARY_DIR}/qblcore.pc"
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT development)
