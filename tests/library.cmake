find_package(Threads REQUIRED)

# The reference knows nothing of how the library was compiled.
add_library(zelm_test_reference STATIC reference.cc)
target_include_directories(zelm_test_reference PUBLIC
  ${PROJECT_SOURCE_DIR}/include ${CMAKE_CURRENT_SOURCE_DIR})
zelm_warnings(zelm_test_reference)

# What is the same for all builds of the library's objects.
add_library(zelm_comparisons OBJECT harness.cc memory.cc stages.cc
  stage_test.cc values_test.cc pipeline_test.cc thread_test.cc)
target_link_libraries(zelm_comparisons PUBLIC
  zelm_test_reference GTest::gtest_main Threads::Threads m)
zelm_warnings(zelm_comparisons)
if(CMAKE_CROSSCOMPILING AND CMAKE_SYSTEM_PROCESSOR MATCHES "^arm" AND
   "${CMAKE_CXX_FLAGS}" MATCHES "-fsanitize=address")
  target_sources(zelm_comparisons PRIVATE top_gigabyte.cc)
endif()

# zelm_library_tests(<prefix> <objects> <ceiling>)
# All comparisons for one build of the library's objects, which runs at most the
# instruction set <ceiling>; the names of the tests start with the prefix.
function(zelm_library_tests prefix objects ceiling)
  set(test ${prefix}_test)
  add_executable(${test} instruction_set_test.cc)
  target_include_directories(${test} PRIVATE ${PROJECT_SOURCE_DIR}/src)
  target_compile_definitions(${test} PRIVATE ZELM_TEST_CEILING=${ceiling})
  zelm_use_highway(${test})
  zelm_warnings(${test})
  target_link_options(${test} PRIVATE -Wl,--wrap=malloc,--wrap=free)
  target_link_libraries(${test} PRIVATE zelm_comparisons ${objects})
  gtest_discover_tests(${test} TEST_PREFIX ${prefix}. DISCOVERY_TIMEOUT 60)
endfunction()

zelm_library_tests(library zelm_objects kAvx512Vbmi)
foreach(set Avx512 Avx2 Sse4 Plain)
  string(TOLOWER ${set} prefix)
  if(TARGET zelm_objects_${prefix})
    zelm_library_tests(${prefix} zelm_objects_${prefix} k${set})
  endif()
endforeach()

# The public header in each language, and the shared library from C.
foreach(standard 99 11)
  set(test c${standard}_program)
  add_executable(${test} c_program.c)
  set_target_properties(${test} PROPERTIES
    C_STANDARD ${standard} C_STANDARD_REQUIRED ON C_EXTENSIONS OFF)
  target_compile_options(${test} PRIVATE -pedantic -Wall -Wextra -Werror)
  target_link_libraries(${test} PRIVATE zelm_imageutil)
  add_test(NAME ${test} COMMAND ${test})
endforeach()

# Sanitizers bring symbols and libraries of their own.
if(NOT "${CMAKE_CXX_FLAGS} ${CMAKE_SHARED_LINKER_FLAGS}" MATCHES "-fsanitize|--coverage")
  add_test(NAME exports COMMAND ${CMAKE_COMMAND}
    -DLIBRARY=$<TARGET_FILE:zelm_imageutil> -DMAP=${PROJECT_SOURCE_DIR}/cmake/exports.map
    -DNM=${CMAKE_NM} -DREADELF=${CMAKE_READELF}
    -P ${CMAKE_CURRENT_SOURCE_DIR}/exports.cmake)
endif()
