# Runs one example through the bvxcad executable, as a user would, and
# compares what it prints with the example's .expected file. A script whose
# expected output ends in an error must exit with status 1, any other with 0.
#   cmake -DBVXCAD=path -DSCRIPT=name.bvxs -DEXPECTED=name.expected [-DSTDIN=ON] -P RunScriptExample.cmake
if(STDIN)
  execute_process(COMMAND ${BVXCAD} run - INPUT_FILE ${SCRIPT}
    OUTPUT_VARIABLE output ERROR_VARIABLE errors RESULT_VARIABLE status)
else()
  execute_process(COMMAND ${BVXCAD} run ${SCRIPT}
    OUTPUT_VARIABLE output ERROR_VARIABLE errors RESULT_VARIABLE status)
endif()
file(READ ${EXPECTED} expected)
if(NOT "${output}${errors}" STREQUAL "${expected}")
  message(FATAL_ERROR "${SCRIPT}: output differs from ${EXPECTED}:\n${output}${errors}")
endif()
if(expected MATCHES "(^|\n)line [0-9]+: [^\n]*\n$")
  set(wanted 1)
else()
  set(wanted 0)
endif()
if(NOT status STREQUAL wanted)
  message(FATAL_ERROR "${SCRIPT}: exit status ${status}, expected ${wanted}")
endif()
