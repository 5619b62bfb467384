# Debian's compiler for 32-bit ARM with hardware floating point; the tests run in an emulator of the processor.
set(target_triple arm-linux-gnueabihf)
set(CMAKE_SYSTEM_PROCESSOR arm)
set(emulator qemu-arm)
# Silences notes about values that g++ before 7.1 passed differently. Nothing was compiled by it.
set(CMAKE_CXX_FLAGS_INIT -Wno-psabi)
include(${CMAKE_CURRENT_LIST_DIR}/common.cmake)
