# Builds the shared object that a camera HAL loads.

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
  interface/heavy_operation.cpp
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

zavri_add_library_objects(zavri_objects)
zavri_add_objects(zavri_objects zavri_operations ${library_sources})
zavri_add_kernels(zavri_objects zavri_kernels ${kernel_sources})
target_link_libraries(zavri_objects INTERFACE Threads::Threads zavri_fastcv)

# The Android log: the system's where there is one (a phone, or Debian's android-liblog-dev). The
# toolchain for Android knows where its own lies, and a stand-in must not reach a phone.
if(ANDROID)
  add_library(zavri_log INTERFACE)
  target_link_libraries(zavri_log INTERFACE log)
else()
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
endif()

# The allocation functions are in the shared object alone: a program has its own.
zavri_compile(zavri_operator_new platform/operator_new.cpp)
add_library(zavricustpro SHARED $<TARGET_OBJECTS:zavri_operator_new>)
target_link_libraries(zavricustpro PRIVATE zavri_objects zavri_log)
target_include_directories(zavricustpro PUBLIC
  $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include> $<INSTALL_INTERFACE:include>)
set_target_properties(zavricustpro PROPERTIES OUTPUT_NAME mmcamera_zavricustpro)
zavri_set_link_options(zavricustpro ${PROJECT_SOURCE_DIR}/cmake/exports.map)
