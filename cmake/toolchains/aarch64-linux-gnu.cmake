# Debian's compiler for 64-bit little-endian ARM; the tests run in an emulator of the processor.
set(target_triple aarch64-linux-gnu)
set(CMAKE_SYSTEM_PROCESSOR aarch64)
set(emulator qemu-aarch64)
include(${CMAKE_CURRENT_LIST_DIR}/common.cmake)
