# SPDX-License-Identifier: MIT

# The report of an assertion: the check by file and line, and the client's own functions that lead there.
execute_process(COMMAND ${PROGRAM} RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE report)
if(NOT result EQUAL 0 OR NOT output MATCHES "2 assertions")
  message(FATAL_ERROR "exit code ${result}\n${output}${report}")
endif()
set(expected "src/tnla_matrix_vector\\.cpp:[0-9]+: assertion failed\n"
  "TnLaDblMat::col_vec" "last_load" "analyse" "main"
  "src/tnla_linearsolve\\.cpp:[0-9]+: assertion failed\n" "tnla_linearsolve" "supports" "analyse" "main")
foreach(text IN LISTS expected)
  if(NOT report MATCHES "${text}")
    message(FATAL_ERROR "'${text}' is not in its place in the report\n${report}")
  endif()
  string(FIND "${report}" "${CMAKE_MATCH_0}" start)
  string(LENGTH "${CMAKE_MATCH_0}" length)
  math(EXPR start "${start} + ${length}")
  string(SUBSTRING "${report}" ${start} -1 report)
endforeach()
