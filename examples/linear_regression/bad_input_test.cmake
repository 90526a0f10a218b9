# Runs PROGRAM on files that are missing, cut short or wrong: each gets one line that names the file and,
# where there is one, the line, and a non-zero exit.

file(MAKE_DIRECTORY ${SCRATCH})
file(READ ${DATA}/Norris.txt good)

# expect(<exit code> <pattern of the error output> <arguments...>)
function(expect code pattern)
  execute_process(COMMAND ${PROGRAM} ${ARGN} RESULT_VARIABLE result OUTPUT_QUIET ERROR_VARIABLE errors)
  if(NOT result EQUAL code OR NOT errors MATCHES "^${pattern}$")
    message(SEND_ERROR "${ARGN}: exit ${result} (expected ${code}), error output:\n${errors}expected: ${pattern}")
  endif()
endfunction()

# expect_refused(<line or empty> <text of the file>)
function(expect_refused line text)
  file(WRITE ${SCRATCH}/bad.txt "${text}")
  if(NOT line STREQUAL "")
    set(line ":${line}")
  endif()
  expect(2 "[^\n]*bad.txt${line}: [^\n]+\n" ${SCRATCH}/bad.txt)
endfunction()

# What is right.
expect(0 "" ${DATA}/Norris.txt)
expect(0 "" --digits 13 ${DATA}/Norris.txt ${DATA}/NoInt1.txt)
expect(1 "" --digits 14 ${DATA}/Norris.txt)
string(REPLACE "\n" "\r\n" other_line_ends "${good}")
file(WRITE ${SCRATCH}/good.txt "${other_line_ends}")
expect(0 "" ${SCRATCH}/good.txt)

# Files that cannot be read.
expect(2 "[^\n]*no_such_file.txt: [^\n]+\n" ${SCRATCH}/no_such_file.txt)
expect(2 "[^\n]*bad_input: [^\n]+\n" ${SCRATCH})
expect_refused("0" "")

# Cut short anywhere.
string(LENGTH "${good}" length)
math(EXPR last "${length} - 1")
foreach(cut RANGE 1 ${last} 23)
  string(SUBSTRING "${good}" 0 ${cut} part)
  expect_refused("[0-9]+" "${part}")
endforeach()
string(SUBSTRING "${good}" 0 ${last} part)  # all but the last line end
expect_refused("[0-9]+" "${part}")

# A wrong word on a line that is known.
function(expect_refused_with line from to)
  string(REPLACE "${from}" "${to}" text "${good}")
  if(text STREQUAL good)
    message(SEND_ERROR "nothing to replace: ${from}")
  endif()
  expect_refused("${line}" "${text}")
endfunction()
expect_refused_with(24 "338.8 337.4" "338.8 many")
expect_refused_with(24 "338.8 337.4" "nan 337.4")
expect_refused_with(24 "338.8 337.4" "338.8 inf")
expect_refused_with(24 "338.8 337.4" "338.8 1e999")
expect_refused_with(24 "338.8 337.4" "338.8 337.4x")
expect_refused_with(24 "338.8 337.4" "338.8")
expect_refused_with(24 "338.8 337.4" "338.8 337.4 1")
expect_refused_with(6 "observations 36" "observations many")
expect_refused_with(6 "observations 36" "observations -1")
expect_refused_with(58 "observations 36" "observations 37")
expect_refused_with(58 "parameters 2" "parameters 3")
expect_refused_with(8 "degrees 0 1" "degrees 0 one")
expect_refused_with(8 "degrees 0 1" "degrees 0 -1")
expect_refused_with(8 "polynomial degrees 0 1" "columns 1 z")
expect_refused_with(8 "polynomial degrees 0 1" "spline")
expect_refused_with(11 "certified B0 -0.26" "certified B0 x-0.26")
expect_refused_with(58 "residual_sd" "# residual_sd")
expect_refused_with(5 "level" "levle")

# The command line.
expect(2 "linear_regression: [^\n]+\nusage: [^\n]+\n" --digits)
expect(2 "linear_regression: [^\n]+\nusage: [^\n]+\n" --digits many ${DATA}/Norris.txt)
expect(2 "linear_regression: [^\n]+\nusage: [^\n]+\n" --digits 16)
expect(0 "" --help)
