// SPDX-License-Identifier: MIT

#pragma once

#include <cmath>
#include <cstddef>
#include <vector>

#include "accuracy/wide.h"
#include "support/decomposition_types.h"
#include "support/values.h"

// Test matrices by their singular values, after LAPACK Working Note 41 (Installing and testing LAPACK) and
// Working Note 9 (A test matrix generation suite).

// How n singular values fall from 1 to 1 / condition.
enum class Spread { one_large, one_small, geometric, arithmetic, random };

inline std::vector<long double> singular_values(Random& random, std::size_t n, Spread spread,
                                                long double condition) {
  std::vector<long double> values(n, 1.0L);
  for (std::size_t i = 0; i < n; ++i) {
    const long double part = n == 1 ? 0.0L : static_cast<long double>(i) / static_cast<long double>(n - 1);
    switch (spread) {
      case Spread::one_large:
        values[i] = i == 0 ? 1.0L : 1.0L / condition;
        break;
      case Spread::one_small:
        values[i] = i + 1 < n || n == 1 ? 1.0L : 1.0L / condition;
        break;
      case Spread::geometric:
        values[i] = std::pow(condition, -part);
        break;
      case Spread::arithmetic:
        values[i] = 1.0L - part * (1.0L - 1.0L / condition);
        break;
      case Spread::random:
        values[i] = std::pow(condition, (random.uniform() - 1.0) / 2.0L);
        break;
    }
  }
  return values;
}

// The columns of A (its rows, if `from_right`) times a random orthogonal matrix: one reflection for each
// length from 2 to the whole (Stewart, The efficient generation of random orthogonal matrices, 1980).
inline void turn(Random& random, WideMatrix& A, bool from_right) {
  const std::size_t length = from_right ? A.n : A.m;
  const std::size_t n_vectors = from_right ? A.m : A.n;
  const std::size_t step = from_right ? A.m : 1;
  const std::size_t stride = from_right ? 1 : A.m;
  std::vector<long double> u(length);
  for (std::size_t first = length; first-- > 0;) {
    long double square = 0.0L;
    for (std::size_t i = first; i < length; ++i) {
      u[i] = random.uniform() + random.uniform() + random.uniform();
      square += u[i] * u[i];
    }
    for (std::size_t k = 0; k < n_vectors; ++k) {
      long double* const v = A.a.data() + k * stride;
      long double sum = 0.0L;
      for (std::size_t i = first; i < length; ++i) sum += u[i] * v[i * step];
      sum = 2.0L * sum / square;
      for (std::size_t i = first; i < length; ++i) v[i * step] -= sum * u[i];
    }
  }
}

inline WideMatrix wide_diagonal(std::size_t m, std::size_t n, const std::vector<long double>& values) {
  WideMatrix D(m, n);
  for (std::size_t i = 0; i < values.size(); ++i) D(i, i) = values[i];
  return D;
}

// m x n, with these singular values; those that are not given are zero.
inline Matrix of_singular_values(Random& random, std::size_t m, std::size_t n,
                                 const std::vector<long double>& values) {
  WideMatrix A = wide_diagonal(m, n, values);
  turn(random, A, false);
  turn(random, A, true);
  return rounded(A);
}

inline Matrix of_condition(Random& random, std::size_t m, std::size_t n, Spread spread,
                           long double condition) {
  return of_singular_values(random, m, n, singular_values(random, std::min(m, n), spread, condition));
}

// Symmetric, with these eigenvalues.
inline Matrix of_eigenvalues(Random& random, const std::vector<long double>& values) {
  WideMatrix A = wide_diagonal(values.size(), values.size(), values);
  Random again = random;
  turn(random, A, false);
  turn(again, A, true);
  Matrix result = rounded(A);
  for (std::size_t j = 0; j < result.n; ++j) {
    for (std::size_t i = j + 1; i < result.n; ++i) result(i, j) = result(j, i);
  }
  return result;
}

inline Matrix without_column(Matrix A, std::size_t j) {
  std::fill_n(A.column(j), A.m, 0.0);
  return A;
}

// A power of two that brings x into [low, 2 low).
inline double factor_to(double x, double low) {
  return std::ldexp(1.0, static_cast<int>(std::ceil(std::log2(low / x))));
}
