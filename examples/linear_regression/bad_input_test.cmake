# SPDX-License-Identifier: MIT

# Certified regression problems that are missing, cut short or wrong.

include(${CMAKE_CURRENT_LIST_DIR}/../common/bad_input.cmake)
file(READ ${DATA}/Norris.txt good)

# What is right.
expect(0 "" ${DATA}/Norris.txt)
expect(0 "" --digits 13 ${DATA}/Norris.txt ${DATA}/NoInt1.txt)
expect(1 "" --digits 14 ${DATA}/Norris.txt)
string(REPLACE "\n" "\r\n" other_line_ends "${good}")
file(WRITE ${SCRATCH}/good.txt "${other_line_ends}")
expect(0 "" ${SCRATCH}/good.txt)

expect_the_usual()

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
expect_usage(linear_regression --digits)
expect_usage(linear_regression --digits many ${DATA}/Norris.txt)
expect_usage(linear_regression --digits 16)
