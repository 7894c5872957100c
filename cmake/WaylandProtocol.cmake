include_guard(GLOBAL)

pkg_check_modules(WAYLAND REQUIRED IMPORTED_TARGET wayland-client)
pkg_get_variable(wayland_scanner wayland-scanner wayland_scanner)

# vantrel_wayland_protocol(<target> <name> <description>): adds to a library of protocols. A header is
# <wayland-NAME.h>.
function(vantrel_wayland_protocol target name description)
    set(folder "${CMAKE_CURRENT_BINARY_DIR}/protocols")
    set(generated "${folder}/wayland-${name}")
    add_custom_command(OUTPUT "${generated}.h" "${generated}.c"
        COMMAND "${CMAKE_COMMAND}" -E make_directory "${folder}"
        COMMAND "${wayland_scanner}" client-header "${description}" "${generated}.h"
        COMMAND "${wayland_scanner}" private-code "${description}" "${generated}.c"
        DEPENDS "${description}" VERBATIM)
    target_sources(${target} PRIVATE "${generated}.c" "${generated}.h")
    target_include_directories(${target} SYSTEM PUBLIC "${folder}")
    target_link_libraries(${target} PUBLIC PkgConfig::WAYLAND)
endfunction()
