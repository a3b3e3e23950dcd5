# 64-bit ARM, as on Debian's arm64; programs run under qemu-aarch64.
set(CMAKE_SYSTEM_PROCESSOR aarch64)
set(cross_triple aarch64-linux-gnu)
set(cross_flags "-march=armv8-a")
set(cross_emulator qemu-aarch64)
include(${CMAKE_CURRENT_LIST_DIR}/DebianCross.cmake)
