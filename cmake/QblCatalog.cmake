# qbl_add_catalog(TARGET NAME SOURCE...
#                 [HEADER FILE] [TYPED] [OUTPUT_DIRECTORY DIR] [STRICT] [DESTINATION DIR [COMPONENT NAME]])
#
# Compiles a message catalogue: each source, named NAME_LANGUAGE.msg or NAME.msg, becomes a message
# file with the same name and the extension .bmf. The first source is the reference: the other
# sources are compared with it, and each difference is a warning.
#
#   HEADER            writes this header into OUTPUT_DIRECTORY, with an enum of the identifiers of
#                     the first source; targets that link TARGET can include it
#   TYPED             the header also has a C++ function for each message, and the message files
#                     hold a checksum that ties them to the header; arguments of the sources that
#                     do not fit the first source are errors
#   OUTPUT_DIRECTORY  the directory of the generated files; default: the current binary directory
#   STRICT            treats warnings as errors
#   DESTINATION       installs the message files into this directory, usually share/PROGRAM, where
#                     the program bin/PROGRAM looks for them; COMPONENT is passed to install();
#                     default: not installed
#
# TARGET becomes an interface library. The default target (all) builds the files.
function(qbl_add_catalog target name)
  cmake_parse_arguments(PARSE_ARGV 2 arg "STRICT;TYPED" "HEADER;OUTPUT_DIRECTORY;DESTINATION;COMPONENT" "")
  if(NOT TARGET QBLCore::qblmsgc)
    message(FATAL_ERROR "qbl_add_catalog: the catalogue compiler qblmsgc is not installed: install the component tools (Debian: qblcore-tools)")
  endif()
  set(sources ${arg_UNPARSED_ARGUMENTS})
  if(NOT sources)
    message(FATAL_ERROR "qbl_add_catalog: catalogue ${name} has no sources: list its .msg files after the name")
  endif()
  set(directory "${CMAKE_CURRENT_BINARY_DIR}")
  if(arg_OUTPUT_DIRECTORY)
    cmake_path(ABSOLUTE_PATH arg_OUTPUT_DIRECTORY BASE_DIRECTORY "${CMAKE_CURRENT_BINARY_DIR}"
      OUTPUT_VARIABLE directory)
  endif()
  string(REGEX REPLACE "([][+.*?^$()|\\])" "\\\\\\1" literal_name "${name}")
  set(strict)
  if(arg_STRICT)
    set(strict -W)
  endif()
  if(arg_TYPED)
    list(APPEND strict "--typed=${name}")
  endif()
  set(reference)
  set(outputs)
  set(message_files)
  foreach(source IN LISTS sources)
    cmake_path(ABSOLUTE_PATH source)
    cmake_path(GET source STEM LAST_ONLY stem)
    if(NOT stem MATCHES "^${literal_name}(_[A-Za-z0-9_]+)?$")
      message(FATAL_ERROR "qbl_add_catalog: unexpected file name ${source}: rename it to ${name}.msg or ${name}_LANGUAGE.msg")
    endif()
    set(made "${directory}/${stem}.bmf")
    set(options ${strict})
    if(reference)
      list(APPEND options -r "${reference}")
      set(needs "${reference}")
    else()
      set(needs)
      set(reference "${source}")
      if(arg_HEADER)
        list(APPEND options -H "${directory}/${arg_HEADER}")
        set(header "${directory}/${arg_HEADER}")
      endif()
    endif()
    add_custom_command(OUTPUT "${made}" ${header}
      COMMAND "${CMAKE_COMMAND}" -E make_directory "${directory}"
      COMMAND QBLCore::qblmsgc ${options} -o "${made}" "${source}"
      DEPENDS "${source}" ${needs} QBLCore::qblmsgc COMMENT "Compiling ${stem}.bmf" VERBATIM)
    list(APPEND outputs "${made}" ${header})
    list(APPEND message_files "${made}")
    set(header)
  endforeach()
  add_custom_target(${target}_files ALL DEPENDS ${outputs})
  add_library(${target} INTERFACE)
  add_dependencies(${target} ${target}_files)
  if(arg_HEADER)
    target_include_directories(${target} INTERFACE "${directory}")
  endif()
  set_target_properties(${target} PROPERTIES QBL_MESSAGE_FILES "${message_files}")
  if(arg_DESTINATION)
    if(arg_COMPONENT)
      set(component COMPONENT ${arg_COMPONENT})
    endif()
    install(FILES ${message_files} DESTINATION "${arg_DESTINATION}" ${component})
  endif()
endfunction()
