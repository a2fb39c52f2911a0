# qbl_add_catalog(TARGET NAME SOURCE...
#                 [HEADER FILE] [OUTPUT_DIRECTORY DIR] [STRICT] [DESTINATION DIR [COMPONENT NAME]])
#
# Compiles a catalogue of messages: each source, called NAME_LANGUAGE.msg or NAME.msg, to a message
# file of the same name with the extension .bmf. The first source is the reference that the others
# are compared with; differences are warnings.
#
#   HEADER            a header with an enum of the first source's identifiers, written into
#                     OUTPUT_DIRECTORY; what links TARGET can include it, and is built after it
#   OUTPUT_DIRECTORY  where the files go; the current binary directory unless given
#   STRICT            warnings are errors
#   DESTINATION       where the message files are installed to, if they are; share/qblcore is where
#                     programs look without being told, and COMPONENT is as of install()
#
# TARGET is an interface library; the files are built with all.
function(qbl_add_catalog target name)
  cmake_parse_arguments(PARSE_ARGV 2 arg "STRICT" "HEADER;OUTPUT_DIRECTORY;DESTINATION;COMPONENT" "")
  set(sources ${arg_UNPARSED_ARGUMENTS})
  if(NOT sources)
    message(FATAL_ERROR "qbl_add_catalog: ${name} has no sources")
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
  set(reference)
  set(outputs)
  set(message_files)
  foreach(source IN LISTS sources)
    cmake_path(ABSOLUTE_PATH source)
    cmake_path(GET source STEM LAST_ONLY stem)
    if(NOT stem MATCHES "^${literal_name}(_[A-Za-z0-9_]+)?$")
      message(FATAL_ERROR "qbl_add_catalog: ${source} is not called ${name}_LANGUAGE.msg")
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
