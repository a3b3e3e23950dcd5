# 32-bit ARM as on Debian's armhf: only kernels that ask for NEON have it. Programs run under
# qemu-arm, whose processor has it.
set(CMAKE_SYSTEM_PROCESSOR armv7)
set(cross_triple arm-linux-gnueabihf)
set(cross_flags "-march=armv7-a -mfpu=vfpv3-d16 -mthumb")
set(cross_emulator qemu-arm)
include(${CMAKE_CURRENT_LIST_DIR}/DebianCross.cmake)
