find_package(Threads REQUIRED)

# The reference and the harness know nothing of how the library was compiled.
add_library(zelm_test_reference STATIC reference.cc)
target_include_directories(zelm_test_reference PUBLIC
  ${PROJECT_SOURCE_DIR}/include ${CMAKE_CURRENT_SOURCE_DIR})
zelm_warnings(zelm_test_reference)

# zelm_library_tests(<prefix> <objects>)
# The comparison tests linked with one build of the library's objects; the names of
# the tests start with the prefix.
function(zelm_library_tests prefix objects)
  set(test ${prefix}_test)
  add_executable(${test} harness.cc stages.cc stage_test.cc values_test.cc pipeline_test.cc)
  zelm_warnings(${test})
  target_link_libraries(${test} PRIVATE
    ${objects} zelm_test_reference GTest::gtest_main Threads::Threads m)
  gtest_discover_tests(${test} TEST_PREFIX ${prefix}. DISCOVERY_TIMEOUT 60)
endfunction()

zelm_library_tests(library zelm_objects)
