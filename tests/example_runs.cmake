# The example writes the same picture as the program.
# cmake -DTOOL=... -DPREVIEW=... -DFOLDER=... -P example_runs.cmake
set(card ${FOLDER}/example.nv21)
set(ours ${FOLDER}/example.ppm)
set(theirs ${FOLDER}/example-of-tool.ppm)
execute_process(COMMAND ${TOOL} testcard ${card} --size 1280x720
  COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND ${TOOL} convert ${card} ${theirs} --size 1280x720 --resize 640x360
  COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND ${PREVIEW} INPUT_FILE ${card} OUTPUT_FILE ${ours}
  COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND ${CMAKE_COMMAND} -E compare_files ${ours} ${theirs}
  COMMAND_ERROR_IS_FATAL ANY)
