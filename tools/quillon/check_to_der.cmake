# "quillon decode --to der -o OUTPUT" of INPUT as TYPE must succeed and write EXPECTED.
execute_process(COMMAND ${TOOL} decode --type ${TYPE} --to der -o ${OUTPUT} ${INPUT}
                RESULT_VARIABLE status ERROR_VARIABLE report)
if(NOT status EQUAL 0)
  message(FATAL_ERROR "quillon exited with ${status}:\n${report}")
endif()
execute_process(COMMAND ${CMAKE_COMMAND} -E compare_files ${OUTPUT} ${EXPECTED}
                RESULT_VARIABLE differ)
if(NOT differ EQUAL 0)
  message(FATAL_ERROR "${OUTPUT} differs from ${EXPECTED}")
endif()
