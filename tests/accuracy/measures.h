// SPDX-License-Identifier: MIT

#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <vector>

#include "accuracy/tally.h"
#include "accuracy/wide.h"
#include "tarntnla.h"

// The ratios of the library's results, each from its definition in tally.h.

inline double orthogonality(const Matrix& Q, long double unit = kUnit) {
  return ratio(one_norm(minus_product(reference::identity(Q.n), transposed(Q), Q)), count(Q.m) * unit);
}

// Q is the product of the reflections, as they come out of the library's own application of them.
inline void measure_factors(const Matrix& A, Ratios& ratios) {
  const TnLaTQRDecompo<TnLaDblMat> qr(dense(A));
  Matrix Q = reference::identity(A.m);
  for (std::size_t j = 0; j < A.m; ++j) {
    for (int t = qr.n_trafo(); t-- > 0;) qr.T(t).apply(Q.column(j), 1);
  }
  const long double unit = count(std::max(A.m, A.n)) * one_norm(A) * kUnit;
  ratios[kFactor] = ratio(one_norm(minus_product(A, Q, plain(qr.R()))), unit);
  ratios[kOrthogonal] = orthogonality(Q);
}

inline double solve_ratio(const Matrix& A, const Matrix& B, const Matrix& X) {
  const long double unit = count(std::max(A.m, A.n)) * one_norm(A) * one_norm(X) * kUnit;
  return ratio(one_norm(minus_product(B, A, X)), unit);
}

inline double normal_ratio(const Matrix& A, const Matrix& B, const Matrix& X) {
  const WideMatrix residual = minus_product(B, A, X);
  const long double norm = std::max(one_norm(B), one_norm(A) * one_norm(X));
  const long double unit = count(std::max({A.m, A.n, B.n})) * one_norm(A) * norm * kUnit;
  return ratio(one_norm(minus_product(Matrix(A.n, B.n), transposed(A), residual)), unit);
}

// The condition is that of the inverse that the library computes: `inverse` times the norm of A.
inline double forward_ratio(const Matrix& A, const Matrix& X, const Matrix& X0, long double inverse_norm) {
  WideMatrix error(X);
  for (std::size_t k = 0; k < error.a.size(); ++k) error.a[k] -= X0.a[k];
  return ratio(one_norm(error), one_norm(X0) * one_norm(A) * inverse_norm * kUnit);
}

inline double inverse_ratio(const Matrix& A, const Matrix& inverse) {
  const long double unit = count(A.n) * one_norm(A) * one_norm(inverse) * kUnit;
  return ratio(one_norm(minus_product(reference::identity(A.n), A, inverse)), unit);
}

// Z is the basis of the null space, 0 x 0 if A has none.
inline void measure_null_space(const Matrix& A, std::size_t rank, const Matrix& Z, const Matrix& X,
                               Ratios& ratios) {
  EXPECT_EQ(Z.m, rank == A.n ? 0 : A.n);
  EXPECT_EQ(Z.n, A.n - rank);
  if (Z.m != A.n || Z.n == 0) return;
  const long double n = count(A.n);
  ratios[kNull] = ratio(one_norm(minus_product(Matrix(A.m, Z.n), A, Z)), n * one_norm(A) * kUnit);
  ratios[kBasis] = orthogonality(Z);
  ratios[kMinimal] =
      ratio(one_norm(minus_product(Matrix(Z.n, X.n), transposed(Z), X)), n * one_norm(X) * kUnit);
}
