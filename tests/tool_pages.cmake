# The manual page and the completion know every command, option and format that the
# program's own help lists; the completion offers each command its options and no other.
# cmake -DTOOL=... -DPAGE=... -DCOMPLETION=... -DBASH=... -P tool_pages.cmake
cmake_minimum_required(VERSION 3.18...3.25)
file(READ ${PAGE} page)
file(READ ${COMPLETION} completion)
string(REPLACE "\\-" "-" page "${page}")

# read_help(<variable> <argument>...)
function(read_help variable)
  execute_process(COMMAND ${TOOL} ${ARGN} --help OUTPUT_VARIABLE help
    COMMAND_ERROR_IS_FATAL ANY)
  set(${variable} "${help}" PARENT_SCOPE)
endfunction()

# read_options(<variable> <help>): the long names.
function(read_options variable help)
  string(REGEX MATCHALL "\n  (-[a-z],)?--[a-z0-9-]+(,--[a-z0-9-]+)*" lines "${help}")
  string(REGEX MATCHALL "--[a-z0-9-]+" options "${lines}")
  list(SORT options)
  set(${variable} "${options}" PARENT_SCOPE)
endfunction()

# read_completions(<variable> <word> <before>...): what is offered for a word.
function(read_completions variable word)
  execute_process(COMMAND ${BASH} -c [=[
    . "$1"
    COMP_WORDS=(zelm-imageutil "${@:3}" "$2") COMP_CWORD=$(($# - 1))
    _zelm_imageutil
    printf '%s;' "${COMPREPLY[@]}"]=] bash ${COMPLETION} "${word}" ${ARGN}
    OUTPUT_VARIABLE words COMMAND_ERROR_IS_FATAL ANY)
  string(REGEX REPLACE ";$" "" words "${words}")
  list(SORT words)
  set(${variable} "${words}" PARENT_SCOPE)
endfunction()

# require_in_page(<word>...)
function(require_in_page)
  foreach(word IN LISTS ARGN)
    if(NOT page MATCHES "(^|[^a-z0-9-])${word}[^a-z0-9-]")
      message(SEND_ERROR "${PAGE} does not name ${word}")
    endif()
  endforeach()
endfunction()

# require_offered(<expected> <word> <before>...)
function(require_offered expected word)
  read_completions(offered "${word}" ${ARGN})
  if(NOT "${offered}" STREQUAL "${expected}")
    message(SEND_ERROR
      "${COMPLETION} offers after '${ARGN}': ${offered}; the help has ${expected}")
  endif()
endfunction()

read_help(general)
string(REGEX MATCH "\nSubcommands:\n.*\n\nFormats:\n" commands "${general}")
string(REGEX MATCHALL "\n  [a-z]+ " commands "${commands}")
string(REGEX MATCHALL "[a-z]+" commands "${commands}")
string(REGEX MATCH "\nFormats:\n.*\n\nIN is" table "${general}")
string(REGEX MATCHALL "\n  [a-z0-9]+ " formats "${table}")
string(REGEX MATCHALL "[a-z0-9]+" formats "${formats}")
string(REGEX MATCHALL "also [^\n]+" aliases "${table}")
string(REGEX REPLACE "also |, " ";" aliases "${aliases}")
list(REMOVE_ITEM aliases "")
list(LENGTH commands commandCount)
list(LENGTH formats formatCount)
list(LENGTH aliases aliasCount)
if(commandCount LESS 6 OR formatCount LESS 17 OR aliasCount LESS 18)
  message(SEND_ERROR "read from --help: ${commands}; ${formats}; ${aliases}")
endif()
list(TRANSFORM commands PREPEND "zelm-imageutil " OUTPUT_VARIABLE calls)
require_in_page(${calls} ${formats} ${aliases})
read_options(options "${general}")
set(first ${commands} ${options})
list(SORT first)
require_in_page(${options})
require_offered("${first}" "")
list(SORT formats)
require_offered("${formats}" "" convert --from)
set(targets ${formats} y4m png ppm pgm)
list(SORT targets)
require_offered("${targets}" "" convert --to)

foreach(command IN LISTS commands)
  read_help(help ${command})
  read_options(options "${help}")
  list(LENGTH options optionCount)
  if(optionCount LESS 2 OR NOT help MATCHES "Usage: zelm-imageutil ${command} ")
    message(SEND_ERROR "read from ${command} --help: ${options}")
  endif()
  require_in_page(${options})
  require_offered("${options}" - ${command})
endforeach()
