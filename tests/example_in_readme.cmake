# The README shows the example as it is.
# cmake -DREADME=... -DEXAMPLE=... -P example_in_readme.cmake
file(READ ${README} readme)
file(READ ${EXAMPLE} example)
string(FIND "${readme}" "```c\n${example}```\n" place)
if(place EQUAL -1)
  message(SEND_ERROR "${README} does not show ${EXAMPLE} as it is")
endif()
