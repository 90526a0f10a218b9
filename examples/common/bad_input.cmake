# SPDX-License-Identifier: MIT

# What the bad_input_test.cmake of the examples share: PROGRAM runs on files that are missing, cut short or
# wrong, and on wrong command lines.  Each gets one line that names the file and, where there is one, the
# line, and a non-zero exit.
#
# `good` is the text of a file that is right.

file(MAKE_DIRECTORY ${SCRATCH})

# expect(<exit code> <pattern of the error output> <arguments...>)
function(expect code pattern)
  execute_process(COMMAND ${PROGRAM} ${ARGN} WORKING_DIRECTORY ${SCRATCH}
    RESULT_VARIABLE result OUTPUT_QUIET ERROR_VARIABLE errors)
  if(NOT result EQUAL code OR NOT errors MATCHES "^${pattern}$")
    message(SEND_ERROR "${ARGN}: exit ${result} (expected ${code}), error output:\n${errors}expected: ${pattern}")
  endif()
endfunction()

# expect_refused(<line or empty> <text of the file> [words of the message])
function(expect_refused line text)
  file(WRITE ${SCRATCH}/bad.txt "${text}")
  if(NOT line STREQUAL "")
    set(line ":${line}")
  endif()
  expect(2 "[^\n]*bad.txt${line}: [^\n]*${ARGN}[^\n]*\n" ${SCRATCH}/bad.txt)
endfunction()

# expect_refused_with(<line or empty> <words of the good file> <what stands there instead> [words of the message])
function(expect_refused_with line from to)
  string(REPLACE "${from}" "${to}" text "${good}")
  if(text STREQUAL good)
    message(SEND_ERROR "nothing to replace: ${from}")
  endif()
  expect_refused("${line}" "${text}" ${ARGN})
endfunction()

# A command line that is not understood: one line that says why, and the usage.
function(expect_usage name)
  expect(2 "${name}: [^\n]+\nusage: [^\n]+\n" ${ARGN})
endfunction()

# A file that is missing, a folder in its place, an empty one; the help.
function(expect_the_usual)
  expect(2 "[^\n]*no_such_file.txt: [^\n]+\n" ${SCRATCH}/no_such_file.txt)
  expect(2 "[^\n]*bad_input: [^\n]+\n" ${SCRATCH})
  expect_refused("0" "")
  expect(0 "" --help)
endfunction()

# What the command line NAME [--picture FILE.svg] [FILE] does not allow.
function(expect_wrong_arguments name good_file)
  expect_usage(${name} --picture)
  expect_usage(${name} --points 12)
  expect_usage(${name} ${good_file} ${good_file})
  expect(2 "[^\n]*no_such_folder/x.svg: [^\n]+\n" --picture ${SCRATCH}/no_such_folder/x.svg)
endfunction()
