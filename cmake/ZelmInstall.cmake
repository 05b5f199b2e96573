# What is installed, in three components: runtime (the shared library), devel (header,
# static library, what CMake and pkg-config read) and tool (the program).
include(CMakePackageConfigHelpers)
set(generated ${PROJECT_BINARY_DIR}/install)
set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/zelm_imageutil)

install(TARGETS zelm_imageutil zelm_imageutil_static EXPORT zelm_imageutil
  LIBRARY COMPONENT runtime NAMELINK_COMPONENT devel
  ARCHIVE COMPONENT devel)
install(FILES ${PROJECT_SOURCE_DIR}/include/zelm_imageutil.h TYPE INCLUDE COMPONENT devel)
install(FILES ${PROJECT_SOURCE_DIR}/CHANGELOG.md TYPE DOC COMPONENT devel)
install(FILES ${PROJECT_SOURCE_DIR}/examples/preview.c
  DESTINATION ${CMAKE_INSTALL_DOCDIR}/examples COMPONENT devel)

# For CMake. The file of the targets finds the tree that it stands in by itself.
install(EXPORT zelm_imageutil NAMESPACE zelm:: DESTINATION ${package_dir}
  FILE zelm_imageutilConfig.cmake COMPONENT devel)
write_basic_package_version_file(${generated}/zelm_imageutilConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES ${generated}/zelm_imageutilConfigVersion.cmake
  DESTINATION ${package_dir} COMPONENT devel)

# For pkg-config. Folders are given as seen from the .pc file, so that the tree may move.
file(RELATIVE_PATH ZELM_PC_PREFIX
  ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
file(RELATIVE_PATH ZELM_PC_LIBDIR ${CMAKE_INSTALL_PREFIX} ${CMAKE_INSTALL_FULL_LIBDIR})
file(RELATIVE_PATH ZELM_PC_INCLUDEDIR
  ${CMAKE_INSTALL_PREFIX} ${CMAKE_INSTALL_FULL_INCLUDEDIR})
string(REGEX REPLACE "/$" "" ZELM_PC_PREFIX "${ZELM_PC_PREFIX}")
configure_file(${PROJECT_SOURCE_DIR}/cmake/zelm_imageutil.pc.in
  ${generated}/zelm_imageutil.pc @ONLY)
install(FILES ${generated}/zelm_imageutil.pc
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT devel)

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
