# Runs the program of the library's page on a file that is not there yet, and holds what it prints.
file(REMOVE_RECURSE ${FOLDER})
file(MAKE_DIRECTORY ${FOLDER})
execute_process(COMMAND ${PROGRAM} ${FOLDER}/new.mdb RESULT_VARIABLE code OUTPUT_VARIABLE printed)
if(NOT code EQUAL 0 OR NOT printed STREQUAL "7 ocho horas\n8 -\n")
  message(FATAL_ERROR "ended with ${code} and printed: ${printed}")
endif()
file(REMOVE_RECURSE ${FOLDER})
