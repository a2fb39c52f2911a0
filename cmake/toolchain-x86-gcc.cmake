# Builds 32-bit x86 code with the amd64 compiler. CMAKE_SYSTEM_NAME stays unset on purpose:
# the programs run on the build host, so this is not a cross build.
if(NOT CMAKE_CXX_COMPILER)
  set(CMAKE_C_COMPILER gcc)
  set(CMAKE_CXX_COMPILER g++)
endif()
foreach(_lang C CXX)
  set(CMAKE_${_lang}_FLAGS_INIT "-m32")
endforeach()
set(CMAKE_LIBRARY_ARCHITECTURE i386-linux-gnu)

# The libraries that scripts/setup unpacked because they could not be installed. They find each
# other by the DT_RPATH of the program. DT_RUNPATH would not work, because it does not apply to the
# libraries that a library needs.
get_filename_component(_qbl_deps "${CMAKE_CURRENT_LIST_DIR}/../.deps/i386" ABSOLUTE)
if(EXISTS "${_qbl_deps}/usr/lib/i386-linux-gnu/libicuuc.so.72")
  list(APPEND CMAKE_PREFIX_PATH "${_qbl_deps}/usr" "${_qbl_deps}")
  set(CMAKE_BUILD_RPATH "${_qbl_deps}/usr/lib/i386-linux-gnu" "${_qbl_deps}/lib/i386-linux-gnu")
  list(JOIN CMAKE_BUILD_RPATH ":" _qbl_dirs)
  foreach(_kind EXE SHARED MODULE)
    set(CMAKE_${_kind}_LINKER_FLAGS_INIT "-Wl,--disable-new-dtags -Wl,-rpath-link,${_qbl_dirs}")
  endforeach()
endif()
