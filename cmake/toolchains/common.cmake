# Common settings of Debian's cross compilers. The including file sets target_triple,
# CMAKE_SYSTEM_PROCESSOR and emulator.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_C_COMPILER ${target_triple}-gcc)
set(CMAKE_CXX_COMPILER ${target_triple}-g++)

set(target_root /usr/${target_triple})
set(CMAKE_CROSSCOMPILING_EMULATOR ${emulator} -L ${target_root})

set(CMAKE_FIND_ROOT_PATH ${target_root})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
