# qbl_find_dependencies: finds the libraries of QblLibraries.cmake and checks that they run.
include(CheckCXXSourceRuns)
macro(qbl_find_dependencies)
  qbl_find_libraries()
  set(CMAKE_REQUIRED_LIBRARIES ICU::i18n ICU::uc ZLIB::ZLIB)
  check_cxx_source_runs("
    #include <cstring>
    #include <unicode/uclean.h>
    #include <unicode/uversion.h>
    #include <zlib.h>
    int main() {
      UVersionInfo v; u_getVersion(v);
      return !(v[0] == U_ICU_VERSION_MAJOR_NUM && zlibVersion()[0] == ZLIB_VERSION[0]);
    }" QBL_DEPENDENCIES_RUN)
  unset(CMAKE_REQUIRED_LIBRARIES)
  if(NOT QBL_DEPENDENCIES_RUN)
    message(FATAL_ERROR "a test program linked with ICU (${ICU_LIBRARIES}) and zlib (${ZLIB_LIBRARIES}) does not run: run ./dev setup, delete ${PROJECT_BINARY_DIR} and configure again")
  endif()
endmacro()

# Finds benchmark::benchmark with the same fallback; defines no target if it is not installed.
macro(qbl_find_benchmark)
  find_package(benchmark QUIET CONFIG)
  if(NOT TARGET benchmark::benchmark)
    set(_qbl_suffixes "${CMAKE_FIND_LIBRARY_SUFFIXES}")
    list(APPEND CMAKE_FIND_LIBRARY_SUFFIXES ".so.1debian" ".so.1")
    find_path(QBL_BENCHMARK_INCLUDE_DIR benchmark/benchmark.h)
    find_library(QBL_BENCHMARK_LIBRARY benchmark)
    mark_as_advanced(QBL_BENCHMARK_INCLUDE_DIR QBL_BENCHMARK_LIBRARY)
    set(CMAKE_FIND_LIBRARY_SUFFIXES "${_qbl_suffixes}")
    if(QBL_BENCHMARK_INCLUDE_DIR AND QBL_BENCHMARK_LIBRARY)
      find_package(Threads REQUIRED)
      add_library(benchmark::benchmark UNKNOWN IMPORTED)
      set_target_properties(benchmark::benchmark PROPERTIES
        IMPORTED_LOCATION "${QBL_BENCHMARK_LIBRARY}"
        INTERFACE_INCLUDE_DIRECTORIES "${QBL_BENCHMARK_INCLUDE_DIR}"
        INTERFACE_LINK_LIBRARIES Threads::Threads)
    endif()
  endif()
endmacro()
