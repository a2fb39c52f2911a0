# Finds ICU::i18n, ICU::uc and ZLIB::ZLIB for the architecture being built.
# Debian's i386 -dev packages cannot always be installed together with the amd64 packages.
# In that case only the run-time libraries exist, under their versioned names. The
# headers then come from the amd64 packages; they are the same files.
# The package of a static QBLCore installs this file, because its programs link with these libraries.
macro(qbl_find_libraries)
  set(_qbl_suffixes "${CMAKE_FIND_LIBRARY_SUFFIXES}")
  find_path(QBL_ICU_INCLUDE_DIR unicode/uvernum.h)
  mark_as_advanced(QBL_ICU_INCLUDE_DIR)
  if(NOT QBL_ICU_INCLUDE_DIR)
    message(FATAL_ERROR "ICU headers not found (unicode/uvernum.h): install them (Debian: libicu-dev)")
  endif()
  file(STRINGS "${QBL_ICU_INCLUDE_DIR}/unicode/uvernum.h" _qbl_icu_major REGEX "define U_ICU_VERSION_MAJOR_NUM ")
  string(REGEX MATCH "[0-9]+" _qbl_icu_major "${_qbl_icu_major}")
  list(APPEND CMAKE_FIND_LIBRARY_SUFFIXES ".so.${_qbl_icu_major}" ".so.1")
  find_package(ICU REQUIRED COMPONENTS i18n uc)
  find_package(ZLIB REQUIRED)
  set(CMAKE_FIND_LIBRARY_SUFFIXES "${_qbl_suffixes}")
endmacro()
