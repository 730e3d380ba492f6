# Cross build for 64-bit Windows with Debian's MinGW-w64 (g++-mingw-w64-x86-64-posix):
#   cmake -S . -B build/windows -G Ninja \
#       -DCMAKE_TOOLCHAIN_FILE=cmake/mingw-w64-x86_64.cmake -DVKL_GUI=OFF -DVKL_BENCH=OFF
# The posix thread model gives std::thread and std::mutex; the programs are linked statically,
# so a .exe runs without the compiler's DLLs beside it.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)

set(VKL_MINGW_PREFIX x86_64-w64-mingw32)
set(CMAKE_C_COMPILER ${VKL_MINGW_PREFIX}-gcc-posix)
set(CMAKE_CXX_COMPILER ${VKL_MINGW_PREFIX}-g++-posix)
set(CMAKE_RC_COMPILER ${VKL_MINGW_PREFIX}-windres)

set(CMAKE_FIND_ROOT_PATH /usr/${VKL_MINGW_PREFIX})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

set(CMAKE_EXE_LINKER_FLAGS_INIT "-static -static-libgcc -static-libstdc++")

# Lets CMake run what it built (try_run, test discovery) through Wine when it is there.
find_program(VKL_WINE wine)
if(VKL_WINE)
    set(CMAKE_CROSSCOMPILING_EMULATOR ${VKL_WINE})
endif()
