# Tests the portable scaler and Gaussian in all builds of their kernels.
add_executable(fastcv_test
  fastcv_gaussian_test.cpp
  fastcv_scale_test.cpp
  scale_taps_test.cpp
  support/samples.cpp
  support/use_build.cpp)
target_link_libraries(fastcv_test PRIVATE zavri_fastcv_objects GTest::gtest_main)
zavri_wrap(fastcv_test _ZN5zavri10best_buildEv posix_memalign)
gtest_discover_tests(fastcv_test DISCOVERY_TIMEOUT 60)
