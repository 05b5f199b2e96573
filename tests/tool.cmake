# The tests of the program zelm-imageutil, end to end.
if(TARGET zelm-imageutil)
  find_package(PNG REQUIRED)
  add_executable(tool_test tool_test.cc tool_process.cc)
  target_link_libraries(tool_test PRIVATE
    zelm_imageutil_static PNG::PNG GTest::gtest GTest::gtest_main)
  target_compile_definitions(tool_test PRIVATE
    ZELM_TOOL="$<TARGET_FILE:zelm-imageutil>")
  zelm_warnings(tool_test)
  add_dependencies(tool_test zelm-imageutil)
  gtest_discover_tests(tool_test)

  find_program(ZELM_BASH bash REQUIRED)
  mark_as_advanced(ZELM_BASH)
  add_test(NAME tool_pages COMMAND ${CMAKE_COMMAND} -DTOOL=$<TARGET_FILE:zelm-imageutil>
    -DPAGE=${PROJECT_SOURCE_DIR}/docs/zelm-imageutil.1.in
    -DCOMPLETION=${PROJECT_SOURCE_DIR}/tools/completion/zelm-imageutil -DBASH=${ZELM_BASH}
    -P ${CMAKE_CURRENT_SOURCE_DIR}/tool_pages.cmake)
endif()
