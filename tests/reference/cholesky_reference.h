// SPDX-License-Identifier: MIT

#pragma once

#include <cmath>
#include <cstddef>
#include <vector>

#include "reference/decomposition_reference.h"

// The Cholesky factor and the solve that falls back to the rank-revealing one, one stated operation after
// the other.
namespace reference {

struct Cholesky {
  bool complete = false;  // no pivot has failed
  Matrix L;               // below its diagonal
  std::vector<double> diagonal;

  // From the upper triangle of A.
  explicit Cholesky(const Matrix& A) : L(A.n, A.n), diagonal(A.n, 0.0) {
    for (std::size_t j = 0; j < A.n; ++j) {
      for (std::size_t i = j; i < A.n; ++i) {
        double s = A(j, i);
        for (std::size_t k = j; k-- > 0;) s = s - L(i, k) * L(j, k);
        if (i == j && s < 1e-10) return;
        if (i == j) {
          diagonal[j] = std::sqrt(s);
        } else {
          L(i, j) = s / diagonal[j];
        }
      }
    }
    complete = true;
  }

  std::vector<double> solve(const std::vector<double>& b) const {
    std::vector<double> x(L.n);
    for (std::size_t i = 0; i < L.n; ++i) {
      double s = b[i];
      for (std::size_t k = i; k-- > 0;) s = s - L(i, k) * x[k];
      x[i] = s / diagonal[i];
    }
    for (std::size_t i = L.n; i-- > 0;) {
      double s = x[i];
      for (std::size_t k = i + 1; k < L.n; ++k) s = s - L(k, i) * x[k];
      x[i] = s / diagonal[i];
    }
    return x;
  }
};

// The solution by the factor, or by the whole matrix where a pivot fails.
inline std::vector<double> cholesky_solution(const Matrix& A, const std::vector<double>& b) {
  const Cholesky factor(A);
  if (factor.complete) return factor.solve(b);
  return RankRevealing(A, 1e-10).solve({A.n, 1, b}).a;
}

}  // namespace reference
