# SPDX-License-Identifier: MIT

# Outlines that are missing, cut short or wrong, and outlines that do not determine the curve.

include(${CMAKE_CURRENT_LIST_DIR}/../common/bad_input.cmake)
file(READ ${DATA}/star_knob.txt good)
string(STRIP "${good}" rows)
string(REPLACE "\n" ";" rows "${rows}")

# rows_of(<first> <how many> <variable>): the text of some of the rows.
function(rows_of first count result)
  list(SUBLIST rows ${first} ${count} part)
  list(JOIN part "\n" text)
  set(${result} "${text}\n" PARENT_SCOPE)
endfunction()

# What is right: other line ends, comments, the first point once more at the end, a short gap at the end, the
# fewest points that there may be.
string(REPLACE "\n" "\r\n" other_line_ends "${good}")
rows_of(0 1 first)
rows_of(0 350 short_gap)
set(fewest "")
foreach(row RANGE 0 355 5)
  rows_of(${row} 1 text)
  string(APPEND fewest "${text}")
endforeach()
foreach(text "${other_line_ends}" "# x y\n${good}\n# end\n" "${good}${first}" "${short_gap}" "${fewest}")
  file(WRITE ${SCRATCH}/good.txt "${text}")
  expect(0 "" ${SCRATCH}/good.txt)
endforeach()

expect_the_usual()

# Too few points, or cut short within the last one.
rows_of(0 71 text)
expect_refused(71 "${text}")
string(LENGTH "${good}" length)
foreach(missing RANGE 1 3)
  math(EXPR part "${length} - ${missing}")
  string(SUBSTRING "${good}" 0 ${part} text)
  expect_refused(360 "${text}")
endforeach()

# Points that do not go round an outline: all in one place, too close together, too far apart, half of the
# outline missing.
string(REPEAT "3 4\n" 100 text)
expect_refused("" "${text}")
string(REPEAT "3 4\n3 4.001\n" 50 text)
expect_refused("" "${text}")
string(REPEAT "3 4\n1e300 4\n" 50 text)
expect_refused("" "${text}")
string(REPEAT "1e308 0\n-1e308 0\n" 50 text)
expect_refused("" "${text}")
rows_of(0 180 text)
expect_refused("" "${text}")
rows_of(180 180 text)
expect_refused("" "${text}")
string(REPEAT "3 4\n" 20001 text)
expect_refused("" "${text}")

# A wrong word.
rows_of(1 1 second)
string(STRIP "${second}" second)
foreach(bad "nan 1" "1 inf" "1 1e999" "1 2x" "1" "1 2 3" "1,2" "x y" "1 #")
  expect_refused_with(2 "\n${second}\n" "\n${bad}\n")
endforeach()

expect_wrong_arguments(closed_curve ${DATA}/star_knob.txt)
