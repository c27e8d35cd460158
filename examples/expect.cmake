# Runs PROGRAM (a list) with standard input INPUT, whose escapes printf expands. Compares its output
# with PRINTS and, if given, the MD5 digest of the file that it WRITES.
execute_process(COMMAND printf "${INPUT}" COMMAND ${PROGRAM} OUTPUT_VARIABLE output
                RESULT_VARIABLE result TIMEOUT 60)
if(NOT result EQUAL 0)
  message(FATAL_ERROR "The program ended with ${result}")
endif()
string(STRIP "${output}" output)
if(NOT output STREQUAL PRINTS)
  message(FATAL_ERROR "It printed\n${output}\ninstead of\n${PRINTS}")
endif()
if(WRITES)
  file(MD5 ${WRITES} digest)
  if(NOT digest STREQUAL MD5)
    message(FATAL_ERROR "The digest of ${WRITES} is ${digest} instead of ${MD5}")
  endif()
endif()
