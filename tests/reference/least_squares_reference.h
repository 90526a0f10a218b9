// SPDX-License-Identifier: MIT

#pragma once

#include <cmath>
#include <cstddef>
#include <limits>
#include <vector>

#include "reference/decomposition_reference.h"

// Dense least squares by Givens rotations in long double, with what a bound on somebody else's solution
// needs.  It shares no step with the library, and on most machines has eleven bits more.
namespace reference {

struct WideMatrix {
  std::size_t m;
  std::size_t n;
  std::vector<long double> a;

  WideMatrix(std::size_t rows, std::size_t cols) : m(rows), n(cols), a(rows * cols) {}
  explicit WideMatrix(const Matrix& A) : m(A.m), n(A.n), a(A.a.begin(), A.a.end()) {}

  long double& operator()(std::size_t i, std::size_t j) { return a[j * m + i]; }
  long double operator()(std::size_t i, std::size_t j) const { return a[j * m + i]; }

  // The Euclidean length of rows begin ... end-1 of column j.
  long double length(std::size_t j, std::size_t begin, std::size_t end) const {
    long double sum = 0.0L;
    for (std::size_t i = begin; i < end; ++i) sum += (*this)(i, j) * (*this)(i, j);
    return std::sqrt(sum);
  }

  // The Frobenius norm.
  long double norm() const {
    long double sum = 0.0L;
    for (const long double x : a) sum += x * x;
    return std::sqrt(sum);
  }
};

// Solves A x = B, where A has full rank and at least as many rows as columns.
class LeastSquares {
 public:
  LeastSquares(const Matrix& A, const Matrix& B) : norm_(WideMatrix(A).norm()), R_(A), B_(B) {
    for (std::size_t j = 0; j < R_.n; ++j) {
      for (std::size_t i = j + 1; i < R_.m; ++i) rotate(j, i);
    }
  }

  WideMatrix solution() const { return solve(B_); }

  // The length of b - A x for right-hand side k.
  long double residual(std::size_t k) const { return B_.length(k, R_.n, R_.m); }

  long double norm() const { return norm_; }  // of A
  long double norm_of_pseudo_inverse() const {
    WideMatrix I(R_.n, R_.n);
    for (std::size_t i = 0; i < R_.n; ++i) I(i, i) = 1.0L;
    return solve(I).norm();
  }

  // x solves a system that differs from A and B by this part of their norms at the most.  A rotation does
  // less than 9 roundings to a vector (Higham, Accuracy and Stability of Numerical Algorithms, lemma
  // 19.8), the substitution n.
  long double backward_error() const {
    constexpr long double unit = std::numeric_limits<long double>::epsilon() / 2;
    return (9.0L * static_cast<long double>(n_rotations_) + static_cast<long double>(R_.n)) * unit;
  }

 private:
  // Zeroes R(i, j) by R(j, j).
  void rotate(std::size_t j, std::size_t i) {
    if (R_(i, j) == 0.0L) return;
    const long double r = std::hypot(R_(j, j), R_(i, j));
    const long double c = R_(j, j) / r;
    const long double s = R_(i, j) / r;
    for (WideMatrix* const M : {&R_, &B_}) {
      for (std::size_t k = 0; k < M->n; ++k) {
        const long double upper = (*M)(j, k);
        const long double lower = (*M)(i, k);
        (*M)(j, k) = c * upper + s * lower;
        (*M)(i, k) = c * lower - s * upper;
      }
    }
    R_(i, j) = 0.0L;
    ++n_rotations_;
  }

  WideMatrix solve(const WideMatrix& rhs) const {
    WideMatrix x(R_.n, rhs.n);
    for (std::size_t k = 0; k < rhs.n; ++k) {
      for (std::size_t i = R_.n; i-- > 0;) {
        long double rest = rhs(i, k);
        for (std::size_t j = i + 1; j < R_.n; ++j) rest -= R_(i, j) * x(j, k);
        x(i, k) = rest / R_(i, i);
      }
    }
    return x;
  }

  long double norm_;
  WideMatrix R_;
  WideMatrix B_;
  std::size_t n_rotations_ = 0;
};

}  // namespace reference
