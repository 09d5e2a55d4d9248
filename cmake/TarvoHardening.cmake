# What makes the program harder to break into. tests/packaging/headers.py looks at what came of it.
include(CheckCXXCompilerFlag)
include(CheckPIESupported)

# tarvo_harden()
#
# For the targets that this folder and those below it declare from here on. Programs always bind all names at the start and
# can't be written over afterwards; TARVO_HARDEN_CODE adds what the compiler does. Sanitizers and fuzzers have their own ways.
macro(tarvo_harden)
    if(CMAKE_CXX_COMPILER_ID MATCHES "GNU|Clang" AND NOT TARVO_SANITIZE AND NOT TARVO_BUILD_FUZZ)
        check_pie_supported(LANGUAGES CXX)
        if(WIN32)
            add_link_options(-Wl,--dynamicbase,--nxcompat,--high-entropy-va)
        else()
            add_link_options(LINKER:-z,relro,-z,now)
        endif()
        if(TARVO_HARDEN_CODE)
            set(CMAKE_POSITION_INDEPENDENT_CODE ON)
            add_compile_options(-fstack-protector-strong)
            add_link_options(-fstack-protector-strong) # the library that Windows needs for it
            # It needs the optimiser.
            add_compile_options("$<$<CONFIG:Release,RelWithDebInfo,MinSizeRel>:-U_FORTIFY_SOURCE;-D_FORTIFY_SOURCE=2>")
            check_cxx_compiler_flag(-fcf-protection TARVO_HAS_CF_PROTECTION)
            if(TARVO_HAS_CF_PROTECTION)
                add_compile_options(-fcf-protection)
            endif()
        endif()
    endif()
endmacro()

# tarvo_secret_warning(<variable>)
#
# A warning for a build whose services are elsewhere but whose secret is the one that everybody knows; empty otherwise.
function(tarvo_secret_warning variable)
    set(${variable} "" PARENT_SCOPE)
    if(NOT TARVO_CONFIG_SECRET STREQUAL TARVO_DEFAULT_SECRET)
        return()
    endif()
    set(loopback "(127\\.[0-9.]+|localhost|\\[::1\\])")
    set(elsewhere "")
    foreach(host IN ITEMS "${TARVO_FSD_HOST}" "${TARVO_VOICE_HOST}")
        if(NOT host MATCHES "^${loopback}$")
            list(APPEND elsewhere "${host}")
        endif()
    endforeach()
    if(NOT TARVO_API_BASE_URL MATCHES "^https?://${loopback}([:/]|$)")
        list(APPEND elsewhere "${TARVO_API_BASE_URL}")
    endif()
    if(elsewhere)
        list(JOIN elsewhere ", " elsewhere)
        set(${variable} "TARVO_CONFIG_SECRET is the one of the practice network, but this build is for ${elsewhere}: \
stored passwords would be protected by a secret that everybody knows. Set 64 hexadecimal digits of your own." PARENT_SCOPE)
    endif()
endfunction()
