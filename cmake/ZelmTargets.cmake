# Warnings for every target of ours.
function(zelm_warnings target)
  target_compile_options(${target} PRIVATE -Wall -Wextra)
  if(ZELM_WARNINGS_AS_ERRORS)
    target_compile_options(${target} PRIVATE -Werror)
  endif()
endfunction()

# How the library's own sources are compiled: nothing of the C++ runtime is
# needed at run time, only what the header marks is visible, and a program that links the
# static library can leave out the functions that it does not call.
function(zelm_library_options target)
  target_include_directories(${target} PUBLIC
    $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include>
    PRIVATE ${PROJECT_SOURCE_DIR}/src)
  target_compile_options(${target} PRIVATE
    -fno-exceptions -fno-rtti -fno-threadsafe-statics
    -fvisibility=hidden -fvisibility-inlines-hidden -ffunction-sections -fdata-sections)
  set_target_properties(${target} PROPERTIES POSITION_INDEPENDENT_CODE ON)
  zelm_warnings(${target})
endfunction()
