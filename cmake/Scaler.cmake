# Builds the portable scaler and Gaussian under the name of the vendor's library. Off the phone they
# take its place; an Android build links against them and is installed without them.
zavri_add_library_objects(zavri_portable_scaler)
zavri_add_objects(zavri_portable_scaler zavri_scaler_operations
  platform/host/gaussian.cpp
  platform/host/scale.cpp
  platform/host/scale_taps.cpp)
zavri_add_kernels(zavri_portable_scaler zavri_scaler_kernels
  platform/host/gaussian_rows.cpp
  platform/host/scale_double.cpp
  platform/host/scale_rows.cpp)
zavri_add_library_objects(zavri_fastcv_objects)
zavri_add_objects(zavri_fastcv_objects zavri_fastcv_functions platform/host/fastcv.cpp)
target_link_libraries(zavri_fastcv_objects INTERFACE zavri_portable_scaler)
add_library(zavri_fastcv SHARED)
target_link_libraries(zavri_fastcv PRIVATE zavri_fastcv_objects)
set_target_properties(zavri_fastcv PROPERTIES OUTPUT_NAME fastcvopt)
zavri_set_link_options(zavri_fastcv ${PROJECT_SOURCE_DIR}/cmake/fastcv_exports.map)
