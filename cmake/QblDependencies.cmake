# Finds ICU::i18n, ICU::uc and ZLIB::ZLIB for the architecture being built.
# Debian's i386 -dev packages cannot always be installed together with the amd64 packages.
# In that case only the run-time libraries exist, under their versioned names. The
# headers then come from the amd64 packages; they are the same files.
include(CheckCXXSourceRuns)
macro(qbl_find_dependencies)
  set(_qbl_suffixes "${CMAKE_FIND_LIBRARY_SUFFIXES}")
  find_path(QBL_ICU_INCLUDE_DIR unicode/uvernum.h)
  mark_as_advanced(QBL_ICU_INCLUDE_DIR)
  if(NOT QBL_ICU_INCLUDE_DIR)
    message(FATAL_ERROR "ICU headers not found (unicode/uvernum.h): run ./dev setup")
  endif()
  file(STRINGS "${QBL_ICU_INCLUDE_DIR}/unicode/uvernum.h" _qbl_icu_major REGEX "define U_ICU_VERSION_MAJOR_NUM ")
  string(REGEX MATCH "[0-9]+" _qbl_icu_major "${_qbl_icu_major}")
  list(APPEND CMAKE_FIND_LIBRARY_SUFFIXES ".so.${_qbl_icu_major}" ".so.1")
  find_package(ICU REQUIRED COMPONENTS i18n uc)
  find_package(ZLIB REQUIRED)
  set(CMAKE_FIND_LIBRARY_SUFFIXES "${_qbl_suffixes}")
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
    message(FATAL_ERROR "a test program linked with ICU (${ICU_LIBRARIES}) and zlib (${ZLIB_LIBRARIES}) does not run: run ./dev setup, delete ${CMAKE_BINARY_DIR} and configure again")
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
