# Cross compiler for 64-bit Windows: MinGW-w64 with posix threads, as Debian packages it.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)

set(KELINS_TRIPLE x86_64-w64-mingw32)
set(CMAKE_C_COMPILER ${KELINS_TRIPLE}-gcc-posix)
set(CMAKE_CXX_COMPILER ${KELINS_TRIPLE}-g++-posix)
set(CMAKE_RC_COMPILER ${KELINS_TRIPLE}-windres)

set(CMAKE_FIND_ROOT_PATH /usr/${KELINS_TRIPLE})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE BOTH) # or an installed package outside the root path is not seen

# Programs built here run through Wine, in the prefix that scripts/wine-prefix.sh makes in the build folder.
set(CMAKE_CROSSCOMPILING_EMULATOR "${CMAKE_CURRENT_LIST_DIR}/../scripts/wine-test.sh")
