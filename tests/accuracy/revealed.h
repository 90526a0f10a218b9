// SPDX-License-Identifier: MIT

#pragma once

#include <gtest/gtest.h>

#include "accuracy/system_types.h"
#include "accuracy/wide.h"
#include "tarntnla.h"

// What the rank-revealing solve leaves.
struct Revealed {
  Matrix X;
  Matrix null_space;
};

inline Revealed revealed(const Matrix& A, const Matrix& B, double tol, std::size_t rank) {
  TnLaDblMat X;
  TnLaDblMat Z;
  int found = -2;
  tnla_linearsolve(dense(A), dense(B), X, tol, &found, &Z);
  EXPECT_EQ(found, static_cast<int>(rank));
  return {plain(X), plain(Z)};
}

// Below every |R(j, j)| that counts, and above the noise of what is zero.
inline double tolerance_for(const Matrix& A) {
  return std::max(kShortest, static_cast<double>(one_norm(A) * std::sqrt(count(A.n)) * 0x1p-46L));
}
