# SPDX-License-Identifier: MIT

# Matrix Market files that are missing, cut short or wrong.

include(${CMAKE_CURRENT_LIST_DIR}/../common/bad_input.cmake)
file(READ ${DATA}/bcsstk01.mtx good)

# expect_exit(<exit code> <text of the file>): the file is read, and nothing is said against it.
function(expect_exit code text)
  file(WRITE ${SCRATCH}/matrix.mtx "${text}")
  expect(${code} "" ${SCRATCH}/matrix.mtx)
endfunction()

# What is right.
expect(0 "" ${DATA}/bcsstk01.mtx)
string(REPLACE "\n" "\r\n" other_line_ends "${good}")
expect_exit(0 "${other_line_ends}")

expect_the_usual()
expect(2 "[^\n]*no_such_folder/p.svg: cannot be written\n" --picture ${SCRATCH}/no_such_folder/p.svg)

# Cut short anywhere.
string(LENGTH "${good}" length)
math(EXPR last "${length} - 1")
foreach(cut RANGE 1 ${last} 61)
  string(SUBSTRING "${good}" 0 ${cut} part)
  expect_refused("[0-9]+" "${part}")
endforeach()
string(SUBSTRING "${good}" 0 ${last} part)  # all but the last line end
expect_refused(229 "${part}" "does not end")

# The banner.
foreach(banner "matrix array real symmetric" "matrix coordinate real general" "matrix coordinate complex symmetric"
        "matrix coordinate pattern symmetric" "matrix coordinate real symmetric 1" "matrix coordinate real" "")
  expect_refused_with(1 "matrix coordinate real symmetric" "${banner}" "wanted first")
endforeach()
expect_refused_with(1 "%%MatrixMarket" "%MatrixMarket" "wanted first")

# The sizes.
expect_refused_with(5 "48 48 224" "48 48" "3 belong")
expect_refused_with(5 "48 48 224" "48 47 224" "as many columns")
expect_refused_with(5 "48 48 224" "0 48 224" "count")
expect_refused_with(5 "48 48 224" "48 48 -224" "count")
expect_refused_with(5 "48 48 224" "48 48 224.0" "count")
expect_refused_with(5 "48 48 224" "48 48 99999999999" "count")
expect_refused_with(5 "48 48 224" "2147483647 2147483647 224" "more than 2000 rows")
expect_refused_with(229 "48 48 224" "48 48 225" "after 224 of 225")
expect_refused_with(229 "48 48 224" "48 48 223" "more than 223")
expect_refused(4 "%%MatrixMarket matrix coordinate real symmetric\n%\n\n% no sizes\n" "before the line of its sizes")

# An entry.  Line 7 is '5 1 1000000.0'.
foreach(value nan inf 1e999 1000000.0x many)
  expect_refused_with(7 "5 1 1000000.0" "5 1 ${value}" "number")
endforeach()
expect_refused_with(7 "5 1 1000000.0" "5 1" "3 belong")
expect_refused_with(7 "5 1 1000000.0" "5 1 1000000.0 1" "3 belong")
expect_refused_with(7 "5 1 1000000.0" "% 5 1 1000000.0" "3 belong")
expect_refused_with(7 "5 1 1000000.0" "0 1 1000000.0" "count")
expect_refused_with(7 "5 1 1000000.0" "5 0 1000000.0" "count")
expect_refused_with(7 "5 1 1000000.0" "-5 1 1000000.0" "count")
expect_refused_with(7 "5 1 1000000.0" "49 1 1000000.0" "outside")
expect_refused_with(7 "5 1 1000000.0" "5 49 1000000.0" "outside")
expect_refused_with(7 "5 1 1000000.0" "1 5 1000000.0" "above")
expect_refused_with(7 "5 1 1000000.0" "1 1 1000000.0" "twice")
expect_refused_with(228 "5 1 1000000.0\n" "" "after 223 of 224")

# Another matrix: of another size, not that of the frame, not positive definite.
expect_refused("" "%%MatrixMarket matrix coordinate real symmetric\n1 1 1\n1 1 2.0\n" "1 rows")
string(REPLACE "5 1 1000000.0" "5 1 1000001.0" text "${good}")
expect_exit(1 "${text}")
string(REPLACE "1 1 2832268.51852" "1 1 -2832268.51852" text "${good}")
expect_exit(1 "${text}")
expect_exit(1 "%%MatrixMarket matrix coordinate real symmetric\n48 48 1\n1 1 2.0\n")

# The command line.
expect_usage(stiffness --picture)
expect_usage(stiffness --no_such_option)
expect_usage(stiffness a.mtx b.mtx)
