# Read by CPack before it packs what was installed.

file(GLOB_RECURSE files "${CPACK_TEMPORARY_INSTALL_DIRECTORY}/*")
list(FILTER files INCLUDE REGEX "/bin/[^/]+$|\\.so$")
find_program(STRIP strip REQUIRED)
execute_process(
    COMMAND "${STRIP}" --strip-unneeded --remove-section=.comment --remove-section=.note ${files}
    COMMAND_ERROR_IS_FATAL ANY)
