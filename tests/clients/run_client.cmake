# Runs PROGRAM with the name of a file in the empty folder FOLDER, and compares what it prints with
# the text in EXPECTED. PRELOAD may name a library that is loaded before the program.
file(REMOVE_RECURSE ${FOLDER})
file(MAKE_DIRECTORY ${FOLDER})
set(environment "")
if(PRELOAD)
  set(environment ${CMAKE_COMMAND} -E env LD_PRELOAD=${PRELOAD})
endif()
execute_process(COMMAND ${environment} ${PROGRAM} ${FOLDER}/client.rxf
  OUTPUT_VARIABLE printed
  ERROR_VARIABLE complaints
  RESULT_VARIABLE status)
file(READ ${EXPECTED} wanted)
if(NOT status EQUAL 0)
  message(FATAL_ERROR "${PROGRAM} ended with ${status}:\n${printed}\n${complaints}")
endif()
if(NOT printed STREQUAL wanted)
  message(FATAL_ERROR "${PROGRAM} printed\n${printed}\ninstead of\n${wanted}")
endif()
if(NOT EXISTS ${FOLDER}/client.rxf)
  message(FATAL_ERROR "${PROGRAM} left no file behind")
endif()
