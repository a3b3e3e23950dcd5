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

include(${PROJECT_SOURCE_DIR}/cmake/Peers.cmake)
if(zavri_opencv_FOUND)
  add_executable(fastcv_opencv_test fastcv_opencv_test.cpp)
  target_include_directories(fastcv_opencv_test PRIVATE ${PROJECT_SOURCE_DIR})
  target_link_libraries(fastcv_opencv_test PRIVATE zavri_fastcv GTest::gtest_main zavri_opencv)
  gtest_discover_tests(fastcv_opencv_test DISCOVERY_TIMEOUT 60)
elseif(NOT CMAKE_CROSSCOMPILING)
  add_test(NAME fastcv_opencv_test COMMAND ${CMAKE_COMMAND} -E echo "OpenCV is not installed")
  set_tests_properties(fastcv_opencv_test PROPERTIES SKIP_REGULAR_EXPRESSION "not installed")
endif()
