# Cross build for the device: AArch64 Linux with Debian's cross compiler (g++-aarch64-linux-gnu).
#   cmake -B build/aarch64 --toolchain cmake/toolchains/aarch64-linux-gnu.cmake
# Programs built here run on the build machine under qemu-aarch64 (qemu-user): CTest, test
# discovery and the tests that start other programs go through CMAKE_CROSSCOMPILING_EMULATOR.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR aarch64)

set(VARK_CROSS_TRIPLE aarch64-linux-gnu)
set(CMAKE_C_COMPILER ${VARK_CROSS_TRIPLE}-gcc)
set(CMAKE_CXX_COMPILER ${VARK_CROSS_TRIPLE}-g++)

set(VARK_CROSS_SYSROOT /usr/${VARK_CROSS_TRIPLE})
set(CMAKE_FIND_ROOT_PATH ${VARK_CROSS_SYSROOT})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

set(CMAKE_CROSSCOMPILING_EMULATOR qemu-aarch64 -L ${VARK_CROSS_SYSROOT})
