# Debian's compiler for 32-bit big-endian PowerPC; the tests run in an emulator of the processor.
set(target_triple powerpc-linux-gnu)
set(CMAKE_SYSTEM_PROCESSOR powerpc)
set(emulator qemu-ppc)
include(${CMAKE_CURRENT_LIST_DIR}/common.cmake)
