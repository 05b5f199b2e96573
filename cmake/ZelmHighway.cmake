# The vector kernels need Highway's headers, when the library is compiled and never after.
# Says in one line which Highway is used and for which instruction sets kernels are
# compiled, and sets
#   ZELM_HIGHWAY_FOLDER  what to add to the include path; empty: plain kernels only.
option(ZELM_VECTORS "Compile the vector kernels" ON)
find_path(HIGHWAY_INCLUDE_DIR hwy/highway.h NO_CMAKE_FIND_ROOT_PATH
  DOC "Folder that holds Highway's folder hwy")
set(ZELM_HIGHWAY_FOLDER "")

# Sets <version> to that of the headers; which of them holds it differs between releases.
function(zelm_highway_version version)
  set(found "")
  foreach(part MAJOR MINOR PATCH)
    foreach(header base.h highway.h)
      file(STRINGS ${HIGHWAY_INCLUDE_DIR}/hwy/${header} line
        REGEX "^#define HWY_${part} [0-9]+" LIMIT_COUNT 1)
      if(line)
        string(REGEX REPLACE ".* " "." line "${line}")
        string(APPEND found "${line}")
        break()
      endif()
    endforeach()
  endforeach()
  string(REGEX REPLACE "^\\." "" found "${found}")
  set(${version} "${found}" PARENT_SCOPE)
endfunction()

# Sets <sets> to the names of the instruction sets that this compiler, its flags and this
# Highway give kernels for; cmake/highway_probe.cc has the names.
function(zelm_highway_sets sets)
  try_compile(compiled ${PROJECT_BINARY_DIR}/highway-probe
    ${PROJECT_SOURCE_DIR}/cmake/highway_probe.cc
    CMAKE_FLAGS "-DINCLUDE_DIRECTORIES=${PROJECT_SOURCE_DIR}/src\;${ZELM_HIGHWAY_FOLDER}"
    OUTPUT_VARIABLE output)
  if(NOT compiled)
    message(FATAL_ERROR "Highway's headers in ${HIGHWAY_INCLUDE_DIR} do not compile with "
      "this compiler and its flags:\n${output}")
  endif()
  string(REGEX MATCHALL "zelm: [^;\n'\"]*;" found "${output}")
  list(REMOVE_DUPLICATES found)
  string(REGEX REPLACE "zelm: " "" found "${found}")
  list(REMOVE_ITEM found "")
  set(${sets} "${found}" PARENT_SCOPE)
endfunction()

if(NOT ZELM_VECTORS)
  message(STATUS "ZELM_VECTORS is off: only the plain kernels are compiled")
elseif(NOT HIGHWAY_INCLUDE_DIR)
  message(STATUS "Highway was not found: only the plain kernels are compiled")
else()
  # A folder with nothing but Highway in it, which may stand before the system's own
  # folders, as the one that it is installed in may not when cross-compiling.
  zelm_highway_version(version)
  set(ZELM_HIGHWAY_FOLDER ${PROJECT_BINARY_DIR}/highway-${version})
  file(MAKE_DIRECTORY ${ZELM_HIGHWAY_FOLDER})
  file(CREATE_LINK ${HIGHWAY_INCLUDE_DIR}/hwy ${ZELM_HIGHWAY_FOLDER}/hwy SYMBOLIC)
  zelm_highway_sets(sets)
  if(sets MATCHES "without (.*)")
    message(FATAL_ERROR "For 32-bit Arm, Highway ${version} in ${HIGHWAY_INCLUDE_DIR} "
      "compiles vector kernels only with ${CMAKE_MATCH_1}, which is missing from the "
      "compiler's flags. Add it, or ask for plain kernels with -DZELM_VECTORS=OFF.")
  endif()
  list(JOIN sets ", " names)
  message(STATUS "Highway ${version} in ${HIGHWAY_INCLUDE_DIR}: kernels for ${names}")
endif()

# Lets the sources of <target> use Highway, if there is one.
function(zelm_use_highway target)
  if(ZELM_HIGHWAY_FOLDER)
    target_compile_definitions(${target} PRIVATE ZELM_HIGHWAY=1)
    target_include_directories(${target} SYSTEM PRIVATE ${ZELM_HIGHWAY_FOLDER})
  endif()
endfunction()
