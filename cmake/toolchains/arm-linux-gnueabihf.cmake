# Debian's compiler for 32-bit ARM with hardware floating point; the tests run in an emulator of the processor.
set(target_triple arm-linux-gnueabihf)
set(CMAKE_SYSTEM_PROCESSOR arm)
set(emulator qemu-arm)
include(${CMAKE_CURRENT_LIST_DIR}/common.cmake)
