# The shared object, and the object files that tests and benchmarks link directly.

set(kernel_sources
  autoshoot/row_sums.cpp
  compose/decimate.cpp
  denoise3d/chroma_runs.cpp
  denoise3d/merge.cpp
  resize/chroma_channels.cpp
  rnr/blend.cpp
  rnr/weights.cpp
  uvdenoise/chroma_window.cpp
  uvdenoise/fill_rows.cpp)

set(library_sources
  autoshoot/measures.cpp
  autoshoot/state.cpp
  compose/compose.cpp
  compose/padding.cpp
  debug/fixed_dump.cpp
  debug/frame_dump.cpp
  debug/raw_file.cpp
  denoise3d/denoise3d_strip.cpp
  denoise3d/edge_sections.cpp
  denoise3d/uv_run_smooth.cpp
  interface/denoise3d_entry.cpp
  interface/process_lock.cpp
  interface/resize_entry.cpp
  interface/threshold_tuning.cpp
  resize/resize_strip.cpp
  rnr/process.cpp
  rnr/tables.cpp
  threadpool/process_pool.cpp
  threadpool/thread_pool.cpp
  threadpool/thread_pool_worker.cpp
  uvdenoise/chroma_strip.cpp
  uvdenoise/dispatch.cpp
  uvdenoise/fill_grid.cpp)

# Unwind tables: pthread_exit unwinds the frames of a pool thread.
set(library_options -fvisibility=hidden -fvisibility-inlines-hidden -fno-exceptions -fno-rtti
                    -funwind-tables)

# The object files of one library, as a target that tests and benchmarks link.
function(zavri_add_library_objects objects)
  add_library(${objects} INTERFACE)
  target_include_directories(${objects} INTERFACE ${PROJECT_SOURCE_DIR})
  if(ZAVRI_GENERIC_VECTORS)
    target_compile_definitions(${objects} INTERFACE ZAVRI_GENERIC_VECTORS)
  endif()
endfunction()

function(zavri_add_objects objects name)
  add_library(${name} OBJECT ${ARGN})
  target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR})
  target_compile_options(${name} PRIVATE ${library_options})
  if(ZAVRI_GENERIC_VECTORS)
    target_compile_definitions(${name} PRIVATE ZAVRI_GENERIC_VECTORS)
  endif()
  target_sources(${objects} INTERFACE $<TARGET_OBJECTS:${name}>)
endfunction()

# All builds of kernel sources; simd/builds.h says what the builds are.
function(zavri_add_kernels objects prefix)
  zavri_add_objects(${objects} ${prefix}_plain ${ARGN})
  target_compile_options(${prefix}_plain PRIVATE -O2 -DZAVRI_BUILD_PLAIN)
  zavri_add_objects(${objects} ${prefix}_vector16 ${ARGN})
  # -O3: the fixed loops over lanes must be unrolled.
  target_compile_options(${prefix}_vector16 PRIVATE -O3 -DZAVRI_VECTOR_BYTES=16)
  if(CMAKE_SYSTEM_PROCESSOR MATCHES "x86_64" AND NOT ZAVRI_GENERIC_VECTORS)
    target_compile_options(${prefix}_vector16 PRIVATE -march=x86-64-v2)
    zavri_add_objects(${objects} ${prefix}_vector32 ${ARGN})
    target_compile_options(${prefix}_vector32 PRIVATE -O3 -DZAVRI_VECTOR_BYTES=32 -march=x86-64-v3)
  endif()
endfunction()

# Exports what the version script `map` lists and nothing else.
function(zavri_set_link_options library map)
  set_target_properties(${library} PROPERTIES LINK_DEPENDS ${map})
  target_link_options(${library} PRIVATE
    -Wl,--version-script=${map} -Wl,--exclude-libs,ALL -Wl,--as-needed
    -Wl,-z,relro -Wl,-z,now -Wl,-z,noexecstack -Wl,-z,text -Wl,-z,max-page-size=16384
    -Wl,--build-id)
  if(NOT ZAVRI_SANITIZE)
    target_link_options(${library} PRIVATE -static-libstdc++ -static-libgcc -Wl,-z,defs)
  endif()
endfunction()

zavri_add_library_objects(zavri_objects)
# In both libraries; a program may link the objects of both.
zavri_add_objects(zavri_objects zavri_builds simd/builds.cpp)
zavri_add_objects(zavri_objects zavri_operations ${library_sources})
zavri_add_kernels(zavri_objects zavri_kernels ${kernel_sources})
target_link_libraries(zavri_objects INTERFACE Threads::Threads zavri_fastcv)

# The Android log: the system's where there is one (a phone, or Debian's android-liblog-dev).
find_library(ZAVRI_LIBLOG NAMES log
             PATHS /usr/lib/${CMAKE_LIBRARY_ARCHITECTURE}/android NO_CMAKE_FIND_ROOT_PATH)
if(ZAVRI_LIBLOG)
  add_library(zavri_log UNKNOWN IMPORTED)
  set_target_properties(zavri_log PROPERTIES IMPORTED_LOCATION ${ZAVRI_LIBLOG})
else()
  add_library(zavri_log SHARED platform/host/log_stderr.cpp)
  set_target_properties(zavri_log PROPERTIES OUTPUT_NAME log)
  target_include_directories(zavri_log PRIVATE ${PROJECT_SOURCE_DIR})
endif()

# The vendor's vision library. This one takes its place off the phone, and for an Android build it
# is what the linker needs to see.
zavri_add_library_objects(zavri_fastcv_objects)
target_sources(zavri_fastcv_objects INTERFACE $<TARGET_OBJECTS:zavri_builds>)
zavri_add_objects(zavri_fastcv_objects zavri_fastcv_functions
  platform/host/fastcv.cpp
  platform/host/gaussian.cpp
  platform/host/scale.cpp
  platform/host/scale_taps.cpp)
zavri_add_kernels(zavri_fastcv_objects zavri_fastcv_kernels
  platform/host/gaussian_rows.cpp
  platform/host/scale_rows.cpp)
add_library(zavri_fastcv SHARED)
target_link_libraries(zavri_fastcv PRIVATE zavri_fastcv_objects)
set_target_properties(zavri_fastcv PROPERTIES OUTPUT_NAME fastcvopt)
zavri_set_link_options(zavri_fastcv ${PROJECT_SOURCE_DIR}/cmake/fastcv_exports.map)

add_library(zavricustpro SHARED)
target_link_libraries(zavricustpro PRIVATE zavri_objects zavri_log)
target_include_directories(zavricustpro PUBLIC
  $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include> $<INSTALL_INTERFACE:include>)
set_target_properties(zavricustpro PROPERTIES OUTPUT_NAME mmcamera_zavricustpro)
zavri_set_link_options(zavricustpro ${PROJECT_SOURCE_DIR}/cmake/exports.map)

install(TARGETS zavricustpro)
if(NOT ANDROID)
  install(TARGETS zavri_fastcv)
endif()
install(DIRECTORY include/ TYPE INCLUDE)
