# Build settings: what a packager chooses, and the compiler flags that every target gets.

include(TarvoHardening)

# --- the network this build talks to; the defaults are the practice network on this machine ---
set(TARVO_API_BASE_URL "http://127.0.0.1:8080/api" CACHE STRING "Account service, ending in /api")
set(TARVO_FSD_HOST "127.0.0.1" CACHE STRING "FSD server, host name or IPv4 address (port 6809)")
set(TARVO_VOICE_HOST "127.0.0.1" CACHE STRING "Voice server, host name or IPv4 address")
set(TARVO_UPDATE_URL "" CACHE STRING "Web page with the newest version; empty: the pages offer none")
set(TARVO_DOCS_URL "" CACHE STRING "Web page with the documentation; empty: the pages offer none")
set(TARVO_REGISTER_URL "http://127.0.0.1:8080/register" CACHE STRING "Web page on which a pilot registers")
# A packager sets 32 bytes of its own, as 64 hexadecimal digits; they protect the stored password.
set(TARVO_DEFAULT_SECRET "7461727666f6c794e2a51c0d98b3775fd04e8126a9c36b1f5288e7304cbd96a1")
set(TARVO_CONFIG_SECRET "${TARVO_DEFAULT_SECRET}"
    CACHE STRING "32 secret bytes of the configuration cipher, in hexadecimal")
string(LENGTH "${TARVO_CONFIG_SECRET}" secretLength)
if(NOT secretLength EQUAL 64 OR NOT TARVO_CONFIG_SECRET MATCHES "^[0-9A-Fa-f]+$")
    message(FATAL_ERROR "TARVO_CONFIG_SECRET must be 64 hexadecimal digits (32 bytes)")
endif()
tarvo_secret_warning(secretWarning)
if(secretWarning)
    message(WARNING "${secretWarning}")
endif()

set(TARVO_PACKAGER "TarvoClient <packager@localhost>" CACHE STRING "Who makes the packages: name <mail address>")
option(TARVO_HARDEN_CODE "Stack protector, fortified functions, control-flow protection" OFF)
option(TARVO_WERROR "Treat warnings as errors" OFF)
option(TARVO_BUILD_PRACTICE "Build the practice network; the tests need it" ON)
option(TARVO_WITHOUT_PAGES "Only modules that know nothing of pages, and their tests: for a Qt without Quick and its HTTP server" OFF)
set(TARVO_PRACTICE_PROGRAM "" CACHE FILEPATH "Without pages: the practice network that tests meet, of the system that runs them")
option(TARVO_BUILD_BENCH "Build the benchmarks" OFF)
option(TARVO_UNITY_TESTS "Compile the files of a test program together: half the time for all, longer for one" OFF)
option(TARVO_BUILD_FUZZ "Build the libFuzzer targets (needs clang)" OFF)
set(TARVO_SANITIZE "" CACHE STRING "Sanitizers, as given to -fsanitize=")

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_SKIP_INSTALL_ALL_DEPENDENCY ON) # a package is made of what is built already
set(CMAKE_AUTOMOC ON)
set(CMAKE_AUTORCC ON)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)

add_compile_definitions(
    QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII QT_NO_FOREACH QT_NO_NARROWING_CONVERSIONS_IN_CONNECT
    QT_MESSAGELOGCONTEXT MSGPACK_NO_BOOST)

if(CMAKE_CXX_COMPILER_ID MATCHES "GNU|Clang")
    add_compile_options(-Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor)
    if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
        add_compile_options(-Wno-maybe-uninitialized) # g++ 12 finds it in every optimised std::optional
    endif()
    if(TARVO_WERROR)
        add_compile_options(-Werror)
    endif()
    if(TARVO_SANITIZE)
        add_compile_options(-fsanitize=${TARVO_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all -O1)
        # Without RELRO: where code ends at the last byte of a page and .tbss comes next, mold 1.10 lets RELRO begin on a
        # page that isn't there, and the loader refuses the program. Of those that are shipped the tests would tell.
        add_link_options(-fsanitize=${TARVO_SANITIZE} LINKER:-z,norelro)
    endif()
    if(TARVO_BUILD_FUZZ)
        add_compile_options(-fsanitize=fuzzer-no-link)
    endif()
endif()

find_program(CCACHE ccache)
if(CCACHE)
    # The sloppiness is what ccache asks for to cache precompiled headers.
    set(CMAKE_CXX_COMPILER_LAUNCHER ${CMAKE_COMMAND} -E env
        CCACHE_SLOPPINESS=pch_defines,time_macros,include_file_mtime,include_file_ctime
        CCACHE_BASEDIR=${CMAKE_SOURCE_DIR} CCACHE_NOHASHDIR=1 ${CCACHE})
    if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
        add_compile_options(-fpch-preprocess)
    endif()
endif()
find_program(MOLD mold)
if(MOLD AND NOT WIN32)
    add_link_options(-fuse-ld=mold)
endif()
