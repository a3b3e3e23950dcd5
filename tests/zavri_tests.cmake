# Tests of the program; they run it, under the emulator in a cross build.
if(NOT ZAVRI_TOOLS)
  return()
endif()
add_executable(zavri_program_test zavri_test.cpp)
target_link_libraries(zavri_program_test PRIVATE zavri_tool_parts GTest::gtest_main)
string(REPLACE ";" " " zavri_emulator "${CMAKE_CROSSCOMPILING_EMULATOR}")
target_compile_definitions(zavri_program_test PRIVATE
  ZAVRI_COMMAND="${zavri_emulator} $<TARGET_FILE:zavri>")
if(ZAVRI_SANITIZE MATCHES "thread")
  # Strips at once race for the rows that they share, by design.
  target_compile_definitions(zavri_program_test PRIVATE ZAVRI_WITHOUT_RACES)
endif()
gtest_discover_tests(zavri_program_test DISCOVERY_TIMEOUT 60
  PROPERTIES ENVIRONMENT ${test_environment})
