// SPDX-License-Identifier: MIT

#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <vector>

#include "reference/jacobi_reference.h"
#include "support/assertions.h"
#include "support/bits.h"
#include "support/decomposition_types.h"
#include "support/dense_objects.h"
#include "support/values.h"
#include "tnla_eigenvector_basis_i.h"

// The basis of eigenvectors of plain matrices, and what the definition expects of it.

struct Basis {
  bool converged;
  Matrix a;
  std::vector<double> values;
  Matrix vectors;
};

// What a call leaves, where nothing is asserted.
inline Basis basis(const Matrix& A) {
  const AssertionLog log;
  TnLaDblMat a = dense(A);
  TnArray<double> values = vec({7, 7, 7}).array();
  TnLaDblMat vectors = mat(2, 3, {1, 2, 3, kNaN, 5, 6});  // nothing of it may stay
  const bool converged = tnla_eigenvector_basis(a, values, vectors);
  EXPECT_EQ(log.count(), 0u);
  return {converged, plain(a), {values.data(), values.data() + values.size()}, plain(vectors)};
}

inline void expect_basis(const Matrix& A) {
  SCOPED_TRACE(testing::Message() << A.m << " x " << A.n);
  const reference::Jacobi expected(A);
  const Basis actual = basis(A);
  EXPECT_EQ(actual.converged, expected.converged);
  EXPECT_SAME_MATRIX(actual.a, expected.a);
  ASSERT_EQ(actual.values.size(), A.m);
  EXPECT_SAME_ARRAY(A.m, actual.values.data(), expected.d.data());
  EXPECT_SAME_MATRIX(actual.vectors, expected.V);
}

// The upper triangle also below the diagonal.
inline Matrix symmetric(Matrix A) {
  for (std::size_t j = 0; j < A.n; ++j) {
    for (std::size_t i = j + 1; i < A.n; ++i) A(i, j) = A(j, i);
  }
  return A;
}

inline Matrix random_symmetric(Random& random, std::size_t n) {
  return symmetric(random_matrix(random, n, n));
}

// Element (i, j) times ratio^(i + j).
inline Matrix graded(Matrix A, double ratio) {
  for (std::size_t j = 0; j < A.n; ++j) {
    for (std::size_t i = 0; i < A.m; ++i) A(i, j) *= std::pow(ratio, static_cast<double>(i + j));
  }
  return A;
}
