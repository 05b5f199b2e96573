# The example: a C program that builds without warnings, that the README shows as it
# is, and that writes the picture that the program writes.
add_executable(preview ${PROJECT_SOURCE_DIR}/examples/preview.c)
set_target_properties(preview PROPERTIES
  C_STANDARD 99 C_STANDARD_REQUIRED ON C_EXTENSIONS OFF)
target_compile_options(preview PRIVATE -pedantic -Wall -Wextra -Werror)
target_link_libraries(preview PRIVATE zelm::imageutil)

add_test(NAME example_in_readme COMMAND ${CMAKE_COMMAND}
  -DREADME=${PROJECT_SOURCE_DIR}/README.md
  -DEXAMPLE=${PROJECT_SOURCE_DIR}/examples/preview.c
  -P ${CMAKE_CURRENT_SOURCE_DIR}/example_in_readme.cmake)
if(TARGET zelm-imageutil)
  add_test(NAME example_runs COMMAND ${CMAKE_COMMAND}
    -DTOOL=$<TARGET_FILE:zelm-imageutil> -DPREVIEW=$<TARGET_FILE:preview>
    -DFOLDER=${CMAKE_CURRENT_BINARY_DIR}
    -P ${CMAKE_CURRENT_SOURCE_DIR}/example_runs.cmake)
endif()
