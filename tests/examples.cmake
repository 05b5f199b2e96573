# The examples: programs that build without warnings, one of which the README shows as it
# is, and that write the pictures that the program zelm-imageutil writes.

# zelm_example(<source> <library>...)
function(zelm_example source)
  get_filename_component(name ${source} NAME_WE)
  add_executable(${name} ${PROJECT_SOURCE_DIR}/examples/${source})
  set_target_properties(${name} PROPERTIES
    C_STANDARD 99 C_STANDARD_REQUIRED ON C_EXTENSIONS OFF)
  target_compile_options(${name} PRIVATE -pedantic -Wall -Wextra -Werror)
  target_link_libraries(${name} PRIVATE ${ARGN})
endfunction()

find_package(Threads REQUIRED)
zelm_example(preview.c zelm::imageutil)
zelm_example(camera_preview.c zelm::frames)
zelm_example(decoded_frame.c zelm::frames)
zelm_example(all_cores.cc zelm::frames Threads::Threads)
# The thread sanitizer does not know how OpenMP's threads wait for each other.
find_package(OpenMP QUIET COMPONENTS C)
if(OpenMP_C_FOUND AND NOT CMAKE_C_FLAGS MATCHES "-fsanitize=thread")
  zelm_example(all_cores_openmp.c zelm::frames OpenMP::OpenMP_C)
endif()

add_test(NAME example_in_readme COMMAND ${CMAKE_COMMAND}
  -DREADME=${PROJECT_SOURCE_DIR}/README.md
  -DEXAMPLE=${PROJECT_SOURCE_DIR}/examples/preview.c
  -P ${CMAKE_CURRENT_SOURCE_DIR}/example_in_readme.cmake)
if(TARGET zelm-imageutil)
  add_executable(example_frames example_frames.cc)
  zelm_warnings(example_frames)
  add_test(NAME examples_run COMMAND bash ${CMAKE_CURRENT_SOURCE_DIR}/examples_test.sh
    ${CMAKE_CURRENT_BINARY_DIR} ${CMAKE_CURRENT_BINARY_DIR}/example-pictures)
endif()
