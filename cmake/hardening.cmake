# What every program of the project is protected by, whatever it is linked against. The test
# `binaries` looks for each of these in the programs.
include(CheckCXXCompilerFlag)
include(CheckPIESupported)

set(CMAKE_POSITION_INDEPENDENT_CODE ON)
check_pie_supported(LANGUAGES CXX)

target_compile_options(build_options INTERFACE -fstack-protector-strong)
target_link_options(build_options INTERFACE
    LINKER:-z,relro LINKER:-z,now LINKER:-z,noexecstack LINKER:-z,separate-code)
if(NOT SANITIZE AND CMAKE_BUILD_TYPE MATCHES "Rel")
    # The checks of the C library need an optimising compiler.
    target_compile_options(build_options INTERFACE -U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=3)
endif()
check_cxx_compiler_flag(-fcf-protection=full HAS_CONTROL_FLOW_PROTECTION)
# Of the x86 processors. Debian has no start-up code built so, so that a program is not marked as
# protected as a whole; its own functions are.
if(HAS_CONTROL_FLOW_PROTECTION)
    target_compile_options(build_options INTERFACE -fcf-protection=full)
endif()
