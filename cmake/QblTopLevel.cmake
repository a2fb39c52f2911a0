# Settings of the whole build. A project that includes QBLCore has its own, so they apply only if
# QBLCore is the top-level project.
set(CMAKE_VERIFY_INTERFACE_HEADER_SETS ON)
if(NOT CMAKE_BUILD_TYPE)
  set(CMAKE_BUILD_TYPE RelWithDebInfo CACHE STRING "build type" FORCE)
endif()
# No -DNDEBUG: our assertions always throw, so it would only disable those of other libraries.
set(CMAKE_CXX_FLAGS_RELWITHDEBINFO "-O2 -g" CACHE STRING "" FORCE)
set(CMAKE_C_FLAGS_RELWITHDEBINFO "-O2 -g" CACHE STRING "" FORCE)
find_program(QBL_CCACHE ccache)
if(QBL_CCACHE)
  set(CMAKE_C_COMPILER_LAUNCHER "${QBL_CCACHE}")
  set(CMAKE_CXX_COMPILER_LAUNCHER "${QBL_CCACHE}")
endif()
include(CTest)
