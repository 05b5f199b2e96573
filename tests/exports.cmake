# A shared library exports the names of its map and no other, carries its name, and needs
# nothing but the C library and its mathematics.
# cmake -DLIBRARY=... -DMAP=... -DCOUNT=<how many names> -DSONAME=... -DNM=...
#   -DREADELF=... -P exports.cmake
file(STRINGS ${MAP} expected REGEX "^    [A-Za-z]")
list(TRANSFORM expected REPLACE "[ ;]" "")
list(SORT expected)
list(LENGTH expected count)
if(NOT count EQUAL COUNT)
  message(SEND_ERROR "${count} names in ${MAP}")
endif()

execute_process(COMMAND ${NM} -D --defined-only ${LIBRARY}
  OUTPUT_VARIABLE symbols COMMAND_ERROR_IS_FATAL ANY)
string(REGEX MATCHALL "[A-Z] [^\n]+" symbols "${symbols}")
list(TRANSFORM symbols REPLACE "^[A-Z] " "")
list(SORT symbols)
if(NOT symbols STREQUAL expected)
  message(SEND_ERROR "exported: ${symbols}")
endif()

execute_process(COMMAND ${READELF} -dW ${LIBRARY}
  OUTPUT_VARIABLE dynamic COMMAND_ERROR_IS_FATAL ANY)
string(REGEX MATCHALL "\\(NEEDED\\)[^\n]*" needed "${dynamic}")
foreach(entry IN LISTS needed)
  if(NOT entry MATCHES "\\[lib[cm]\\.so\\.6\\]")
    message(SEND_ERROR "${entry}")
  endif()
endforeach()
string(REGEX MATCH "\\(SONAME\\)[^\n]*\\[([^]]*)\\]" found "${dynamic}")
if(NOT CMAKE_MATCH_1 STREQUAL SONAME)
  message(SEND_ERROR "the SONAME is '${CMAKE_MATCH_1}' instead of ${SONAME}")
endif()
