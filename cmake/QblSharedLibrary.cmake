# The link options and properties of libQBLCore.so, and the script that gdb loads with it.
set(_map "${PROJECT_SOURCE_DIR}/cmake/libQBLCore.map")
set(_looked_up "${PROJECT_SOURCE_DIR}/cmake/libQBLCore.lookup")
target_link_options(QBLCore PRIVATE "LINKER:--version-script=${_map}"
  LINKER:-z,text LINKER:-z,relro LINKER:-z,now LINKER:-z,nodelete
  "LINKER:--dynamic-list=${_looked_up}")
if(NOT QBL_SANITIZE)
  target_link_options(QBLCore PRIVATE LINKER:-z,defs LINKER:--as-needed)
endif()
set_target_properties(QBLCore PROPERTIES
  VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR} LINK_DEPENDS "${_map};${_looked_up}")
if(PROJECT_IS_TOP_LEVEL)
  add_subdirectory(gdb)
endif()
