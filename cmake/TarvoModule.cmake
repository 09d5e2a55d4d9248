# tarvo_module(<name> [PCH <header>...] SOURCES <file>... [USES <library>...])
#
# Declares one floor-bound module of src/: the static library tarvo_<name> with the alias tarvo::<name>. USES names the
# libraries that its headers or sources include. Includes are written from src/. A module without .cpp files is an
# interface library. PCH lists headers to precompile; it pays above some ten files.
function(tarvo_module name)
    cmake_parse_arguments(ARG "" "" "SOURCES;USES;PCH" ${ARGN})
    set(target tarvo_${name})
    set(compiled ${ARG_SOURCES})
    list(FILTER compiled INCLUDE REGEX "\\.cpp$")
    if(compiled)
        add_library(${target} STATIC ${ARG_SOURCES})
        set(scope PUBLIC)
    else()
        add_library(${target} INTERFACE ${ARG_SOURCES})
        set(scope INTERFACE)
    endif()
    add_library(tarvo::${name} ALIAS ${target})
    target_include_directories(${target} ${scope} ${PROJECT_SOURCE_DIR}/src)
    target_link_libraries(${target} ${scope} ${ARG_USES})
    if(ARG_PCH AND compiled)
        target_precompile_headers(${target} PRIVATE ${ARG_PCH})
    endif()
endfunction()
