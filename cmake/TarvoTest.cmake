# tarvo_test_options(<target>)
#
# Compiles test code sooner: a dozen files as one text where the preset asks for it, so that their names outside of classes
# differ within a folder; -O1 suffices for it, and UndefinedBehaviorSanitizer, which doubles the time of a file full of
# comparisons, has the product's own sources to watch. AddressSanitizer stays: what the product keeps of a test's objects
# is seen only there. The names that Qt6::Test adds would keep the folders from sharing a precompiled header.
function(tarvo_test_options target)
    target_compile_options(${target} PRIVATE
        $<$<CXX_COMPILER_ID:GNU,Clang>:-UQT_TESTCASE_BUILDDIR;-UQT_TESTCASE_SOURCEDIR>
        $<$<AND:$<CONFIG:RelWithDebInfo>,$<CXX_COMPILER_ID:GNU,Clang>>:-O1>)
    if(TARVO_UNITY_TESTS)
        set_target_properties(${target} PROPERTIES UNITY_BUILD ON UNITY_BUILD_BATCH_SIZE 12)
        if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
            # It takes the file of includes for the main file, and every file in it for a header.
            target_compile_options(${target} PRIVATE -Wno-subobject-linkage)
        endif()
    endif()
    if(TARVO_SANITIZE)
        target_compile_options(${target} PRIVATE -fno-sanitize=undefined)
    endif()
endfunction()

# tarvo_test(<name> [GUI] SOURCES <file>... [USES <library>...] [LAUNCHER <command> <argument>...] [COST <seconds>])
#
# One test program, <name>_test, for one folder of tests/. Its classes register themselves with TARVO_TEST
# (tests/support/TestRegistry.h). GUI gives it a QApplication on the offscreen platform. LAUNCHER runs it; 77 from there
# means that the test can't be run here. COST is of a long one, roughly and under AddressSanitizer: the long ones begin first,
# or the last of them would run alone.
function(tarvo_test name)
    cmake_parse_arguments(ARG "GUI" "COST" "SOURCES;USES;LAUNCHER" ${ARGN})
    set(target ${name}_test)
    add_executable(${target} ${ARG_SOURCES})
    target_include_directories(${target} PRIVATE ${PROJECT_SOURCE_DIR}/tests)
    set(main tarvo_test_main)
    if(ARG_GUI)
        set(main tarvo_test_main_gui)
    endif()
    target_link_libraries(${target} PRIVATE ${main} ${ARG_USES})
    target_precompile_headers(${target} REUSE_FROM ${main})
    tarvo_test_options(${target})
    # What passes would bury what fails.
    add_test(NAME ${name} COMMAND ${ARG_LAUNCHER} ${CMAKE_CROSSCOMPILING_EMULATOR} $<TARGET_FILE:${target}> -silent)
    set_tests_properties(${name} PROPERTIES SKIP_RETURN_CODE 77)
    # Seconds. The slowest, view, took 419 under AddressSanitizer while another check kept both cores busy.
    set_tests_properties(${name} PROPERTIES TIMEOUT 1200)
    if(ARG_COST)
        set_tests_properties(${name} PROPERTIES COST ${ARG_COST})
    endif()
    set_property(TEST ${name} PROPERTY ENVIRONMENT
        "QT_QPA_PLATFORM=offscreen"
        "QT_QUICK_BACKEND=software"
        "ASAN_OPTIONS=detect_stack_use_after_return=1"
        "LSAN_OPTIONS=suppressions=${PROJECT_SOURCE_DIR}/tests/support/lsan.supp"
        "TSAN_OPTIONS=ignore_noninstrumented_modules=1:halt_on_error=1"
        "UBSAN_OPTIONS=print_stacktrace=1")
endfunction()

# tarvo_fuzz(<name> SOURCES <file>... [USES <library>...])
#
# With TARVO_BUILD_FUZZ a libFuzzer program, <name>_fuzz. Always a test, fuzz_<name>, that replays the seed corpus
# tests/fuzz/corpus/<name> through the same entry function.
function(tarvo_fuzz name)
    cmake_parse_arguments(ARG "" "" "SOURCES;USES" ${ARGN})
    if(TARVO_BUILD_FUZZ)
        add_executable(${name}_fuzz ${ARG_SOURCES})
        target_link_libraries(${name}_fuzz PRIVATE ${ARG_USES})
        target_link_options(${name}_fuzz PRIVATE -fsanitize=fuzzer)
    endif()
    add_executable(${name}_replay ${ARG_SOURCES} ${PROJECT_SOURCE_DIR}/tests/fuzz/replay_main.cpp)
    target_link_libraries(${name}_replay PRIVATE ${ARG_USES} Qt6::Core)
    set_target_properties(${name}_replay PROPERTIES AUTOMOC OFF)
    add_test(NAME fuzz_${name} COMMAND ${name}_replay ${PROJECT_SOURCE_DIR}/tests/fuzz/corpus/${name})
    set_tests_properties(fuzz_${name} PROPERTIES TIMEOUT 120)
endfunction()
