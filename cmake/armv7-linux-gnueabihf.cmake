# Debian's cross compiler (g++-arm-linux-gnueabihf); programs run under qemu-arm (qemu-user).
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR armv7)
set(CMAKE_C_COMPILER arm-linux-gnueabihf-gcc)
set(CMAKE_CXX_COMPILER arm-linux-gnueabihf-g++)

set(arm_flags "-march=armv7-a -mfpu=neon -mthumb")
set(CMAKE_C_FLAGS_INIT "${arm_flags}")
set(CMAKE_CXX_FLAGS_INIT "${arm_flags}")

# What the host has installed is for another processor; headers and CMake's own modules are not.
set(CMAKE_FIND_ROOT_PATH /usr/arm-linux-gnueabihf)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

set(CMAKE_CROSSCOMPILING_EMULATOR
    qemu-arm -L /usr/arm-linux-gnueabihf
    -E LD_LIBRARY_PATH=/usr/arm-linux-gnueabihf/lib)
