# Hardening of every program of the project, whatever it is linked with. The test `binaries` checks
# the programs for each of these.
include(CheckCXXCompilerFlag)
include(CheckPIESupported)

set(CMAKE_POSITION_INDEPENDENT_CODE ON)
check_pie_supported(LANGUAGES CXX)

target_compile_options(build_options INTERFACE -fstack-protector-strong)
target_link_options(build_options INTERFACE
    LINKER:-z,relro LINKER:-z,now LINKER:-z,noexecstack LINKER:-z,separate-code)
if(NOT SANITIZE AND CMAKE_BUILD_TYPE MATCHES "Rel")
    # The C library's checks need optimisation.
    target_compile_options(build_options INTERFACE -U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=3)
endif()
check_cxx_compiler_flag(-fcf-protection=full HAS_CONTROL_FLOW_PROTECTION)
# x86 only. Protects the program's own functions. The program as a whole is not marked as protected,
# because Debian's start-up code is not built with this option.
if(HAS_CONTROL_FLOW_PROTECTION)
    target_compile_options(build_options INTERFACE -fcf-protection=full)
endif()
