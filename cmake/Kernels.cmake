# Kernel sources are compiled once for each build that simd/builds.h lists. The choice of a build is
# one object file in all libraries, because a program may link the objects of several.
zavri_compile(zavri_builds simd/builds.cpp)

# Adds the kernel sources that follow `prefix` to the library of `objects`, as the targets
# <prefix>_plain, <prefix>_vector16 and, on x86-64, <prefix>_vector32.
function(zavri_add_kernels objects prefix)
  target_sources(${objects} INTERFACE $<TARGET_OBJECTS:zavri_builds>)
  zavri_add_objects(${objects} ${prefix}_plain ${ARGN})
  target_compile_options(${prefix}_plain PRIVATE -O2 -DZAVRI_BUILD_PLAIN)
  zavri_add_objects(${objects} ${prefix}_vector16 ${ARGN})
  # GCC unrolls the fixed loops over lanes at -O3 only. With sanitizers that takes it minutes.
  set(unrolled -O3)
  if(ZAVRI_SANITIZE)
    set(unrolled -O1)
  endif()
  target_compile_options(${prefix}_vector16 PRIVATE ${unrolled} -DZAVRI_VECTOR_BYTES=16)
  if(CMAKE_SYSTEM_PROCESSOR MATCHES "x86_64" AND NOT ZAVRI_GENERIC_VECTORS)
    target_compile_options(${prefix}_vector16 PRIVATE -march=x86-64-v2)
    zavri_add_objects(${objects} ${prefix}_vector32 ${ARGN})
    target_compile_options(${prefix}_vector32 PRIVATE
      ${unrolled} -DZAVRI_VECTOR_BYTES=32 -march=x86-64-v3)
  elseif(CMAKE_SYSTEM_PROCESSOR MATCHES "^(arm|aarch64)" AND CMAKE_SIZEOF_VOID_P EQUAL 4
         AND NOT ZAVRI_GENERIC_VECTORS)
    target_compile_options(${prefix}_vector16 PRIVATE -mfpu=neon)
  endif()
endfunction()
