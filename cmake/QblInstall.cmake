# cmake --install: installs the headers under the names that #include uses, the library, the tools,
# pkg-config and CMake package files, the files that programs read at run time, man pages, examples.
#
# One macro defines the layout and is used twice. By default it makes a relocatable tree with two
# components: runtime and development. For the Debian packages (QblPackages.cmake) it puts the
# library into the directory of its architecture and makes one component per package; a plain
# cmake --install skips these components.
include(CMakePackageConfigHelpers)

# The programs in bin/. Their catalogues are in msgs/, their manuals in man/.
set(_tools qblconv qblmsgc)
set(_manuals ${_tools})
list(TRANSFORM _manuals REPLACE "(.+)" "man/\\1.1")
set(_formats man/bmf.5 man/i18n_res.xml.5 man/I18NPooledString.conf.5)
set(_printers "${PROJECT_SOURCE_DIR}/gdb/qblcore.py")
set(_static_files)
if(QBLCORE_STATIC)
  set(_static_files cmake/QblLibraries.cmake)
endif()
get_property(_resources GLOBAL PROPERTY QBL_RESOURCE_FILES)
get_property(_catalogues GLOBAL PROPERTY QBL_CATALOGUES)
foreach(_shell bash zsh fish)
  get_property(_completions_${_shell} GLOBAL PROPERTY QBL_COMPLETIONS_${_shell})
endforeach()

# Writes qblcore.pc. If libdir is relative, qblcore.pc computes its prefix from its own directory. So
# its paths stay correct after cmake --install --prefix, and after the tree is moved.
function(_qbl_configure_pc libdir output)
  if(IS_ABSOLUTE "${libdir}")
    set(_pc_prefix "${CMAKE_INSTALL_PREFIX}")
  else()
    file(RELATIVE_PATH _pc_prefix "/${libdir}/pkgconfig" "/")
    string(REGEX REPLACE "/$" "" _pc_prefix "\${pcfiledir}/${_pc_prefix}")
  endif()
  set(_pc_LIBDIR "${libdir}")
  set(_pc_INCLUDEDIR "${CMAKE_INSTALL_INCLUDEDIR}")
  set(_pc_BINDIR "${CMAKE_INSTALL_BINDIR}")
  set(_pc_STATIC)
  if(QBLCORE_STATIC)
    set(_pc_STATIC " -Wl,-z,nodelete")
  endif()
  foreach(_dir LIBDIR INCLUDEDIR BINDIR)
    if(NOT IS_ABSOLUTE "${_pc_${_dir}}")
      string(PREPEND _pc_${_dir} "\${prefix}/")
    endif()
  endforeach()
  configure_file(cmake/qblcore.pc.in "${output}" @ONLY)
endfunction()

# _qbl_install(EXPORT LIBDIR RUNTIME DEVELOPMENT TOOLS EXAMPLES ZSH [EXCLUDE_FROM_ALL])
# RUNTIME, DEVELOPMENT and TOOLS name the components, EXAMPLES the directory for examples/, and ZSH
# the directory below share/zsh for the zsh completions.
macro(_qbl_install export libdir runtime development tools examples zsh)
  set(_cmakedir "${libdir}/cmake/QBLCore")
  set(_made "${PROJECT_BINARY_DIR}/installed/${export}")
  # The unversioned name belongs to the runtime component, because the library finds its own
  # directory by this name.
  install(TARGETS QBLCore EXPORT ${export}
    LIBRARY DESTINATION "${libdir}" COMPONENT ${runtime} ${ARGN}
    ARCHIVE DESTINATION "${libdir}" COMPONENT ${development} ${ARGN}
    FILE_SET HEADERS DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}" COMPONENT ${development} ${ARGN})
  install(TARGETS ${_tools} EXPORT ${export}Tools DESTINATION "${CMAKE_INSTALL_BINDIR}" COMPONENT ${tools} ${ARGN})
  install(EXPORT ${export} NAMESPACE QBLCore:: FILE QBLCoreTargets.cmake
    DESTINATION "${_cmakedir}" COMPONENT ${development} ${ARGN})
  # A file of its own in the component of the tools, because find_package must also work without them.
  install(EXPORT ${export}Tools NAMESPACE QBLCore:: FILE QBLCoreToolsTargets.cmake
    DESTINATION "${_cmakedir}" COMPONENT ${tools} ${ARGN})
  configure_package_config_file(cmake/QBLCoreConfig.cmake.in "${_made}/QBLCoreConfig.cmake"
    INSTALL_DESTINATION "${_cmakedir}")
  write_basic_package_version_file("${_made}/QBLCoreConfigVersion.cmake" COMPATIBILITY SameMajorVersion)
  install(FILES "${_made}/QBLCoreConfig.cmake" "${_made}/QBLCoreConfigVersion.cmake" cmake/QblCatalog.cmake
    ${_static_files} DESTINATION "${_cmakedir}" COMPONENT ${development} ${ARGN})
  _qbl_configure_pc("${libdir}" "${_made}/qblcore.pc")
  install(FILES "${_made}/qblcore.pc" DESTINATION "${libdir}/pkgconfig" COMPONENT ${development} ${ARGN})

  install(FILES ${_resources} DESTINATION "${CMAKE_INSTALL_DATADIR}/qblcore" COMPONENT ${runtime} ${ARGN})
  foreach(_catalogue IN LISTS _catalogues)
    get_target_property(_files ${_catalogue} QBL_MESSAGE_FILES)
    install(FILES ${_files} DESTINATION "${CMAKE_INSTALL_DATADIR}/qblcore" COMPONENT ${runtime} ${ARGN})
  endforeach()
  install(FILES ${_manuals} DESTINATION "${CMAKE_INSTALL_MANDIR}/man1" COMPONENT ${tools} ${ARGN})
  install(FILES ${_completions_bash} DESTINATION "${CMAKE_INSTALL_DATADIR}/bash-completion/completions"
    COMPONENT ${tools} ${ARGN})
  install(FILES ${_completions_zsh} DESTINATION "${CMAKE_INSTALL_DATADIR}/zsh/${zsh}" COMPONENT ${tools} ${ARGN})
  install(FILES ${_completions_fish} DESTINATION "${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d"
    COMPONENT ${tools} ${ARGN})
  install(FILES ${_formats} DESTINATION "${CMAKE_INSTALL_MANDIR}/man5" COMPONENT ${tools} ${ARGN})
  install(DIRECTORY examples DESTINATION "${examples}" COMPONENT ${development} ${ARGN}
    PATTERN samples EXCLUDE)
  install(FILES "${_printers}" DESTINATION "${CMAKE_INSTALL_DATADIR}/qblcore/gdb" COMPONENT ${development} ${ARGN})
endmacro()

_qbl_install(QBLCoreTargets "${CMAKE_INSTALL_LIBDIR}" runtime development tools
  "${CMAKE_INSTALL_DATADIR}/qblcore" site-functions)
# gdb loads NAME-gdb.py together with the library NAME. It looks for the file next to the library, if
# that directory is in gdb's auto-load safe-path, and below /usr/share/gdb/auto-load. For the prefixes
# /usr and /, the file goes below /usr/share/gdb/auto-load. For other prefixes, the file goes next to
# the library, so that the tree can be moved.
if(NOT QBLCORE_STATIC)
  install(CODE "
  set(_libdir \"${CMAKE_INSTALL_LIBDIR}\")
  cmake_path(ABSOLUTE_PATH _libdir BASE_DIRECTORY \"\${CMAKE_INSTALL_PREFIX}\")
  if(_libdir MATCHES \"^/(usr/)?lib\")
    set(_libdir \"/usr/share/gdb/auto-load\${_libdir}\")
  endif()
  file(INSTALL DESTINATION \"\${_libdir}\" TYPE FILE FILES \"${_printers}\"
    RENAME \"$<TARGET_FILE_NAME:QBLCore>-gdb.py\")"
    COMPONENT development)
endif()

# The following targets concern the whole build, so an including project does not get them.
if(NOT PROJECT_IS_TOP_LEVEL)
  return()
endif()
# Builds everything that cmake --install needs.
add_custom_target(installed DEPENDS QBLCore ${_tools} completions)
foreach(_catalogue IN LISTS _catalogues)
  add_dependencies(installed ${_catalogue}_files)
endforeach()

# Removes the files that the latest cmake --install of this build folder installed, and its own folders
# that are then empty.
file(WRITE "${PROJECT_BINARY_DIR}/installed/uninstall.cmake" [=[
file(GLOB _lists "${CMAKE_CURRENT_LIST_DIR}/../install_manifest*.txt")
if(NOT _lists)
  message(FATAL_ERROR "uninstall: no install_manifest.txt in the build folder: nothing was installed from here")
endif()
foreach(_list IN LISTS _lists)
  file(STRINGS "${_list}" _files)
  foreach(_file IN LISTS _files)
    set(_file "$ENV{DESTDIR}${_file}")
    message(STATUS "Removing: ${_file}")
    file(REMOVE "${_file}")
    cmake_path(GET _file PARENT_PATH _folder)
    while(IS_DIRECTORY "${_folder}" AND _folder MATCHES "/(QBLCore|TavThread|i18n|qblcore)(/|$)")
      file(GLOB _left LIST_DIRECTORIES true "${_folder}/*" "${_folder}/.[!.]*")
      if(_left)
        break()
      endif()
      file(REMOVE_RECURSE "${_folder}")
      cmake_path(GET _folder PARENT_PATH _folder)
    endwhile()
  endforeach()
endforeach()
]=])
add_custom_target(uninstall COMMAND "${CMAKE_COMMAND}" -P "${PROJECT_BINARY_DIR}/installed/uninstall.cmake" VERBATIM)
