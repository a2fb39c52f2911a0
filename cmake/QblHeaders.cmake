# Checks that every public header compiles on its own. CMake's target
# all_verify_interface_header_sets compiles all of them as C++; qbl_headers_as_c compiles the
# headers that end in .h as C too.
function(qbl_verify_headers_as_c library)
  get_target_property(_headers ${library} HEADER_SET)
  set(_sources)
  foreach(_header IN LISTS _headers)
    if(_header MATCHES "\\.h$")
      file(RELATIVE_PATH _name "${PROJECT_SOURCE_DIR}" "${_header}")
      set(_source "${PROJECT_BINARY_DIR}/headers_as_c/${_name}.c")
      file(CONFIGURE OUTPUT "${_source}" CONTENT "#include \"${_name}\"\ntypedef int NotEmpty;\n" @ONLY)
      list(APPEND _sources "${_source}")
    endif()
  endforeach()
  add_library(qbl_headers_as_c OBJECT EXCLUDE_FROM_ALL ${_sources})
  set_target_properties(qbl_headers_as_c PROPERTIES C_EXTENSIONS OFF)
  target_include_directories(qbl_headers_as_c PRIVATE "${PROJECT_SOURCE_DIR}")
  target_link_libraries(qbl_headers_as_c PRIVATE qbl_flags)
endfunction()
