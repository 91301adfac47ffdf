# Runs the program over every file of a folder: cmake -DPROGRAM=… -DENGINE=… -DFOLDER=… -P run.cmake
file(GLOB files ${FOLDER}/*)
if(NOT files)
  message(FATAL_ERROR "no tables of facts in ${FOLDER}")
endif()
execute_process(COMMAND ${PROGRAM} --engine ${ENGINE} ${files} RESULT_VARIABLE result)
if(NOT result EQUAL 0)
  message(FATAL_ERROR "conformance ended with ${result}")
endif()
