// SPDX-License-Identifier: MIT

#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "support/bits.h"
#include "support/decomposition_types.h"
#include "support/values.h"
#include "tarntnla.h"

// A law is an equation between results of the library that holds to the last bit, because both sides are
// the same sequence of roundings.  It needs no expected value, and so can be tested on any number of
// problems.

// Calls check(random) for so many seeds.
template <class Check>
void for_seeds(std::uint64_t n, const Check& check) {
  for (std::uint64_t seed = 1; seed <= n; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    Random random(seed);
    check(random);
    if (testing::Test::HasFailure()) return;  // the first seed tells enough
  }
}

// Low ... high.
inline std::size_t between(Random& random, std::size_t low, std::size_t high) {
  return low + random.below(high - low + 1);
}

// A dimension: mostly a small one, where a vector of the processor ends in the middle.
inline std::size_t dimension(Random& random, std::size_t least = 1) {
  return random.below(8) == 0 ? between(random, least, 70) : between(random, least, 20);
}

// 2^-20 ... 2^20, of either sign.
inline double power_of_two(Random& random) {
  return std::ldexp(random.below(2) == 0 ? 1.0 : -1.0, static_cast<int>(random.below(41)) - 20);
}

inline Matrix with_row_times(Matrix A, std::size_t i, double factor) {
  for (std::size_t j = 0; j < A.n; ++j) A(i, j) *= factor;
  return A;
}

inline Matrix with_column_times(Matrix A, std::size_t j, double factor) {
  for (std::size_t i = 0; i < A.m; ++i) A(i, j) *= factor;
  return A;
}

inline Matrix column_of(const Matrix& A, std::size_t j) {
  return {A.m, 1, std::vector<double>(A.a.data() + j * A.m, A.a.data() + (j + 1) * A.m)};
}

// 0 ... n-1 in any order.
inline std::vector<std::size_t> permutation(Random& random, std::size_t n) {
  std::vector<std::size_t> p(n);
  for (std::size_t i = 0; i < n; ++i) p[i] = i;
  for (std::size_t i = n; i > 1; --i) std::swap(p[i - 1], p[random.below(i)]);
  return p;
}

// Column j is column p[j] of A.
inline Matrix with_columns(const Matrix& A, const std::vector<std::size_t>& p) {
  Matrix result(A.m, p.size());
  for (std::size_t j = 0; j < p.size(); ++j) std::copy_n(A.a.data() + p[j] * A.m, A.m, result.column(j));
  return result;
}

inline Matrix with_rows(const Matrix& A, const std::vector<std::size_t>& p) {
  return transposed(with_columns(transposed(A), p));
}

// `count` rows of zeros before row i.
inline Matrix with_zero_rows(const Matrix& A, std::size_t i, std::size_t count) {
  Matrix result(A.m + count, A.n);
  for (std::size_t j = 0; j < A.n; ++j) {
    for (std::size_t k = 0; k < A.m; ++k) result(k < i ? k : k + count, j) = A(k, j);
  }
  return result;
}

inline Matrix with_zero_columns(const Matrix& A, std::size_t j, std::size_t count) {
  return transposed(with_zero_rows(transposed(A), j, count));
}
