# Builds GoogleTest from Debian's sources, so that it is available for every width and sanitizer.
set(INSTALL_GTEST OFF)
set(BUILD_GMOCK OFF)
add_subdirectory(/usr/src/googletest googletest EXCLUDE_FROM_ALL SYSTEM)
foreach(_t gtest gtest_main)
  target_link_libraries(${_t} PRIVATE $<BUILD_INTERFACE:qbl_flags>)
  target_compile_options(${_t} PRIVATE -O0 -g1 -w)
endforeach()
include(GoogleTest)

# qbl_add_test(NAME LABEL SOURCE...): adds one executable; each of its test cases is a CTest test.
function(qbl_add_test name label)
  add_executable(${name} ${ARGN})
  target_link_libraries(${name} PRIVATE qbl_flags qbl_test_flags qbl_test_support QBLCore::QBLCore gtest gtest_main)
  gtest_discover_tests(${name} DISCOVERY_MODE PRE_TEST PROPERTIES LABELS ${label})
endfunction()
