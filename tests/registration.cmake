# Makes the tests of a test program known to ctest, their names with `prefix` in front. In an
# emulator a program's start costs more than its tests, so that they run in one process there.
function(register_tests program prefix)
    # The tests themselves need no speed; what they test is optimised.
    target_compile_options(${program} PRIVATE -O0 -U_FORTIFY_SOURCE)
    # Much of what is included is the same everywhere.
    target_precompile_headers(${program} PRIVATE <gmock/gmock.h> <gtest/gtest.h>)
    if(CMAKE_CROSSCOMPILING)
        add_test(NAME ${prefix}${program} COMMAND ${program} --gtest_brief=1)
    else()
        gtest_discover_tests(${program} TEST_PREFIX "${prefix}" DISCOVERY_TIMEOUT 60 ${ARGN})
    endif()
endfunction()
