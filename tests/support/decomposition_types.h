// SPDX-License-Identifier: MIT

#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <type_traits>
#include <utility>

#include "reference/decomposition_reference.h"
#include "support/bits.h"
#include "support/values.h"
#include "tnla_matrix_vector_i.h"

// Between the plain matrices of the reference and the matrix types of the library.

using reference::Matrix;

template <std::size_t N>
using Small = TnLaTSmallMat<N, N, double>;

// M from a plain matrix, which has the shape of M if M is small.
template <class M>
M as(const Matrix& from) {
  if constexpr (std::is_same_v<M, TnLaDblMat>) {
    return TnLaDblMat(from.a.data(), from.m, from.n);
  } else {
    M result;
    for (std::size_t j = 0; j < from.n; ++j) {
      for (std::size_t i = 0; i < from.m; ++i) result(i, j) = from(i, j);
    }
    return result;
  }
}

inline TnLaDblMat dense(const Matrix& from) { return as<TnLaDblMat>(from); }

template <class M>
Matrix plain(const M& from) {
  Matrix result(from.n_rows(), from.n_cols());
  for (std::size_t j = 0; j < result.n; ++j) {
    for (std::size_t i = 0; i < result.m; ++i) result(i, j) = from(i, j);
  }
  return result;
}

inline testing::AssertionResult is_same_matrix(const char* actual_text, const char*, const Matrix& actual,
                                               const Matrix& expected) {
  if (actual.m != expected.m || actual.n != expected.n) {
    return testing::AssertionFailure() << actual_text << " is " << actual.m << " x " << actual.n
                                       << ", expected " << expected.m << " x " << expected.n;
  }
  return are_same("", actual_text, "", actual.a.size(), actual.a.data(), expected.a.data());
}

// Shape and bits of two matrices, of the library or plain ones.
#define EXPECT_SAME_MATRIX(actual, expected) \
  EXPECT_PRED_FORMAT2(is_same_matrix, plain(actual), plain(expected))

inline Matrix plain(const Matrix& from) { return from; }

inline Matrix random_matrix(Random& random, std::size_t m, std::size_t n) {
  return {m, n, random.vector(m * n)};
}

inline Matrix any_matrix(Random& random, std::size_t m, std::size_t n) {
  return {m, n, random.any_vector(m * n)};
}

// The sum starts from 0.0, with the inner index ascending.
inline Matrix product(const Matrix& A, const Matrix& B) {
  Matrix C(A.m, B.n);
  for (std::size_t j = 0; j < B.n; ++j) {
    for (std::size_t i = 0; i < A.m; ++i) {
      for (std::size_t l = 0; l < A.n; ++l) C(i, j) += A(i, l) * B(l, j);
    }
  }
  return C;
}

inline Matrix transposed(const Matrix& A) {
  Matrix result(A.n, A.m);
  for (std::size_t j = 0; j < A.n; ++j) {
    for (std::size_t i = 0; i < A.m; ++i) result(j, i) = A(i, j);
  }
  return result;
}

inline Matrix scaled(Matrix A, double factor) {
  for (double& x : A.a) x *= factor;
  return A;
}

// The largest magnitude of A - B, where both have one shape; NaN if one of them holds a NaN.
inline double largest_difference(const Matrix& A, const Matrix& B) {
  double largest = 0.0;
  for (std::size_t k = 0; k < A.a.size(); ++k) {
    const double difference = std::fabs(A.a[k] - B.a[k]);
    if (!(largest >= difference)) largest = difference;
  }
  return largest;
}

// m x n of the given rank but for rounding errors.
inline Matrix random_of_rank(Random& random, std::size_t m, std::size_t n, std::size_t rank) {
  const Matrix left = random_matrix(random, m, rank);
  return product(left, random_matrix(random, rank, n));
}

// Calls f(std::integral_constant<std::size_t, N>()) for N = 1 ... 12, the sizes of the small types.
template <class F>
void for_all_small_sizes(F f) {
  [&f]<std::size_t... I>(std::index_sequence<I...>) {
    (f(std::integral_constant<std::size_t, I + 1>()), ...);
  }
  (std::make_index_sequence<12>());
}
