# Checks of a board's SDK when configuring, so that errors do not come from compiler or linker.

# Fails unless `folder` has every header of the board that the program includes.
function(check_headers folder)
    set(sources)
    foreach(part main html pages data)
        file(GLOB files ${PROJECT_SOURCE_DIR}/${part}/*.cpp ${PROJECT_SOURCE_DIR}/${part}/*.h)
        list(APPEND sources ${files})
    endforeach()
    set(missing)
    foreach(source ${sources})
        file(STRINGS ${source} lines REGEX "^#include <VeskLib/")
        foreach(line ${lines})
            string(REGEX REPLACE "^#include <([^>]*)>.*" "\\1" header ${line})
            if(NOT EXISTS ${folder}/${header})
                list(APPEND missing ${header})
            endif()
        endforeach()
    endforeach()
    if(missing)
        list(REMOVE_DUPLICATES missing)
        list(SORT missing)
        list(JOIN missing "\n  " lines)
        message(FATAL_ERROR "The program includes headers that are not in ${folder}:\n  ${lines}")
    endif()
endfunction()

# Sets `variable` to the word size, the byte order and the machine of an ELF file, or of the first
# member of an archive; to "" for other files.
function(read_machine file variable)
    execute_process(COMMAND ${CMAKE_READELF} --file-header ${file}
        OUTPUT_VARIABLE output ERROR_QUIET RESULT_VARIABLE ignored)
    set(machine)
    foreach(field Class Data Machine)
        if(output MATCHES "\n +${field}: +([^\n]*)")
            list(APPEND machine ${CMAKE_MATCH_1})
        endif()
    endforeach()
    list(JOIN machine ", " machine)
    set(${variable} "${machine}" PARENT_SCOPE)
endfunction()

# Fails unless there is a library in `folder` and each of the given libraries is for the compiler's
# target processor. Ignores files that are not ELF libraries, such as linker scripts.
function(check_libraries folder)
    if(NOT ARGN)
        message(FATAL_ERROR "There is no library in ${folder}.")
    endif()
    if(NOT CMAKE_READELF)
        return()
    endif()
    set(source ${PROJECT_BINARY_DIR}/CMakeFiles/machine.cpp)
    file(WRITE ${source} "int main() {}\n")
    try_compile(COMPILED ${PROJECT_BINARY_DIR}/CMakeFiles/machine ${source}
        COPY_FILE ${PROJECT_BINARY_DIR}/CMakeFiles/machine.elf)
    read_machine(${PROJECT_BINARY_DIR}/CMakeFiles/machine.elf wanted)
    foreach(library ${ARGN})
        read_machine(${library} found)
        if(found AND wanted AND NOT found STREQUAL wanted)
            message(FATAL_ERROR "${library} is for another processor than the compiler's:\n"
                "  the library: ${found}\n  the compiler: ${wanted}")
        endif()
    endforeach()
endfunction()

# Warns if the program's times overflow in January 2038, because a 32-bit C library may ignore
# _TIME_BITS.
function(check_times)
    if(NOT CMAKE_SIZEOF_VOID_P EQUAL 4)
        return()
    endif()
    set(CMAKE_REQUIRED_DEFINITIONS -D_FILE_OFFSET_BITS=64 -D_TIME_BITS=64)
    check_cxx_source_compiles("#include <ctime>
static_assert(sizeof(std::time_t) >= 8);
int main() {}" HAS_64_BIT_TIMES)
    if(NOT HAS_64_BIT_TIMES)
        message(WARNING "The C library has only 32-bit times, so the pages show wrong times from "
            "January 2038 on; docs/porting.md lists the versions that have 64-bit times.")
    endif()
endfunction()
