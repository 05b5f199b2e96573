# Runs after packages were made: takes out the scripts that call ldconfig, which CPack adds
# to every package with a shared library. The trigger in cmake/triggers does the same once
# for all packages that are installed together.
find_program(dpkg_deb dpkg-deb)
if(NOT dpkg_deb)
  return()
endif()
foreach(package IN LISTS CPACK_PACKAGE_FILES)
  set(tree ${CPACK_TEMPORARY_DIRECTORY}/without_scripts)
  file(REMOVE_RECURSE ${tree})
  execute_process(COMMAND ${dpkg_deb} --raw-extract ${package} ${tree}
    COMMAND_ERROR_IS_FATAL ANY)
  if(EXISTS ${tree}/DEBIAN/postinst)
    file(REMOVE ${tree}/DEBIAN/postinst ${tree}/DEBIAN/postrm)
    execute_process(
      COMMAND ${dpkg_deb} --root-owner-group --build ${tree} ${package}
      OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
  endif()
  file(REMOVE_RECURSE ${tree})
endforeach()
