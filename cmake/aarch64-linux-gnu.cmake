# Cross build for the AArch64 Linux target with Debian's cross toolchain; the
# tests run under qemu user-mode emulation with the target's libraries.
#   cmake -S . -B build/aarch64 -DCMAKE_TOOLCHAIN_FILE=cmake/aarch64-linux-gnu.cmake
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR aarch64)

set(ISPDSP_TARGET_TRIPLE aarch64-linux-gnu)
set(ISPDSP_TARGET_SYSROOT /usr/${ISPDSP_TARGET_TRIPLE})

set(CMAKE_C_COMPILER ${ISPDSP_TARGET_TRIPLE}-gcc)
set(CMAKE_CXX_COMPILER ${ISPDSP_TARGET_TRIPLE}-g++)
# CMake takes the target's binutils (CMAKE_READELF, CMAKE_NM, used by the
# library checks) from the compiler's prefix: aarch64-linux-gnu-readelf.

set(CMAKE_CROSSCOMPILING_EMULATOR qemu-aarch64 -L ${ISPDSP_TARGET_SYSROOT})

# Libraries and headers of the target only; programs of the build machine.
# Build-machine packages (GTest, Google Benchmark) are never picked up.
set(CMAKE_FIND_ROOT_PATH ${ISPDSP_TARGET_SYSROOT})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# Host tools and benchmarks are for the development machine only.
set(ISPDSP_BUILD_TOOLS OFF CACHE BOOL "Build the host tools" FORCE)
set(ISPDSP_BUILD_BENCH OFF CACHE BOOL "Build the benchmarks" FORCE)
