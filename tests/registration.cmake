# Test code needs no speed; what it tests is optimised.
set(test_code_options -O0)

# The headers that nearly every test includes, compiled once for all test programs.
file(GENERATE OUTPUT testHeaders.cpp CONTENT "")
add_library(test_headers OBJECT ${CMAKE_CURRENT_BINARY_DIR}/testHeaders.cpp)
target_compile_options(test_headers PRIVATE ${test_code_options})
target_link_libraries(test_headers PRIVATE GTest::gmock build_options)
target_precompile_headers(test_headers PRIVATE <gmock/gmock.h> <gtest/gtest.h>)
# As in a program.
set_target_properties(test_headers PROPERTIES POSITION_INDEPENDENT_CODE OFF)

# Lets only as many of these tests run at once as there are processors: ./check has four slots for each
# processor, and such a test takes four. A test that mostly waits takes one.
function(keeps_processor_busy)
    set_tests_properties(${ARGN} PROPERTIES PROCESSORS 4)
endfunction()

# Starts these tests first, because the others take less than they do.
function(takes_long)
    set_tests_properties(${ARGN} PROPERTIES COST 100)
endfunction()

# Sets `variable` to the setting by which a test counts what it reaches, where a build counts, for
# tools/coverage.
function(profile_of group variable)
    set(${variable} "LLVM_PROFILE_FILE=${PROJECT_BINARY_DIR}/profiles/${group}/%m.profraw" PARENT_SCOPE)
endfunction()

# Adds the tests of a test program to ctest, as `group`, or as `group`.1 to `group`.N with SHARDS N.
# Each of these is one process, which runs its share of the program's tests in an order of its own:
# to start a process costs more than most tests, and waiting for several at once no more than for one.
#
# WORKS is for tests that keep a processor busy, QUICK for those of `./check quick`.
#
# To run one test: PROGRAM --gtest_filter=SUITE.TEST. `tools/list_tests` prints the names of all.
#
# What a test waits for has a deadline of up to two minutes, after which the test ends with a message;
# the time limit is for what has none.
function(register_tests program group)
    cmake_parse_arguments(PARSE_ARGV 2 tests "QUICK;WORKS" SHARDS "")
    target_compile_options(${program} PRIVATE ${test_code_options})
    target_precompile_headers(${program} REUSE_FROM test_headers)
    if(CMAKE_CROSSCOMPILING OR NOT tests_SHARDS)
        # An emulator takes longer to start than to wait.
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
