# Runs before packages are made of the staged trees: what Debian wants in each of them.
file(GLOB pages ${CPACK_TEMPORARY_DIRECTORY}/*/usr/share/man/man1/*.1)
if(pages)
  execute_process(COMMAND gzip -9nf ${pages} COMMAND_ERROR_IS_FATAL ANY)
endif()

string(TIMESTAMP now "%a, %d %b %Y %H:%M:%S +0000" UTC)
foreach(component IN LISTS CPACK_COMPONENTS_ALL)
  string(TOUPPER ${component} upper)
  set(folder ${CPACK_TEMPORARY_DIRECTORY}/${component}/usr/share/doc)
  string(APPEND folder /${CPACK_DEBIAN_${upper}_PACKAGE_NAME})
  file(MAKE_DIRECTORY ${folder})
  file(CHMOD ${folder} PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE
    GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
  file(WRITE ${folder}/changelog
"zelm-imageutil (${CPACK_PACKAGE_VERSION}) unstable; urgency=medium

  * Version ${CPACK_PACKAGE_VERSION}; what is new stands in CHANGELOG.md, which
    comes with the development files.

 -- ${CPACK_PACKAGE_CONTACT}  ${now}
")
  execute_process(COMMAND gzip -9nf ${folder}/changelog COMMAND_ERROR_IS_FATAL ANY)
  file(WRITE ${folder}/copyright
"Copyright 2026, the owner of zelm_imageutil. Contact: ${CPACK_PACKAGE_CONTACT}

No licence has been chosen yet; the choice is the owner's. Until it is made,
these files give nobody permission to copy, change or pass on the library or
the program.
")
endforeach()
