# The shared library exports the names of the map and no other, carries its name, and
# needs nothing but the C library and its mathematics.
# cmake -DLIBRARY=... -DMAP=... -DNM=... -DREADELF=... -P exports.cmake
file(STRINGS ${MAP} expected REGEX "^    [A-Za-z]")
list(TRANSFORM expected REPLACE "[ ;]" "")
list(SORT expected)
list(LENGTH expected count)
if(NOT count EQUAL 34)
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
if(NOT dynamic MATCHES "SONAME[^\n]*\\[libzelm_imageutil\\.so\\.1\\]")
  message(SEND_ERROR "no SONAME libzelm_imageutil.so.1")
endif()
