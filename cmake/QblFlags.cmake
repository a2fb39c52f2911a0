# qbl_flags: the compiler and linker options of all our targets. Installed targets link it as
# $<BUILD_INTERFACE:qbl_flags>, so the options do not reach the library's users.
add_library(qbl_flags INTERFACE)
target_compile_options(qbl_flags INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow
  $<$<COMPILE_LANGUAGE:CXX>:-Wconversion -Wsign-conversion -Wnon-virtual-dtor -Woverloaded-virtual>
  -fno-semantic-interposition -fno-plt
  # Makes __FILE__ relative to the root of the tree. The second map is for compiler caches, which
  # pass paths relative to build/<preset>.
  "-fmacro-prefix-map=${PROJECT_SOURCE_DIR}/=" "-fmacro-prefix-map=../../=")
if(CMAKE_BUILD_TYPE STREQUAL "RelWithDebInfo")
  # Removes the path of the tree from the debug information too. gdb finds the sources if it is
  # started in the root of the tree.
  target_compile_options(qbl_flags INTERFACE "-fdebug-prefix-map=${PROJECT_SOURCE_DIR}=.")
endif()
if(QBL_WERROR)
  target_compile_options(qbl_flags INTERFACE -Werror)
endif()
if(CMAKE_SIZEOF_VOID_P EQUAL 4)
  target_compile_options(qbl_flags INTERFACE -msse2 -mfpmath=sse)
endif()
if(CMAKE_CXX_COMPILER_ID MATCHES "Clang")
  target_compile_options(qbl_flags INTERFACE -Wthread-safety)
endif()
if(QBL_SANITIZE)
  target_compile_options(qbl_flags INTERFACE
    -fsanitize=${QBL_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
  target_link_options(qbl_flags INTERFACE -fsanitize=${QBL_SANITIZE})
endif()
if(QBL_SANITIZE MATCHES "integer")
  # The older name of -fsanitize-ignorelist: ccache 4.7 reads the file only under this name.
  target_compile_options(qbl_flags INTERFACE
    "-fsanitize-blacklist=${PROJECT_SOURCE_DIR}/cmake/arithmetic.ignore")
endif()
if(QBL_COVERAGE)
  # Several threads update the same line counters.
  target_compile_options(qbl_flags INTERFACE --coverage -fprofile-update=atomic)
  target_link_options(qbl_flags INTERFACE --coverage)
endif()

# qbl_hardening: for the library and the tools. It makes many memory errors end the process before an
# attacker can use them. The shared object has the note of a shadow stack, but not the note of
# indirect branch tracking: the C library's start files lack the instructions that it needs.
add_library(qbl_hardening INTERFACE)
if(CMAKE_BUILD_TYPE MATCHES "^Rel" AND NOT QBL_SANITIZE AND NOT QBL_COVERAGE)
  target_compile_options(qbl_hardening INTERFACE -U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=3
    -fstack-protector-strong -fstack-clash-protection -fcf-protection=full)
  target_link_options(qbl_hardening INTERFACE
    LINKER:-z,relro LINKER:-z,now LINKER:-z,noexecstack LINKER:-z,shstk)
endif()

# qbl_test_flags: link it after qbl_flags. Tests and fuzz targets misuse locks on purpose. They and
# the benchmarks compare unsigned counts with signed differences. So these warnings are off there.
add_library(qbl_test_flags INTERFACE)
target_compile_options(qbl_test_flags INTERFACE $<$<COMPILE_LANGUAGE:CXX>:-Wno-sign-conversion>)
if(CMAKE_CXX_COMPILER_ID MATCHES "Clang")
  target_compile_options(qbl_test_flags INTERFACE
    -Wno-thread-safety -Wno-gnu-zero-variadic-macro-arguments)
endif()
