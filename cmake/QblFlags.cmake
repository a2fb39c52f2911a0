# qbl_flags: how everything of ours is compiled. Installed targets link it by
# $<BUILD_INTERFACE:qbl_flags>, so that none of it reaches the library's users.
add_library(qbl_flags INTERFACE)
target_compile_options(qbl_flags INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow
  $<$<COMPILE_LANGUAGE:CXX>:-Wconversion -Wnon-virtual-dtor -Woverloaded-virtual>
  -fno-semantic-interposition -fno-plt
  # __FILE__ is the path from the root wherever the tree stands; the second map is for
  # compiler caches that hand over paths relative to build/<preset>.
  "-fmacro-prefix-map=${CMAKE_SOURCE_DIR}/=" "-fmacro-prefix-map=../../=")
if(CMAKE_BUILD_TYPE STREQUAL "RelWithDebInfo")
  # Nor does what is installed, or compiled by somebody else, name the place of the tree: gdb finds
  # the sources when it is started in the root.
  target_compile_options(qbl_flags INTERFACE "-fdebug-prefix-map=${CMAKE_SOURCE_DIR}=.")
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
if(QBL_COVERAGE)
  # Threads count the same lines.
  target_compile_options(qbl_flags INTERFACE --coverage -fprofile-update=atomic)
  target_link_options(qbl_flags INTERFACE --coverage)
endif()

# qbl_test_flags, after the others: tests and fuzz targets also take locks in every
# wrong way, and compare counts with differences of iterators.
add_library(qbl_test_flags INTERFACE)
if(CMAKE_CXX_COMPILER_ID MATCHES "Clang")
  target_compile_options(qbl_test_flags INTERFACE
    -Wno-thread-safety -Wno-sign-conversion -Wno-gnu-zero-variadic-macro-arguments)
endif()
