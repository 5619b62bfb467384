# The test framework for another processor, from Debian's sources.
set(googletest /usr/src/googletest)
if(NOT EXISTS ${googletest}/CMakeLists.txt)
    message(FATAL_ERROR "There is no ${googletest}; the package googletest brings it.")
endif()
set(INSTALL_GTEST OFF)
add_subdirectory(${googletest} ${PROJECT_BINARY_DIR}/googletest EXCLUDE_FROM_ALL)
