# An overlay port. It builds from the source tree that contains it.
get_filename_component(SOURCE_PATH "${CMAKE_CURRENT_LIST_DIR}/../.." ABSOLUTE)
string(COMPARE EQUAL "${VCPKG_LIBRARY_LINKAGE}" "static" QBLCORE_STATIC)
vcpkg_cmake_configure(SOURCE_PATH "${SOURCE_PATH}"
  OPTIONS -DBUILD_TESTING=OFF -DQBLCORE_STATIC=${QBLCORE_STATIC})
vcpkg_cmake_install()
vcpkg_copy_tools(TOOL_NAMES qblconv qblmsgc AUTO_CLEAN)
vcpkg_cmake_config_fixup(PACKAGE_NAME QBLCore CONFIG_PATH lib/cmake/QBLCore)
vcpkg_fixup_pkgconfig()
file(REMOVE_RECURSE "${CURRENT_PACKAGES_DIR}/debug/include" "${CURRENT_PACKAGES_DIR}/debug/share")
vcpkg_install_copyright(FILE_LIST "${SOURCE_PATH}/LICENSE")
