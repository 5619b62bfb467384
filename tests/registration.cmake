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

# Adds the tests of a test program to ctest, with `prefix` before their names. In an emulator a
# program's start costs more than its tests, so that they run in one process there.
#
# The longest test waits five seconds for a lock. What a test waits for has a deadline of up to two
# minutes, after which the test ends with a message; the time limit is for what has none.
function(register_tests program prefix)
    target_compile_options(${program} PRIVATE ${test_code_options})
    target_precompile_headers(${program} REUSE_FROM test_headers)
    if(UNITY_TESTS)
        set_target_properties(${program} PROPERTIES UNITY_BUILD ON UNITY_BUILD_BATCH_SIZE 9)
        # A fixture in an anonymous namespace is still its file's own; and memory is cheaper than
        # the compiler's search for what it no longer needs.
        target_compile_options(${program} PRIVATE
            -Wno-subobject-linkage --param=ggc-min-heapsize=1000000)
    endif()
    if(CMAKE_CROSSCOMPILING)
        add_test(NAME ${prefix}${program} COMMAND ${program} --gtest_brief=1)
        set_tests_properties(${prefix}${program} PROPERTIES TIMEOUT 900)
    else()
        set(properties ${ARGN})
        if(NOT properties)
            set(properties PROPERTIES TIMEOUT 300)
        endif()
        gtest_discover_tests(${program} TEST_PREFIX "${prefix}" DISCOVERY_TIMEOUT 60 ${properties})
    endif()
endfunction()
