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

# How a shared library of ours is linked: it exports the names of the map, and needs
# nothing but the C library and its mathematics.
function(zelm_shared_library target map)
  set_target_properties(${target} PROPERTIES
    LINKER_LANGUAGE C
    LINK_DEPENDS ${map})
  target_link_options(${target} PRIVATE
    -Wl,--version-script=${map} -Wl,-Bsymbolic -Wl,--no-undefined
    -Wl,--as-needed -Wl,--gc-sections -Wl,-z,relro,-z,now,-z,noexecstack)
  target_link_libraries(${target} PRIVATE m)
endfunction()

# Offers zelm_<name> and zelm_<name>_static, made of the target <objects>, as zelm::<name>
# and zelm::<name>_static. In another project they are only built when they are used.
function(zelm_offer name objects)
  foreach(library ${name} ${name}_static)
    target_include_directories(zelm_${library} PUBLIC
      $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include>
      $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
    add_library(zelm::${library} ALIAS zelm_${library})
  endforeach()
  if(NOT ZELM_TOP_LEVEL AND NOT ZELM_INSTALL)
    set_target_properties(${objects} zelm_${name} zelm_${name}_static PROPERTIES
      EXCLUDE_FROM_ALL ON)
  endif()
endfunction()
