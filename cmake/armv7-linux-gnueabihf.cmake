# 32-bit ARM with NEON, as on Debian's armhf; programs run under qemu-arm.
set(CMAKE_SYSTEM_PROCESSOR armv7)
set(cross_triple arm-linux-gnueabihf)
set(cross_flags "-march=armv7-a -mfpu=neon -mthumb")
set(cross_emulator qemu-arm)
include(${CMAKE_CURRENT_LIST_DIR}/DebianCross.cmake)
