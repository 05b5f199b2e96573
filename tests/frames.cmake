# The tests of zelm_frames: comparisons for each instruction set.
add_library(zelm_frames_reference STATIC frames_reference.cc)
target_include_directories(zelm_frames_reference PUBLIC
  ${PROJECT_SOURCE_DIR}/include ${CMAKE_CURRENT_SOURCE_DIR})
zelm_warnings(zelm_frames_reference)

zelm_instruction_set_program(frames_test
  comparison.cc harness.cc memory.cc
  frames_cases.cc frames_comparison.cc frames_harness.cc
  frames_test.cc frames_errors_test.cc frames_properties_test.cc)
target_link_libraries(frames_test PRIVATE zelm_frames_reference
  zelm_frames_objects_with_ceiling GTest::gtest_main Threads::Threads m)

zelm_instruction_set_tests(frames_test frames frames.)
