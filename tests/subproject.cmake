# Builds the libraries as part of another project, which has no build type and links the
# static ones only: what the project does not use is not built.
# cmake -DLIBRARY=... -DFOLDER=... -DGENERATOR=... -P subproject.cmake
file(REMOVE_RECURSE ${FOLDER})
execute_process(COMMAND ${CMAKE_COMMAND} -G ${GENERATOR} -B ${FOLDER}
  -S ${CMAKE_CURRENT_LIST_DIR}/subproject -DCMAKE_BUILD_TYPE=
  -DLIBRARY=${LIBRARY} -DPROGRAMS=${CMAKE_CURRENT_LIST_DIR} COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND ${CMAKE_COMMAND} --build ${FOLDER} COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND ${FOLDER}/program COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND ${FOLDER}/frames_program COMMAND_ERROR_IS_FATAL ANY)
file(GLOB_RECURSE shared ${FOLDER}/*.so*)
if(shared)
  message(SEND_ERROR "built without need: ${shared}")
endif()
