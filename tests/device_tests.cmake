# Tests of the program for the phone's shell; they run it, under the emulator in a cross build.
add_executable(zavri_device_test device_test.cpp)
target_link_libraries(zavri_device_test PRIVATE zavri_device_parts GTest::gtest_main)
add_library(zavri_altered SHARED support/altered_libraries.cpp)
target_include_directories(zavri_altered PRIVATE ${PROJECT_SOURCE_DIR})
string(REPLACE ";" " " zavri_emulator "${CMAKE_CROSSCOMPILING_EMULATOR}")
# The loader has no quotes for blanks in a folder's name.
set(load_first "LD_PRELOAD=./$<TARGET_FILE_NAME:zavri_altered>")
if(CMAKE_CROSSCOMPILING)
  set(load_first "QEMU_SET_ENV=${load_first}")  # for the emulated program alone
elseif(ZAVRI_SANITIZE MATCHES "address")
  set(load_first "ASAN_OPTIONS=verify_asan_link_order=0 ${load_first}")
endif()
target_compile_definitions(zavri_device_test PRIVATE
  ZAVRI_DEVICE_COMMAND="${zavri_emulator} '$<TARGET_FILE:zavri_device>'"
  ZAVRI_ALTERED_ENVIRONMENT="-C '$<TARGET_FILE_DIR:zavri_altered>' ${load_first}")
add_dependencies(zavri_device_test zavri_device zavri_altered)
gtest_discover_tests(zavri_device_test DISCOVERY_TIMEOUT 60
  PROPERTIES ENVIRONMENT ${test_environment})

# A 32-bit ARM processor may lack NEON. There any kernel that used it would end the program.
if(CMAKE_CROSSCOMPILING_EMULATOR MATCHES "qemu-arm")
  add_test(NAME processor_without_neon COMMAND zavri_device verify)
  set_tests_properties(processor_without_neon PROPERTIES ENVIRONMENT QEMU_CPU=cortex-a15,neon=off)
endif()
