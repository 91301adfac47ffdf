# The line that scripts/test ends with: cmake -DPROGRAM=… -DFOLDER=… -P skipped.cmake
# A folder of this run alone: another may be under way.
string(RANDOM LENGTH 12 name)
set(FOLDER ${FOLDER}/${name})
file(MAKE_DIRECTORY ${FOLDER})
set(reason "<system-out>[ RUN      ] B.b\n/x/b_test.cpp:12: Skipped\nno such driver\n[  SKIPPED ] B.b (0 ms)\n</system-out>")
set(skip "<testcase status=\"notrun\"><skipped message=\"SKIP_REGULAR_EXPRESSION_MATCHED\"/>")
file(WRITE ${FOLDER}/some.xml "<testsuite><testcase status=\"run\"/>${skip}${reason}</testcase>${skip}${reason}</testcase>"
     "${skip}</testcase><testcase status=\"fail\"/><testcase status=\"disabled\"/></testsuite>")
file(WRITE ${FOLDER}/none.xml "<testsuite><testcase status=\"run\"/></testsuite>")
file(WRITE ${FOLDER}/broken.xml "<testsuite>")

function(expect code text)
  execute_process(COMMAND python3 ${PROGRAM} ${ARGN} RESULT_VARIABLE result OUTPUT_VARIABLE out ERROR_VARIABLE err)
  if(NOT result EQUAL ${code} OR NOT out STREQUAL "${text}")
    message(FATAL_ERROR "${ARGN}: ended with ${result}, not ${code}, and said\n${out}${err}")
  endif()
endfunction()

expect(0 "Skipped: 0\n" ${FOLDER}/none.xml)
expect(1 "Skipped: 4: 2 × no such driver; 1 × no reason given; 1 × disabled\n" ${FOLDER}/some.xml)
expect(2 "" ${FOLDER}/broken.xml)
expect(2 "" ${FOLDER}/missing.xml)
file(REMOVE_RECURSE ${FOLDER})
