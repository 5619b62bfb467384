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

# Makes the tests of a test program known to ctest, their names with `prefix` in front. In an
# emulator a program's start costs more than its tests, so that they run in one process there.
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
    else()
        gtest_discover_tests(${program} TEST_PREFIX "${prefix}" DISCOVERY_TIMEOUT 60 ${ARGN})
    endif()
endfunction()
