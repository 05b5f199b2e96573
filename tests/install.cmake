# The libraries installed, packaged or built within another project, and then used.
# Sanitizers and other machines would need programs that are built like the library.
if(ZELM_INSTALL AND ZELM_TOP_LEVEL AND NOT CMAKE_CROSSCOMPILING AND NOT
   "${CMAKE_CXX_FLAGS} ${CMAKE_SHARED_LINKER_FLAGS}" MATCHES "-fsanitize|--coverage")
  add_test(NAME install_tree COMMAND bash ${CMAKE_CURRENT_SOURCE_DIR}/install_test.sh
    tree ${PROJECT_BINARY_DIR} $<CONFIG>)
  add_test(NAME install_packages COMMAND bash ${CMAKE_CURRENT_SOURCE_DIR}/install_test.sh
    packages ${PROJECT_BINARY_DIR})
  set_tests_properties(install_tree install_packages PROPERTIES
    SKIP_RETURN_CODE 77 RESOURCE_LOCK installation
    ENVIRONMENT "CC=${CMAKE_C_COMPILER};CXX=${CMAKE_CXX_COMPILER};CFLAGS=${CMAKE_C_FLAGS};CXXFLAGS=${CMAKE_CXX_FLAGS}")

  add_test(NAME subproject COMMAND ${CMAKE_COMMAND} -DLIBRARY=${PROJECT_SOURCE_DIR}
    -DGENERATOR=${CMAKE_GENERATOR} -DFOLDER=${CMAKE_CURRENT_BINARY_DIR}/subproject
    -P ${CMAKE_CURRENT_SOURCE_DIR}/subproject.cmake)
  set_tests_properties(subproject PROPERTIES
    ENVIRONMENT "CC=${CMAKE_C_COMPILER};CXX=${CMAKE_CXX_COMPILER}")
endif()
