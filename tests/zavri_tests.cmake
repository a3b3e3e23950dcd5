if(NOT ZAVRI_TOOLS)
  return()
endif()
# Tests of the program's parts, and of the program, which they run.
add_executable(zavri_parts_test
  images_test.cpp
  loading_test.cpp
  metrics_test.cpp
  noise_fit_test.cpp
  noise_test.cpp
  scene_test.cpp
  score_test.cpp
  storage_test.cpp
  support/pictures.cpp)
target_link_libraries(zavri_parts_test PRIVATE zavri_quality GTest::gtest_main)
gtest_discover_tests(zavri_parts_test DISCOVERY_TIMEOUT 60
  PROPERTIES ENVIRONMENT ${test_environment} LABELS threads)

add_executable(zavri_example_host ${PROJECT_SOURCE_DIR}/examples/host.c)
target_link_libraries(zavri_example_host PRIVATE zavricustpro)
if(ZAVRI_SANITIZE)
  set_target_properties(zavri_example_host PROPERTIES LINKER_LANGUAGE CXX)
endif()

add_executable(zavri_program_test
  choice_test.cpp
  noise_plots_test.cpp
  zavri_errors_test.cpp
  zavri_layout_test.cpp
  zavri_score_test.cpp
  zavri_test.cpp
  zavri_tuning_test.cpp
  support/pictures.cpp
  support/program.cpp
  ${PROJECT_SOURCE_DIR}/tools/tuning/bootstrap.cpp
  ${PROJECT_SOURCE_DIR}/tools/tuning/choice.cpp
  ${PROJECT_SOURCE_DIR}/tools/tuning/weighting.cpp)
target_link_libraries(zavri_program_test PRIVATE zavri_report zavricustpro GTest::gtest_main)
target_compile_options(zavri_program_test PRIVATE -O0)  # the program does the work
target_compile_definitions(zavri_program_test PRIVATE
  ZAVRI_COMMAND="'$<TARGET_FILE:zavri>'"
  ZAVRI_EXAMPLE_HOST="'$<TARGET_FILE:zavri_example_host>'")
add_dependencies(zavri_program_test zavri zavri_example_host)
if(NOT ZAVRI_SANITIZE AND NOT CMAKE_CROSSCOMPILING)
  # Compiles the example with a table that the program found.
  string(CONCAT compile_host "'${CMAKE_C_COMPILER}' -I. '-I${PROJECT_SOURCE_DIR}/include' "
    "'${PROJECT_SOURCE_DIR}/examples/host.c' '$<TARGET_FILE:zavricustpro>' "
    "'-Wl,-rpath,$<TARGET_FILE_DIR:zavricustpro>' -o tuned_host")
  target_compile_definitions(zavri_program_test PRIVATE
    "ZAVRI_COMPILE_HOST=\"${compile_host}\"")
endif()
if(ZAVRI_SANITIZE MATCHES "thread")
  # Strips at once race for the rows that they share, by design.
  target_compile_definitions(zavri_program_test PRIVATE ZAVRI_WITHOUT_RACES)
endif()
# Long tests run first: the last one would run alone.
gtest_discover_tests(zavri_program_test DISCOVERY_TIMEOUT 60
  PROPERTIES ENVIRONMENT ${test_environment} COST 10)
if(NOT ZAVRI_SANITIZE AND NOT CMAKE_CROSSCOMPILING)
  add_test(NAME readme_examples
    COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/examples_test.sh $<TARGET_FILE:zavri>
            ${PROJECT_SOURCE_DIR}/README.md
            /usr/share/backgrounds/seeding_by_Clements_Engelhardt.jpg)
  set_tests_properties(readme_examples PROPERTIES SKIP_RETURN_CODE 77 COST 30)
  add_test(NAME faults_list COMMAND ${PROJECT_SOURCE_DIR}/scripts/mutate --check)
  add_test(NAME install
    COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/install/install_test.sh ${PROJECT_BINARY_DIR}
            ${CMAKE_COMMAND} ${CMAKE_CPACK_COMMAND} ${CMAKE_C_COMPILER} ${CMAKE_CXX_COMPILER})
endif()
