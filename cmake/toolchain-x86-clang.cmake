set(CMAKE_C_COMPILER clang-14)
set(CMAKE_CXX_COMPILER clang++-14)
include("${CMAKE_CURRENT_LIST_DIR}/toolchain-x86-gcc.cmake")
