// SPDX-License-Identifier: MIT

// Row-major data into the library's product, without a copy and without a matrix of the library.
//
// tnla_mat_mat_prod takes three pointers and two steps for each: A(i, l) is A[i * a_row_step + l *
// a_col_step].
//
//   m x k by columns    steps (1, m)        its transpose    (m, 1)
//   m x k by rows       steps (k, 1)        its transpose    (1, k)
//   a part of a table   the table's steps, from the part's first element on
//
// The sums are the same, and so are the bits, whichever way the elements lie.

#include <tarntnla.h>

#include <algorithm>
#include <cstdio>

#include "common/checks.h"

namespace {

constexpr std::size_t kRows = 3;
constexpr std::size_t kInner = 4;
constexpr std::size_t kCols = 2;

}  // namespace

int main() {
  Checks checks;

  // As C writes a table: row by row.
  const double A[kRows][kInner] = {{1.1, 2.2, 3.3, 4.4}, {0.5, 0.25, 0.125, 0.5}, {-1, 1e5, -1, 7}};
  const double B[kInner][kCols] = {{0.1, 10}, {0.2, 20}, {0.3, 30}, {0.4, 40}};

  // C = A B, all three by rows.
  double C[kRows][kCols];
  tnla_mat_mat_prod(kRows, kInner, kCols, &A[0][0], &B[0][0], &C[0][0], kInner, 1, kCols, 1, kCols, 1);

  // The same by columns, from copies.
  TnLaDblMat a(kRows, kInner, 0.0);
  TnLaDblMat b(kInner, kCols, 0.0);
  for (std::size_t l = 0; l < kInner; ++l) {
    for (std::size_t i = 0; i < kRows; ++i) a(i, l) = A[i][l];
    for (std::size_t j = 0; j < kCols; ++j) b(l, j) = B[l][j];
  }
  const TnLaDblMat c = a * b;
  bool same = true;
  for (std::size_t i = 0; i < kRows; ++i) {
    for (std::size_t j = 0; j < kCols; ++j) same = same && C[i][j] == c(i, j);
  }
  checks.is_true("the same bits as by columns", same);

  // Rows in, columns out: straight into a matrix of the library, which is written to at &D(0, 0).
  TnLaDblMat D(kRows, kCols, 0.0);
  tnla_mat_mat_prod(kRows, kInner, kCols, &A[0][0], &B[0][0], &D(0, 0), kInner, 1, kCols, 1, 1, kRows);
  checks.is_true("rows in, columns out", std::equal(&D(0, 0), &D(0, 0) + kRows * kCols, &c(0, 0)));

  // A' A: the steps of the first operand are exchanged.
  double normal[kInner][kInner];
  tnla_mat_mat_prod(kInner, kRows, kInner, &A[0][0], &A[0][0], &normal[0][0], 1, kInner, kInner, 1, kInner,
                    1);
  const TnLaDblMat expected = a.tr() * a;
  checks.is_true("the transpose of A, times A", normal[1][3] == expected(1, 3));

  // The last two columns of A alone, with the last two rows of B.
  double part[kRows][kCols];
  tnla_mat_mat_prod(kRows, 2, kCols, &A[0][2], &B[2][0], &part[0][0], kInner, 1, kCols, 1, kCols, 1);
  checks.is_true("a part of a table", part[1][1] == 0.125 * 30.0 + 0.5 * 40.0);
  return checks.exit_code();
}
