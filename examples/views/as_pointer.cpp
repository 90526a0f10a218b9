// SPDX-License-Identifier: MIT

// A matrix as a pointer to its first element and a leading dimension: what a function written for columns
// in memory wants, as those of C and Fortran are.
//
//   reading   A.array().data()   null where A has never had an element
//   writing   &A(0, 0)           A must not be empty; writes into the matrix itself
//   (i, j)    p[i + j * ld]      with ld = A.n_rows()
//   a block   &A(i, j)           the same ld
//
// The pointer is valid until A is assigned, resized, edited or gone.  The small types are laid out alike,
// with ld = N; their pointer is &S(0, 0).

#include <tarntnla.h>

#include <cstdio>

#include "common/checks.h"

namespace {

// Somebody else's function: b = a for the m x n block at a, with the columns multiplied by 1, 2, 3, ...
void scale_columns(int m, int n, double* a, int ld) {
  for (int j = 0; j < n; ++j) {
    for (int i = 0; i < m; ++i) a[i + j * ld] *= j + 1;
  }
}

double sum(int m, int n, const double* a, int ld) {
  double total = 0.0;
  for (int j = 0; j < n; ++j) {
    for (int i = 0; i < m; ++i) total += a[i + j * ld];
  }
  return total;
}

}  // namespace

int main() {
  Checks checks;

  const double values[] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12};
  TnLaDblMat A(values, 4, 3);
  const int m = static_cast<int>(A.n_rows());
  const int n = static_cast<int>(A.n_cols());

  checks.is_true("reading: the sum of all elements is 78", sum(m, n, A.array().data(), m) == 78.0);
  checks.is_true("both pointers are one", A.array().data() == &A(0, 0));

  scale_columns(m, n, &A(0, 0), m);
  checks.is_true("writing: A(3, 2) = 12 became 36", A(3, 2) == 36.0);

  // Rows 1 and 2 of columns 1 and 2: (12 27; 14 30 before scaling by 1, 2).
  checks.is_true("a block: 12 + 14 + 30 + 33 = 89", sum(2, 2, &A(1, 1), m) == 89.0);
  scale_columns(2, 2, &A(1, 1), m);
  checks.is_true("the block changed", A(1, 1) == 12.0 && A(2, 2) == 66.0);
  checks.is_true("and nothing around it", A(0, 1) == 10.0 && A(3, 2) == 36.0);

  TnLaTSmallMat<3, 3, double> S(3, 3, 2.0);
  scale_columns(3, 3, &S(0, 0), 3);
  checks.is_true("a small matrix: diag(2, 2, 2) became diag(2, 4, 6)",
                 S(0, 0) == 2.0 && S(1, 1) == 4.0 && S(2, 2) == 6.0);
  return checks.exit_code();
}
