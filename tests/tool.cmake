# The tests of the program zelm-imageutil, end to end.
if(TARGET zelm-imageutil)
  find_package(PNG REQUIRED)
  find_package(Threads REQUIRED)
  add_executable(tool_test tool_process.cc tool_frames.cc
    tool_colours_test.cc tool_errors_test.cc tool_formats_test.cc tool_geometry_test.cc
    tool_process_test.cc tool_reports_test.cc tool_y4m_test.cc)
  target_link_libraries(tool_test PRIVATE
    zelm_frames_static PNG::PNG GTest::gtest_main Threads::Threads)
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
