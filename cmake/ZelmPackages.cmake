# Debian packages, one for each component. scripts/package.sh makes them. All have the
# version of the project, as packages of one source do.
set(ZELM_PACKAGE_CONTACT "zelm_imageutil developers <zelm-imageutil@example.org>"
  CACHE STRING "Maintainer named in packages")

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_CONTACT "${ZELM_PACKAGE_CONTACT}")
set(CPACK_PACKAGE_VENDOR "zelm_imageutil")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")  # each package has its own
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_COMPONENTS_ALL runtime devel frames frames_devel)
if(TARGET zelm-imageutil)
  list(APPEND CPACK_COMPONENTS_ALL tool)
endif()
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_PRE_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/cmake/debian_files.cmake)
set(CPACK_POST_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/cmake/debian_scripts.cmake)

# zelm_package_library(<component> <package>): of a shared library.
macro(zelm_package_library component package)
  set(CPACK_DEBIAN_${component}_PACKAGE_NAME ${package})
  set(CPACK_DEBIAN_${component}_PACKAGE_SECTION libs)
  set(CPACK_DEBIAN_${component}_PACKAGE_SHLIBDEPS ON)
  set(CPACK_DEBIAN_${component}_PACKAGE_CONTROL_EXTRA
    ${PROJECT_SOURCE_DIR}/cmake/triggers)
endmacro()
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")

# zelm_package_devel(<component> <package> <needed package>...): of development files.
macro(zelm_package_devel component package)
  set(CPACK_DEBIAN_${component}_PACKAGE_NAME ${package})
  set(CPACK_DEBIAN_${component}_PACKAGE_SECTION libdevel)
  set(needs ${ARGN})
  list(TRANSFORM needs APPEND " (= ${PROJECT_VERSION})")
  list(JOIN needs ", " needs)
  set(CPACK_DEBIAN_${component}_PACKAGE_DEPENDS "${needs}, libc6-dev")
endmacro()

string(REGEX MATCH "^[0-9]+" frames_major ${ZELM_FRAMES_VERSION})
set(runtime libzelm-imageutil${PROJECT_VERSION_MAJOR})
set(frames libzelm-frames${frames_major})
zelm_package_library(RUNTIME ${runtime})
zelm_package_library(FRAMES ${frames})
zelm_package_devel(DEVEL libzelm-imageutil-dev ${runtime})
zelm_package_devel(FRAMES_DEVEL libzelm-frames-dev ${frames} libzelm-imageutil-dev)

set(CPACK_COMPONENT_RUNTIME_DESCRIPTION "${PROJECT_DESCRIPTION}
Reads planar, semi-planar, tiled and packed YUV and RGB565, writes YUV and RGB,
scales regions and turns them, with the same bytes on every processor.")
set(CPACK_COMPONENT_DEVEL_DESCRIPTION "${PROJECT_DESCRIPTION} (development files)
The header, the static library, and what CMake and pkg-config need
to find them.")
set(CPACK_COMPONENT_FRAMES_DESCRIPTION "${ZELM_FRAMES_DESCRIPTION}
Between all of 17 formats of YUV, RGB and grey, in planes with strides of
their own, limited or full range, BT.601, BT.709 or BT.2020, on any number of
threads, with the same bytes on every processor.")
set(CPACK_COMPONENT_FRAMES_DEVEL_DESCRIPTION
"${ZELM_FRAMES_DESCRIPTION} (development files)
The header, the static library, and what CMake and pkg-config need
to find them.")

set(CPACK_COMPONENT_TOOL_DESCRIPTION "Converts, scales and turns camera and video frames
The program zelm-imageutil, for raw frames, Y4M, PNG and portable pixmaps.")
set(CPACK_DEBIAN_TOOL_PACKAGE_NAME zelm-imageutil)
set(CPACK_DEBIAN_TOOL_PACKAGE_SECTION video)
set(CPACK_DEBIAN_TOOL_PACKAGE_SHLIBDEPS ON)
include(CPack)
