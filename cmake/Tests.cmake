# Ways to register tests.
#
# vuksim_add_tests(<name> SOURCES <files> [LIBRARIES <targets>] [INCLUDES <folders>])
# makes one GoogleTest program and registers each of its tests with ctest.
#
# vuksim_add_test_program(<name> SOURCES <files> [LIBRARIES <targets>] [INCLUDES <folders>])
# makes a GoogleTest program that has a main of its own and registers nothing.
#
# Both take LONG for tests that work for seconds: these are worth some optimisation.
#
# vuksim_add_program_test(<test> <target>)
# runs a program without arguments in an empty folder; it must end with 0.
include(GoogleTest)

set(VUKSIM_GTEST_SOURCE "" CACHE PATH
    "Build GoogleTest from the sources in this folder, with this build's compiler and options")
if(VUKSIM_GTEST_SOURCE)
    add_subdirectory("${VUKSIM_GTEST_SOURCE}" "${CMAKE_BINARY_DIR}/googletest" EXCLUDE_FROM_ALL SYSTEM)
else()
    find_package(GTest REQUIRED)
endif()

# The optimiser and debug information take longer over tests than over all they test, to no use:
# a preset may say what to do for them instead.
set(VUKSIM_TEST_OPTIONS "" CACHE STRING "Compiler options for tests, behind those of the build type")
set(VUKSIM_LONG_TEST_OPTIONS "" CACHE STRING "Compiler options behind them for tests that work for seconds")

option(VUKSIM_SLOW_BUILD "What is built runs many times slower: the longest tests do a part of their work"
    OFF)

# GoogleTest's headers are by far the largest that a test includes: they are compiled once for all
# tests of the same options.
function(vuksim_compile_test_headers name)
    add_library(${name} OBJECT "${CMAKE_CURRENT_FUNCTION_LIST_DIR}/test_headers.cpp")
    target_compile_features(${name} PRIVATE cxx_std_20)
    target_precompile_headers(${name} PRIVATE <gmock/gmock.h> <gtest/gtest.h>)
    target_link_libraries(${name} PRIVATE GTest::gmock GTest::gtest)
    # -Wpedantic changes a predefined macro: without it the compiled headers would not fit the tests.
    vuksim_warnings(${name})
    target_compile_options(${name} PRIVATE ${ARGN})
    set_property(TARGET ${name} PROPERTY CXX_CLANG_TIDY "")
endfunction()
vuksim_compile_test_headers(vuksim_test_headers ${VUKSIM_TEST_OPTIONS})
if(VUKSIM_LONG_TEST_OPTIONS)
    vuksim_compile_test_headers(vuksim_long_test_headers
        ${VUKSIM_TEST_OPTIONS} ${VUKSIM_LONG_TEST_OPTIONS})
endif()

# Tests are looked over for names and a few cheap mistakes only: each check walks through all of
# GoogleTest in every file, and the full list would take minutes, to no finding.
set(checks_for_tests ${CMAKE_CXX_CLANG_TIDY}
    "--checks=-*,readability-identifier-naming,bugprone-dangling-handle,bugprone-string-constructor,bugprone-suspicious-semicolon,bugprone-unused-raii")

option(VUKSIM_TIDY_TESTS "Let clang-tidy, where it runs, look at the tests too" OFF)

function(vuksim_add_test_program name)
    cmake_parse_arguments(PARSE_ARGV 1 arg "LONG" "" "SOURCES;LIBRARIES;INCLUDES")
    add_executable(${name} ${arg_SOURCES})
    target_compile_features(${name} PRIVATE cxx_std_20)
    target_compile_options(${name} PRIVATE ${VUKSIM_TEST_OPTIONS})
    target_include_directories(${name} PRIVATE ${arg_INCLUDES})
    if(arg_LONG AND VUKSIM_LONG_TEST_OPTIONS)
        target_compile_options(${name} PRIVATE ${VUKSIM_LONG_TEST_OPTIONS})
        target_precompile_headers(${name} REUSE_FROM vuksim_long_test_headers)
    else()
        target_precompile_headers(${name} REUSE_FROM vuksim_test_headers)
    endif()
    target_link_libraries(${name} PRIVATE ${arg_LIBRARIES} GTest::gmock GTest::gtest)
    vuksim_warnings(${name})
    if(NOT VUKSIM_TIDY_TESTS)
        # Even so the tests take clang-tidy longer than all of the library.
        set_property(TARGET ${name} PROPERTY CXX_CLANG_TIDY "")
    elseif(CMAKE_CXX_CLANG_TIDY)
        set_property(TARGET ${name} PROPERTY CXX_CLANG_TIDY "${checks_for_tests}")
    endif()
endfunction()

function(vuksim_add_tests name)
    vuksim_add_test_program(${name} ${ARGN})
    target_link_libraries(${name} PRIVATE GTest::gtest_main)
    gtest_discover_tests(${name}
        TEST_PREFIX "${name}."
        DISCOVERY_TIMEOUT 60
        DISCOVERY_MODE PRE_TEST
        PROPERTIES TIMEOUT 300)
endfunction()

function(vuksim_add_program_test test target)
    add_test(NAME ${test}
        COMMAND "${CMAKE_COMMAND}" "-DPROGRAM=$<TARGET_FILE:${target}>"
            "-DFOLDER=${CMAKE_CURRENT_BINARY_DIR}/run_${target}"
            -P "${PROJECT_SOURCE_DIR}/cmake/run_in_empty_folder.cmake")
endfunction()
