# cmake -DTOOL=PATH -DSHELL=NAME -DFILE=PATH -P write.cmake: writes the completion script that the
# tool prints, in English.
get_filename_component(_directory "${FILE}" DIRECTORY)
file(MAKE_DIRECTORY "${_directory}")
set(ENV{LC_ALL} C)
execute_process(COMMAND "${TOOL}" --completions=${SHELL} OUTPUT_FILE "${FILE}" COMMAND_ERROR_IS_FATAL ANY)
