# run(variable command...): what the command prints to its standard output; the script ends when it fails.
function(run out)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE error)
  if(NOT result EQUAL 0)
    message(FATAL_ERROR "failed: ${ARGN}\n${output}${error}")
  endif()
  set(${out} "${output}" PARENT_SCOPE)
endfunction()
