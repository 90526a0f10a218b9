// SPDX-License-Identifier: MIT

#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <vector>

#include "reference/decomposition_reference.h"
#include "reference/least_squares_reference.h"
#include "support/decomposition_types.h"

// Residuals in long double, which must have more bits than double: 64 of them on x86-64, 113 where it is
// IEEE quadruple.  The residual of a backward stable result is about n roundings of double; what is done to
// it here is n roundings that are 2^11 times smaller.

using reference::WideMatrix;

static_assert(std::numeric_limits<long double>::digits >= std::numeric_limits<double>::digits + 11);

// The relative error of one rounding in double.
constexpr long double kUnit = 0x1p-53L;
// The distance of two doubles above 1, in which LAPACK counts the errors of eigenvectors.
constexpr long double kUlp = 0x1p-52L;

inline long double count(std::size_t n) { return static_cast<long double>(n); }

// Double to the nearest.
inline Matrix rounded(const WideMatrix& A) {
  Matrix result(A.m, A.n);
  for (std::size_t k = 0; k < A.a.size(); ++k) result.a[k] = static_cast<double>(A.a[k]);
  return result;
}

// The largest sum of the magnitudes of a column.  A NaN in the matrix makes it NaN.
template <class M>
long double one_norm(const M& A) {
  long double largest = 0.0L;
  for (std::size_t j = 0; j < A.n; ++j) {
    long double sum = 0.0L;
    for (std::size_t i = 0; i < A.m; ++i) sum += std::fabs(static_cast<long double>(A(i, j)));
    if (!(sum <= largest)) largest = sum;
  }
  return largest;
}

// B - A X.
template <class Right, class Target>
WideMatrix minus_product(const Target& B, const Matrix& A, const Right& X) {
  const Matrix rows = transposed(A);
  WideMatrix result(B.m, B.n);
  for (std::size_t j = 0; j < B.n; ++j) {
    for (std::size_t i = 0; i < B.m; ++i) {
      const double* const row = rows.a.data() + i * rows.m;
      const auto* const column = X.a.data() + j * X.m;
      long double sum = 0.0L;
      for (std::size_t l = 0; l < A.n; ++l) sum += static_cast<long double>(row[l]) * column[l];
      result(i, j) = B(i, j) - sum;
    }
  }
  return result;
}

// A X, rounded once an element but for 2^-11.
template <class Right>
Matrix wide_product(const Matrix& A, const Right& X) {
  Matrix result = rounded(minus_product(Matrix(A.m, X.n), A, X));
  for (double& x : result.a) x = -x;
  return result;
}

// How often `unit` goes into a residual.  No residual is no error, whatever the unit.
inline double ratio(long double residual, long double unit) {
  return residual == 0.0L ? 0.0 : static_cast<double>(residual / unit);
}
