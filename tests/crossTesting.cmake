# The test framework for another processor, from Debian's sources.
set(googletest /usr/src/googletest)
if(NOT EXISTS ${googletest}/CMakeLists.txt)
    message(FATAL_ERROR "There is no ${googletest}. Install the package googletest.")
endif()
set(INSTALL_GTEST OFF)
add_subdirectory(${googletest} ${PROJECT_BINARY_DIR}/googletest EXCLUDE_FROM_ALL)
