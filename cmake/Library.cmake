# The shared object, and the object files that tests and benchmarks link directly.

set(kernel_sources
  denoise3d/chroma_runs.cpp
  denoise3d/merge.cpp)

set(library_sources
  denoise3d/denoise3d_strip.cpp
  denoise3d/edge_sections.cpp
  denoise3d/uv_run_smooth.cpp
  interface/denoise3d_entry.cpp
  interface/process_lock.cpp
  interface/threshold_tuning.cpp
  simd/builds.cpp
  threadpool/process_pool.cpp
  threadpool/thread_pool.cpp
  threadpool/thread_pool_worker.cpp)

# Unwind tables: pthread_exit unwinds the frames of a pool thread.
set(library_options -fvisibility=hidden -fvisibility-inlines-hidden -fno-exceptions -fno-rtti
                    -funwind-tables)

add_library(zavri_objects INTERFACE)
target_include_directories(zavri_objects INTERFACE ${PROJECT_SOURCE_DIR})
target_link_libraries(zavri_objects INTERFACE Threads::Threads)

function(zavri_add_objects name)
  add_library(${name} OBJECT ${ARGN})
  target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR})
  target_compile_options(${name} PRIVATE ${library_options})
  target_sources(zavri_objects INTERFACE $<TARGET_OBJECTS:${name}>)
endfunction()

# One build of the kernel sources; simd/builds.h says what the builds are.
function(zavri_add_kernels name)
  zavri_add_objects(${name} ${kernel_sources})
  target_compile_options(${name} PRIVATE ${ARGN})
  if(ZAVRI_GENERIC_VECTORS)
    target_compile_definitions(${name} PRIVATE ZAVRI_GENERIC_VECTORS)
  endif()
endfunction()

zavri_add_objects(zavri_operations ${library_sources})
if(ZAVRI_GENERIC_VECTORS)
  target_compile_definitions(zavri_objects INTERFACE ZAVRI_GENERIC_VECTORS)
  target_compile_definitions(zavri_operations PRIVATE ZAVRI_GENERIC_VECTORS)
endif()
zavri_add_kernels(zavri_kernels_plain -O2 -DZAVRI_BUILD_PLAIN)
# -O3: the fixed loops over lanes must be unrolled.
if(CMAKE_SYSTEM_PROCESSOR MATCHES "x86_64" AND NOT ZAVRI_GENERIC_VECTORS)
  zavri_add_kernels(zavri_kernels_vector16 -O3 -DZAVRI_VECTOR_BYTES=16 -march=x86-64-v2)
  zavri_add_kernels(zavri_kernels_vector32 -O3 -DZAVRI_VECTOR_BYTES=32 -march=x86-64-v3)
else()
  zavri_add_kernels(zavri_kernels_vector16 -O3 -DZAVRI_VECTOR_BYTES=16)
endif()

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

set(export_map ${PROJECT_SOURCE_DIR}/cmake/exports.map)
add_library(zavricustpro SHARED)
target_link_libraries(zavricustpro PRIVATE zavri_objects zavri_log)
target_include_directories(zavricustpro PUBLIC
  $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include> $<INSTALL_INTERFACE:include>)
set_target_properties(zavricustpro PROPERTIES
  OUTPUT_NAME mmcamera_zavricustpro LINK_DEPENDS ${export_map})
target_link_options(zavricustpro PRIVATE
  -Wl,--version-script=${export_map} -Wl,--exclude-libs,ALL -Wl,--as-needed
  -Wl,-z,relro -Wl,-z,now -Wl,-z,noexecstack -Wl,-z,text -Wl,-z,max-page-size=16384
  -Wl,--build-id)
if(NOT ZAVRI_SANITIZE)
  target_link_options(zavricustpro PRIVATE -static-libstdc++ -static-libgcc -Wl,-z,defs)
endif()

install(TARGETS zavricustpro)
install(FILES include/zavricustpro.h TYPE INCLUDE)
