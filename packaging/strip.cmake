# Read by CPack before it packs what was installed.

file(GLOB_RECURSE programs "${CPACK_TEMPORARY_INSTALL_DIRECTORY}/*/bin/*"
     "${CPACK_TEMPORARY_INSTALL_DIRECTORY}/bin/*")
find_program(STRIP strip REQUIRED)
execute_process(
    COMMAND "${STRIP}" --strip-all --remove-section=.comment --remove-section=.note ${programs}
    COMMAND_ERROR_IS_FATAL ANY)
