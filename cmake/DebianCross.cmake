# What the toolchain files of Debian's cross compilers (g++-<triple>, with qemu-user) have in common.
# A preset that names clang gets clang: it finds headers, libraries and linker by the triple.
set(CMAKE_SYSTEM_NAME Linux)
if(NOT CMAKE_C_COMPILER)
  set(CMAKE_C_COMPILER ${cross_triple}-gcc)
endif()
if(NOT CMAKE_CXX_COMPILER)
  set(CMAKE_CXX_COMPILER ${cross_triple}-g++)
endif()
set(CMAKE_C_COMPILER_TARGET ${cross_triple})
set(CMAKE_CXX_COMPILER_TARGET ${cross_triple})
set(CMAKE_C_FLAGS_INIT "${cross_flags}")
set(CMAKE_CXX_FLAGS_INIT "${cross_flags}")

# What the host has installed is for another processor; headers and CMake's own modules are not.
set(CMAKE_FIND_ROOT_PATH /usr/${cross_triple})
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

set(CMAKE_CROSSCOMPILING_EMULATOR
    ${cross_emulator} -L /usr/${cross_triple} -E LD_LIBRARY_PATH=/usr/${cross_triple}/lib)
