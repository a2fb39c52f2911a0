# cpack -G DEB makes three Debian packages for the architecture of the build: libqblcore1,
# libqblcore-dev and qblcore-tools. The packages of two architectures can be installed side by side,
# so files with the same path must be identical in both. scripts/package makes the packages for both
# widths.
if(CMAKE_SIZEOF_VOID_P EQUAL 4)
  set(_architecture i386)
else()
  set(_architecture amd64)
endif()
set(QBL_MAINTAINER "The QBLCore authors <qblcore@localhost.localdomain>" CACHE STRING
  "maintainer of the packages, with a mail address")
set(_triplet ${CMAKE_LIBRARY_ARCHITECTURE})
if(NOT _triplet)
  # On Debian, each architecture has its own library directory. This system is not Debian, so make
  # no packages.
  return()
endif()
set(_runtime libqblcore${PROJECT_VERSION_MAJOR})
set(_development libqblcore-dev)
set(_programs qblcore-tools)
set(_debian "${PROJECT_SOURCE_DIR}/cmake/debian")

_qbl_install(QBLCorePackageTargets "lib/${_triplet}" ${_runtime} ${_development} ${_programs}
  "share/doc/${_development}" vendor-completions EXCLUDE_FROM_ALL)
install(FILES "${_printers}" DESTINATION "share/gdb/auto-load/usr/lib/${_triplet}"
  RENAME "$<TARGET_FILE_NAME:QBLCore>-gdb.py" COMPONENT ${_development} EXCLUDE_FROM_ALL)
# The system's dynamic linker finds the library, so the run path is removed. Debian compresses
# manuals.
set(_paths ${_tools})
list(TRANSFORM _paths PREPEND "\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/bin/")
install(CODE "
  foreach(_path ${_paths})
    file(RPATH_REMOVE FILE \"\${_path}\")
  endforeach()
  file(GLOB _pages \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/share/man/man*/*.[1-9]\")
  if(_pages)
    execute_process(COMMAND gzip -9nf \${_pages} COMMAND_ERROR_IS_FATAL ANY)
  endif()"
  COMPONENT ${_programs} EXCLUDE_FROM_ALL)

set(_made "${PROJECT_BINARY_DIR}/installed")
configure_file("${_debian}/changelog.in" "${_made}/changelog" @ONLY)
execute_process(COMMAND gzip -9nc "${_made}/changelog"
  OUTPUT_FILE "${_made}/changelog.Debian.gz" COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND gzip -9nc "${PROJECT_SOURCE_DIR}/CHANGELOG.md"
  OUTPUT_FILE "${_made}/changelog.gz" COMMAND_ERROR_IS_FATAL ANY)
set_property(DIRECTORY "${PROJECT_SOURCE_DIR}" APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${PROJECT_SOURCE_DIR}/CHANGELOG.md")
foreach(_package ${_runtime} ${_development} ${_programs})
  install(FILES "${_debian}/copyright" "${_made}/changelog.Debian.gz" "${_made}/changelog.gz"
    DESTINATION "share/doc/${_package}" COMPONENT ${_package} EXCLUDE_FROM_ALL)
endforeach()

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME qblcore)
set(CPACK_PACKAGE_VENDOR "QBLCore")
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_COMPONENTS_ALL ${_runtime} ${_development} ${_programs})
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_SOURCE qblcore)
set(CPACK_DEBIAN_PACKAGE_ARCHITECTURE ${_architecture})
set(CPACK_DEBIAN_PACKAGE_MAINTAINER "${QBL_MAINTAINER}")
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")
# Each package has its own summary. CPack would put this common summary before it.
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")
set(_version "${PROJECT_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE}")

# _qbl_package(NAME SECTION MULTIARCH DEPENDS SUMMARY DESCRIPTION). This CPack has no variable for
# the field Multi-Arch, so the value of Section contains it as a second line.
macro(_qbl_package name section multiarch depends summary description)
  string(TOUPPER "${name}" _upper)
  set(CPACK_DEBIAN_${_upper}_PACKAGE_NAME ${name})
  set(CPACK_DEBIAN_${_upper}_PACKAGE_SECTION "${section}\nMulti-Arch: ${multiarch}")
  set(CPACK_DEBIAN_${_upper}_PACKAGE_DEPENDS "${depends}")
  set(CPACK_DEBIAN_${_upper}_DESCRIPTION "${summary}\n${description}")
endmacro()
# dpkg-shlibdeps finds the packages of installed libraries. Libraries that scripts/setup only
# unpacked belong to no installed package, so their packages are named here.
set(_asks ON)
set(_needs)
if(CMAKE_BUILD_RPATH)
  set(_asks OFF)
  set(_needs "libc6 (>= 2.34), libgcc-s1 (>= 7), libicu${_qbl_icu_major}, libstdc++6 (>= 11), zlib1g")
endif()
_qbl_package(${_runtime} libs same "${_needs}" "core class library for servers and tools"
"Threads, locks and thread pools over a flat C layer, errors with back-traces
and messages in the reader's language, files and locks between processes,
Unicode strings and converters, plug-ins and periodic housekeeping.
.
This package contains the library, its resource files and its catalogues. The
unversioned name libQBLCore.so is in this package and not in the development
package: the library finds its own directory and these files by that name.")
# Some public headers include headers of ICU.
_qbl_package(${_development} libdevel same
  "${_runtime} (= ${_version}), ${_programs} (>= ${_version}), libicu-dev"
  "core class library for servers and tools (development files)"
"Threads, locks and thread pools over a flat C layer, errors with back-traces
and messages in the reader's language, files and locks between processes,
Unicode strings and converters, plug-ins and periodic housekeeping.
.
This package contains the headers, the files for CMake and pkg-config,
examples, and printers for gdb.")
_qbl_package(${_programs} devel foreign "${_runtime} (>= ${_version})"
  "core class library for servers and tools (tools)"
"A converter of text files between encodings, the compiler of message
catalogues, and manuals of the file formats that QBLCore programs read. The
tools of one architecture serve the libraries of both.")
foreach(_package ${_runtime} ${_programs})
  string(TOUPPER "${_package}" _upper)
  set(CPACK_DEBIAN_${_upper}_PACKAGE_SHLIBDEPS ${_asks})
  set(CPACK_DEBIAN_${_upper}_DEBUGINFO_PACKAGE ON)
endforeach()
string(TOUPPER "${_runtime}" _upper)
set(CPACK_DEBIAN_${_upper}_PACKAGE_CONTROL_EXTRA "${_debian}/triggers")
# The tools need libQBLCore, which is in a package of the same cpack run. dpkg-shlibdeps finds the
# library in this directory.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS "${PROJECT_BINARY_DIR}")
include(CPack)
