// SPDX-License-Identifier: MIT

#include "accuracy.h"

#include <algorithm>
#include <cfloat>
#include <cmath>

SingularValues singular_values(const TnLaDblMat& A) {
  TnLaDblMat normal = A.tr() * A;
  TnArray<double> squares;  // in decreasing order
  TnLaDblMat vectors;
  if (!tnla_eigenvector_basis(normal, squares, vectors)) return {INFINITY, 0.0};
  return {std::sqrt(squares[0]), std::sqrt(std::max(0.0, squares[squares.size() - 1]))};
}

static double norm(const TnLaDblMat& A) { return std::sqrt(A.sq_norm()); }

// A row passes through at most one reflection a column, each of them with a sum over at most all rows:
// together as if A and B had been changed by dA and dB of rows * columns roundings of 2^-53 of their norms.
// With R = B - A P that changes P, to first order, by
//     A^+ (dB - dA P) + (A' A)^-1 dA' R.
double most_difference(const TnLaDblMat& A, const TnLaDblMat& B, const TnLaDblMat& P, double smallest) {
  const double rounding = static_cast<double>(A.n_rows() * A.n_cols()) * DBL_EPSILON / 2.0;
  const double of_one =
      (norm(B) + norm(A) * norm(P)) / smallest + norm(A) * norm(A * P - B) / (smallest * smallest);
  return 2.0 * rounding * of_one;
}
