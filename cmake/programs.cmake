# Linking of the programs that the web server starts for each request. Such a process lives for less
# than a millisecond and spends most of that on loading. Therefore they are linked statically, with
# link-time optimisation: no symbol is looked up at run time, and unused code is left out.
include(CheckCXXSourceCompiles)

if(CMAKE_BUILD_TYPE STREQUAL "Release" AND NOT SANITIZE AND NOT COVERAGE)
    set(static_by_default ON)
else()
    set(static_by_default OFF)
endif()
option(STATIC_PROGRAM "Link the CGI programs statically; OFF for a board of shared libraries"
    ${static_by_default})

# Sets `variable` to true if programs can be linked with `option` and the linker does not ignore it.
function(check_link_option option variable)
    set(CMAKE_REQUIRED_LINK_OPTIONS ${option})
    check_cxx_source_compiles("int main() {}" ${variable} FAIL_REGEX "ignored")
endfunction()

# A static program that can be loaded at any address. Some C libraries lack the start-up code.
check_link_option(-static-pie HAS_STATIC_PIE)
check_link_option(LINKER:-z,pack-relative-relocs CAN_PACK_RELOCATIONS)

# The compiler options for the libraries of such programs.
add_library(program_options INTERFACE)
target_link_libraries(program_options INTERFACE build_options)
target_compile_options(program_options INTERFACE -ffunction-sections -fdata-sections)
if(STATIC_PROGRAM)
    # Adds machine code to the linker's intermediate code, so that tests link without optimisation.
    target_compile_options(program_options INTERFACE -flto=auto -ffat-lto-objects)
    # Makes ar index the machine code as well. By default it indexes only the intermediate code, and a
    # test would get the same object again for each library that is listed twice.
    math(EXPR word_bits "8 * ${CMAKE_SIZEOF_VOID_P}")
    string(TOLOWER ${CMAKE_CXX_BYTE_ORDER} byte_order)
    string(REPLACE "_endian" "" byte_order ${byte_order})
    set(CMAKE_CXX_ARCHIVE_CREATE
        "<CMAKE_AR> --target=elf${word_bits}-${byte_order} qcs <TARGET> <OBJECTS>")
    set(CMAKE_CXX_ARCHIVE_APPEND
        "<CMAKE_AR> --target=elf${word_bits}-${byte_order} qs <TARGET> <OBJECTS>")
    set(CMAKE_CXX_ARCHIVE_FINISH "")
endif()

# Links an executable of program_options so that it starts quickly.
function(link_as_program target)
    target_link_libraries(${target} PRIVATE program_options)
    target_link_options(${target} PRIVATE LINKER:--gc-sections)
    if(NOT STATIC_PROGRAM)
        return()
    endif()
    if(NOT BOARD_SDK)
        target_sources(${target} PRIVATE ${PROJECT_SOURCE_DIR}/platform/host/base/requestMemory.cpp)
    endif()
    # g++ 12 gives false warnings of overflows when it optimises the whole program.
    target_link_options(${target} PRIVATE -flto=auto -Wno-stringop-overflow)
    if(HAS_STATIC_PIE)
        # Given as a library, because CMake appends its own -pie after all options.
        target_link_libraries(${target} PRIVATE -static-pie)
    else()
        set_target_properties(${target} PROPERTIES POSITION_INDEPENDENT_CODE OFF)
        target_link_options(${target} PRIVATE -static)
    endif()
    if(HAS_STATIC_PIE AND CAN_PACK_RELOCATIONS)
        target_link_options(${target} PRIVATE LINKER:-z,pack-relative-relocs)
    endif()
endfunction()
