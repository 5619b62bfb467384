# Adds each test_NAME.py of the current folder to ctest as PREFIX.NAME, with a time limit in seconds
# and any further properties. Only in the release build, because these tests run the programs as
# shipped.
function(add_python_tests prefix timeout)
    if(NOT CMAKE_BUILD_TYPE STREQUAL "Release" OR SANITIZE)
        return()
    endif()
    find_package(Python3 3.11 REQUIRED COMPONENTS Interpreter)
    cmake_path(GET PROJECT_BINARY_DIR FILENAME preset)
    file(GLOB test_files CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/test_*.py)
    foreach(file IN LISTS test_files)
        cmake_path(GET file STEM name)
        string(REPLACE "test_" "" name ${name})
        add_test(NAME ${prefix}.${name} COMMAND ${Python3_EXECUTABLE} -B ${file})
        set_tests_properties(${prefix}.${name} PROPERTIES
            ENVIRONMENT BOARD_PRESET=${preset} TIMEOUT ${timeout} ${ARGN})
    endforeach()
endfunction()
