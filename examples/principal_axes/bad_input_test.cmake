# SPDX-License-Identifier: MIT

# Clouds that are missing, cut short or wrong, and clouds without principal axes.

include(${CMAKE_CURRENT_LIST_DIR}/../common/bad_input.cmake)
file(READ ${DATA}/bracket.txt good)

# What is right: other line ends, comments, a body with equal moments, a flat one, a small one, a far one.
string(REPLACE "\n" "\r\n" other_line_ends "${good}")
set(cube "0 0 0\n0 0 1\n0 1 0\n0 1 1\n1 0 0\n1 0 1\n1 1 0\n1 1 1\n")
set(triangle "0 0 0\n3 0 0\n0 4 0\n")
set(small "0 0 0\n1e-3 0 0\n0 1e-3 0\n0 0 1e-3\n")
set(far "100000 0 0\n100020 0 0\n100000 30 0\n100000 0 40\n")
foreach(text "${other_line_ends}" "# x y z\n${good}\n# end\n" "${cube}" "${triangle}" "${small}" "${far}")
  file(WRITE ${SCRATCH}/good.txt "${text}")
  expect(0 "" ${SCRATCH}/good.txt)
endforeach()

expect_the_usual()

# Too few points, or cut short within the last one.
expect_refused(2 "0 0 0\n1 0 0\n")
string(LENGTH "${good}" length)
foreach(missing RANGE 1 4)
  math(EXPR part "${length} - ${missing}")
  string(SUBSTRING "${good}" 0 ${part} text)
  expect_refused(700 "${text}")
endforeach()

# No body: all points in one place, on a line, on a line by all that can be told from far away, within less
# than a nanometre; points beyond all bounds.
expect_refused("" "1 2 3\n1 2 3\n1 2 3\n1 2 3\n")
expect_refused("" "0 0 0\n1 2 3\n2 4 6\n")
expect_refused("" "0.1 0.1 0.1\n0.2 0.2 0.2\n0.7 0.7 0.7\n")
expect_refused("" "1e8 0 0\n100000001 0 0\n1e8 1e-6 0\n")
expect_refused("" "0 0 0\n1e-9 0 0\n0 1e-9 0\n")
expect_refused("" "0 0 0\n1e300 0 0\n0 1e300 0\n")
expect_refused("" "0 0 0\n1e10 0 0\n0 1 0\n")

# A wrong word.
string(REGEX MATCH "\n[^\n]+\n" second "${good}")
foreach(bad "nan 1 2" "1 inf 2" "1 2 1e999" "1 2 3x" "1 2" "1 2 3 4" "1,2,3" "x y z")
  expect_refused_with(2 "${second}" "\n${bad}\n")
endforeach()

expect_wrong_arguments(principal_axes ${DATA}/bracket.txt)
