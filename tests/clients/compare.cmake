# Runs a client program on a file of its own and compares what it prints with the expected text.
#   cmake -DPROGRAM=... -DFILE=... -DEXPECTED=... -P compare.cmake
execute_process(COMMAND ${PROGRAM} ${FILE} OUTPUT_VARIABLE output RESULT_VARIABLE result)
file(REMOVE ${FILE})
file(READ ${EXPECTED} expected)
if(NOT result EQUAL 0)
  message(FATAL_ERROR "${PROGRAM} ended with ${result}, 0 expected; it printed:\n${output}")
endif()
if(NOT output STREQUAL expected)
  message(FATAL_ERROR "${PROGRAM} printed\n${output}\nexpected was\n${expected}")
endif()
