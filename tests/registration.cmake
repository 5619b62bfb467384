# Test code need not be fast. The tested code is optimised.
set(test_code_options -O0)

# The headers that nearly every test includes, precompiled once for all test programs.
file(GENERATE OUTPUT testHeaders.cpp CONTENT "")
add_library(test_headers OBJECT ${CMAKE_CURRENT_BINARY_DIR}/testHeaders.cpp)
target_compile_options(test_headers PRIVATE ${test_code_options})
target_link_libraries(test_headers PRIVATE GTest::gmock build_options)
target_precompile_headers(test_headers PRIVATE <gmock/gmock.h> <gtest/gtest.h>)
# As in the test programs.
set_target_properties(test_headers PROPERTIES POSITION_INDEPENDENT_CODE OFF)

# Limits these tests to one for each processor at a time: ./check has four slots for each processor,
# and such a test takes four. A test that mostly waits takes one.
function(keeps_processor_busy)
    set_tests_properties(${ARGN} PROPERTIES PROCESSORS 4)
endfunction()

# Starts these tests first, because they take longest.
function(takes_long)
    set_tests_properties(${ARGN} PROPERTIES COST 100)
endfunction()

# Sets `variable` to the environment setting with which a test writes its coverage counts, in a build
# that counts. tools/coverage reads them.
function(profile_of group variable)
    set(${variable} "LLVM_PROFILE_FILE=${PROJECT_BINARY_DIR}/profiles/${group}/%m.profraw" PARENT_SCOPE)
endfunction()

# Adds the tests of a test program to ctest, as `group`, or as `group`.1 to `group`.N with SHARDS N.
# Each of these is one process, which runs its share of the tests in random order. Starting a process
# costs more than most tests, and tests that wait can wait at the same time.
#
# WORKS is for tests that keep a processor busy, QUICK for tests of `./check quick`.
#
# To run one test: PROGRAM --gtest_filter=SUITE.TEST. `tools/list_tests` prints all names.
#
# A wait in a test has a deadline of up to two minutes, after which the test fails with a message. The
# time limit is for hangs without a deadline.
function(register_tests program group)
    cmake_parse_arguments(PARSE_ARGV 2 tests "QUICK;WORKS" SHARDS "")
    target_compile_options(${program} PRIVATE ${test_code_options})
    target_precompile_headers(${program} REUSE_FROM test_headers)
    if(CMAKE_CROSSCOMPILING OR NOT tests_SHARDS)
        # Starting an emulator takes longer than the waits.
        set(tests_SHARDS 1)
    endif()
    profile_of(${group} profile)
    foreach(shard RANGE 1 ${tests_SHARDS})
        set(name ${group})
        if(tests_SHARDS GREATER 1)
            string(APPEND name .${shard})
        endif()
        math(EXPR index "${shard} - 1")
        add_test(NAME ${name} COMMAND ${program} --gtest_shuffle)
        set_tests_properties(${name} PROPERTIES TIMEOUT 900
            LABELS "googletest$<$<BOOL:${tests_QUICK}>:;quick>"
            ENVIRONMENT "GTEST_TOTAL_SHARDS=${tests_SHARDS};GTEST_SHARD_INDEX=${index};${profile}")
        if(tests_WORKS)
            keeps_processor_busy(${name})
        endif()
    endforeach()
endfunction()
