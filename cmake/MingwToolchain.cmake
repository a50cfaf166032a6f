# What both Windows cross builds share, with Debian's MinGW-w64 (posix
# threads); the toolchain files name the processor and include this.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR ${BVX_MINGW_PROCESSOR})
set(CMAKE_C_COMPILER ${BVX_MINGW_PROCESSOR}-w64-mingw32-gcc-posix)
set(CMAKE_CXX_COMPILER ${BVX_MINGW_PROCESSOR}-w64-mingw32-g++-posix)
set(CMAKE_RC_COMPILER ${BVX_MINGW_PROCESSOR}-w64-mingw32-windres)
set(CMAKE_FIND_ROOT_PATH /usr/${BVX_MINGW_PROCESSOR}-w64-mingw32)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_CROSSCOMPILING_EMULATOR wine)
