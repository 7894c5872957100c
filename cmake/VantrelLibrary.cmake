include_guard(GLOBAL)

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
# The program is a module of which one function is called from outside.
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_LINK_DEPENDS_NO_SHARED ON)

find_program(CCACHE ccache)
if(CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
    set(CMAKE_CXX_COMPILER_LAUNCHER "${CCACHE}")
endif()

# Whoever builds Vantrel to use it has a compiler that nobody here has seen.
set(builds_with_sanitizers OFF)
if(VANTREL_SANITIZERS)
    set(builds_with_sanitizers ON)
endif()
# For what is built from nothing and seldom: it hides from the compiler what a source fails to include.
option(VANTREL_PRECOMPILED_HEADERS "Precompile the headers that most sources include"
       "$ENV{VANTREL_PRECOMPILED_HEADERS}")
option(VANTREL_WARNINGS_AS_ERRORS "Let no warning pass" ${builds_with_sanitizers})
set(strict "")
if(VANTREL_WARNINGS_AS_ERRORS)
    set(strict -Werror)
endif()

add_library(vantrel_options INTERFACE)
target_compile_options(vantrel_options INTERFACE
    -Wall -Wextra -Wpedantic ${strict} -Wconversion -Wsign-conversion -Wshadow -Wold-style-cast
    -Wnon-virtual-dtor -Woverloaded-virtual -Wnull-dereference
    -Wimplicit-fallthrough -fno-strict-aliasing
    # Fields that an initializer leaves out are initialised where they are declared.
    -Wno-missing-field-initializers)
# Without the tag, a program that calls nothing of Qt does not load it.
target_compile_definitions(vantrel_options INTERFACE QT_NO_KEYWORDS QT_NO_CAST_FROM_ASCII
    QT_NO_VERSION_TAGGING)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    # GCC 12 finds null dereferences in its own headers once it inlines them.
    # And overlaps in "literal" + std::to_string().
    target_compile_options(vantrel_options INTERFACE -Wno-null-dereference -Wno-restrict)
endif()
# What a distribution asks of the programs that it ships, besides position-independent code. No -fPIE
# here: it would come after the -fPIC without which a program with Qt crashes at its start.
target_compile_options(vantrel_options INTERFACE
    "$<$<CONFIG:Release>:-fstack-protector-strong;-U_FORTIFY_SOURCE;-D_FORTIFY_SOURCE=2;-Wformat;-Werror=format-security>")
target_link_options(vantrel_options INTERFACE "$<$<CONFIG:Release>:-Wl,-z,relro;-Wl,-z,now>")
if(VANTREL_SANITIZERS)
    target_compile_options(vantrel_options INTERFACE
        -fsanitize=${VANTREL_SANITIZERS} -fno-sanitize-recover=all -fno-omit-frame-pointer)
    target_link_options(vantrel_options INTERFACE -fsanitize=${VANTREL_SANITIZERS})
endif()

# vantrel_library(<folder of src> SOURCES ... LINKS ...): headers are found as "folder/header.h".
# scripts/check-includes holds each library to those that docs/architecture.md lets it use.
function(vantrel_library folder)
    cmake_parse_arguments(LIBRARY "" "" "SOURCES;LINKS" ${ARGN})
    string(REPLACE "/" "_" target "vantrel_${folder}")
    add_library(${target} STATIC ${LIBRARY_SOURCES})
    target_include_directories(${target} PUBLIC "${PROJECT_SOURCE_DIR}/src")
    target_link_libraries(${target} PUBLIC ${LIBRARY_LINKS} PRIVATE vantrel_options)
    list(LENGTH LIBRARY_SOURCES count)
    if(VANTREL_PRECOMPILED_HEADERS AND count GREATER 5)
        target_precompile_headers(${target} PRIVATE
            "$<$<COMPILE_LANGUAGE:CXX>:${PROJECT_SOURCE_DIR}/cmake/precompiled.h>")
    endif()
endfunction()
