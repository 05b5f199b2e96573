# The tests of the library: comparisons for each instruction set, the header in C, and
# what the shared library exports.
find_package(Threads REQUIRED)

# The reference knows nothing of how the library was compiled.
add_library(zelm_test_reference STATIC reference_stages.cc reference_pipelines.cc)
target_include_directories(zelm_test_reference PUBLIC
  ${PROJECT_SOURCE_DIR}/include ${CMAKE_CURRENT_SOURCE_DIR})
zelm_warnings(zelm_test_reference)

# What needs nothing of the library but its header.
add_library(zelm_comparisons OBJECT
  comparison.cc harness.cc memory.cc stages.cc
  stage_test.cc values_test.cc pipeline_test.cc thread_test.cc)
target_link_libraries(zelm_comparisons PUBLIC
  zelm_test_reference GTest::gtest_main Threads::Threads m)
zelm_warnings(zelm_comparisons)
if(CMAKE_CROSSCOMPILING AND CMAKE_SYSTEM_PROCESSOR MATCHES "^arm" AND
   "${CMAKE_CXX_FLAGS}" MATCHES "-fsanitize=address")
  target_sources(zelm_comparisons PRIVATE top_gigabyte.cc)
endif()

# zelm_instruction_set_program(<name> <source>...)
# A program of tests that can be run with each instruction set as its ceiling. Kernels in
# it, and what calls kernels by their headers, are compiled like the library.
function(zelm_instruction_set_program name)
  add_executable(${name} instruction_set_test.cc ${ARGN})
  target_compile_definitions(${name} PRIVATE
    $<TARGET_PROPERTY:zelm_kernels,COMPILE_DEFINITIONS>)
  target_include_directories(${name} SYSTEM PRIVATE
    $<TARGET_PROPERTY:zelm_kernels,INCLUDE_DIRECTORIES>)
  zelm_warnings(${name})
  target_link_options(${name} PRIVATE -Wl,--wrap=malloc,--wrap=calloc,--wrap=free)
endfunction()

# zelm_instruction_set_tests(<program> <prefix> <rest>)
# Runs the program's tests on all that the machine has, as <prefix>.<test>, and held to
# each lower instruction set, as <set>.<rest><test>.
function(zelm_instruction_set_tests program prefix rest)
  gtest_discover_tests(${program} TEST_PREFIX ${prefix}. DISCOVERY_TIMEOUT 60
    PROPERTIES ENVIRONMENT ZELM_INSTRUCTION_SET=all)
  if(CMAKE_SYSTEM_PROCESSOR STREQUAL "x86_64")
    foreach(set avx512 avx2 sse4 plain)
      gtest_discover_tests(${program} TEST_PREFIX ${set}.${rest} DISCOVERY_TIMEOUT 60
        PROPERTIES ENVIRONMENT ZELM_INSTRUCTION_SET=${set})
    endforeach()
  endif()
endfunction()

zelm_instruction_set_program(library_test kernels_test.cc)
target_link_libraries(library_test PRIVATE zelm_comparisons zelm_objects_with_ceiling)
zelm_instruction_set_tests(library_test library "")

if(CMAKE_SYSTEM_PROCESSOR STREQUAL "x86_64")
  add_executable(library_choice_test library_choice_test.cc)
  target_include_directories(library_choice_test PRIVATE ${PROJECT_SOURCE_DIR}/src)
  target_link_libraries(library_choice_test PRIVATE
    zelm_imageutil_static GTest::gtest_main)
  zelm_warnings(library_choice_test)
  gtest_discover_tests(library_choice_test TEST_PREFIX library.)
endif()

# The public headers in each language, and the shared libraries from C.
function(zelm_c_programs name source library)
  foreach(standard 99 11)
    set(test c${standard}_${name})
    add_executable(${test} ${source})
    set_target_properties(${test} PROPERTIES
      C_STANDARD ${standard} C_STANDARD_REQUIRED ON C_EXTENSIONS OFF)
    target_compile_options(${test} PRIVATE -pedantic -Wall -Wextra -Werror)
    target_link_libraries(${test} PRIVATE ${library})
    add_test(NAME ${test} COMMAND ${test})
  endforeach()
endfunction()
zelm_c_programs(program c_program.c zelm_imageutil)
zelm_c_programs(frames_program c_frames_program.c zelm_frames)

function(zelm_exports_test name library map count soname)
  add_test(NAME ${name} COMMAND ${CMAKE_COMMAND}
    -DLIBRARY=$<TARGET_FILE:${library}> -DMAP=${PROJECT_SOURCE_DIR}/cmake/${map}
    -DCOUNT=${count} -DSONAME=${soname} -DNM=${CMAKE_NM} -DREADELF=${CMAKE_READELF}
    -P ${CMAKE_CURRENT_SOURCE_DIR}/exports.cmake)
endfunction()
# Sanitizers bring symbols and libraries of their own.
if(NOT "${CMAKE_CXX_FLAGS} ${CMAKE_SHARED_LINKER_FLAGS}" MATCHES "-fsanitize|--coverage")
  zelm_exports_test(exports zelm_imageutil exports.map 34 libzelm_imageutil.so.1)
  zelm_exports_test(exports_of_frames zelm_frames frames_exports.map 8
    libzelm_frames.so.0)
endif()
