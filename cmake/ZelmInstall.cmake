# What is installed, in five components: of each library its run-time files (runtime,
# frames) and its development files (devel, frames_devel), and the program (tool).
include(CMakePackageConfigHelpers)
set(generated ${PROJECT_BINARY_DIR}/install)

# Folders in .pc files are given as seen from them, so that the tree may move.
file(RELATIVE_PATH ZELM_PC_PREFIX
  ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
file(RELATIVE_PATH ZELM_PC_LIBDIR ${CMAKE_INSTALL_PREFIX} ${CMAKE_INSTALL_FULL_LIBDIR})
file(RELATIVE_PATH ZELM_PC_INCLUDEDIR
  ${CMAKE_INSTALL_PREFIX} ${CMAKE_INSTALL_FULL_INCLUDEDIR})
string(REGEX REPLACE "/$" "" ZELM_PC_PREFIX "${ZELM_PC_PREFIX}")

# zelm_install_library(<library> VERSION <version> COMPATIBILITY <word> RUNTIME <component>
#   DEVEL <component> DESCRIPTION <text> EXAMPLES <file>... [STATIC_NEEDS <library>])
# The shared and the static library, the header, the examples, and what CMake and
# pkg-config read. COMPATIBILITY says which other versions a project may ask for,
# STATIC_NEEDS which library of the same build the static one is linked with.
function(zelm_install_library library)
  cmake_parse_arguments(arg ""
    "VERSION;COMPATIBILITY;RUNTIME;DEVEL;DESCRIPTION;STATIC_NEEDS" "EXAMPLES" ${ARGN})
  set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/${library})
  set(doc_dir ${CMAKE_INSTALL_DATAROOTDIR}/doc/${library})
  set(ZELM_LIBRARY ${library})
  set(ZELM_LIBRARY_VERSION ${arg_VERSION})
  set(ZELM_LIBRARY_DESCRIPTION ${arg_DESCRIPTION})
  if(arg_STATIC_NEEDS)
    set(ZELM_PC_REQUIRES_PRIVATE " ${arg_STATIC_NEEDS} = ${PROJECT_VERSION}")
    set(ZELM_LIBRARY_DEPENDENCIES "include(CMakeFindDependencyMacro)
find_dependency(${arg_STATIC_NEEDS} ${PROJECT_VERSION} EXACT
  HINTS \${CMAKE_CURRENT_LIST_DIR}/../${arg_STATIC_NEEDS})")
  endif()

  install(TARGETS ${library} ${library}_static EXPORT ${library}
    LIBRARY COMPONENT ${arg_RUNTIME} NAMELINK_COMPONENT ${arg_DEVEL}
    ARCHIVE COMPONENT ${arg_DEVEL})
  install(FILES ${PROJECT_SOURCE_DIR}/include/${library}.h TYPE INCLUDE
    COMPONENT ${arg_DEVEL})
  install(FILES ${PROJECT_SOURCE_DIR}/CHANGELOG.md DESTINATION ${doc_dir}
    COMPONENT ${arg_DEVEL})
  list(TRANSFORM arg_EXAMPLES PREPEND ${PROJECT_SOURCE_DIR}/examples/)
  install(FILES ${arg_EXAMPLES} DESTINATION ${doc_dir}/examples COMPONENT ${arg_DEVEL})

  install(EXPORT ${library} NAMESPACE zelm:: DESTINATION ${package_dir}
    FILE ${library}Targets.cmake COMPONENT ${arg_DEVEL})
  configure_file(${PROJECT_SOURCE_DIR}/cmake/library-config.cmake.in
    ${generated}/${library}Config.cmake @ONLY)
  write_basic_package_version_file(${generated}/${library}ConfigVersion.cmake
    VERSION ${arg_VERSION} COMPATIBILITY ${arg_COMPATIBILITY})
  install(FILES ${generated}/${library}Config.cmake
    ${generated}/${library}ConfigVersion.cmake
    DESTINATION ${package_dir} COMPONENT ${arg_DEVEL})
  configure_file(${PROJECT_SOURCE_DIR}/cmake/library.pc.in ${generated}/${library}.pc
    @ONLY)
  install(FILES ${generated}/${library}.pc
    DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT ${arg_DEVEL})
endfunction()

zelm_install_library(zelm_imageutil
  VERSION ${PROJECT_VERSION}
  COMPATIBILITY SameMajorVersion
  RUNTIME runtime
  DEVEL devel
  DESCRIPTION "${PROJECT_DESCRIPTION}"
  EXAMPLES preview.c)
# Its static library calls kernels of the other one, which are no part of any interface and
# differ from build to build.
zelm_install_library(zelm_frames
  VERSION ${ZELM_FRAMES_VERSION}
  COMPATIBILITY SameMinorVersion
  RUNTIME frames
  DEVEL frames_devel
  DESCRIPTION "${ZELM_FRAMES_DESCRIPTION}"
  EXAMPLES camera_preview.c decoded_frame.c all_cores.cc all_cores_openmp.c
  STATIC_NEEDS zelm_imageutil)

if(TARGET zelm-imageutil)
  configure_file(${PROJECT_SOURCE_DIR}/docs/zelm-imageutil.1.in
    ${generated}/zelm-imageutil.1 @ONLY)
  install(TARGETS zelm-imageutil COMPONENT tool)
  install(FILES ${generated}/zelm-imageutil.1
    DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT tool)
  install(FILES ${PROJECT_SOURCE_DIR}/tools/completion/zelm-imageutil
    DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions COMPONENT tool)
endif()

if(ZELM_TOP_LEVEL)
  include(ZelmPackages)
endif()
