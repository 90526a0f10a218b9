// SPDX-License-Identifier: MIT

#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <optional>
#include <utility>
#include <vector>

#include "reference/reflection_reference.h"

// The decompositions and the solves by them, one stated operation after the other, on plain column-major
// matrices.
namespace reference {

struct Matrix {
  std::size_t m = 0;
  std::size_t n = 0;
  std::vector<double> a;

  Matrix() = default;
  Matrix(std::size_t rows, std::size_t cols) : m(rows), n(cols), a(rows * cols, 0.0) {}
  Matrix(std::size_t rows, std::size_t cols, std::vector<double> by_column)
      : m(rows), n(cols), a(std::move(by_column)) {}

  double& operator()(std::size_t i, std::size_t j) { return a[j * m + i]; }
  const double& operator()(std::size_t i, std::size_t j) const { return a[j * m + i]; }
  double* column(std::size_t j) { return a.data() + j * m; }
  double* row(std::size_t i) { return a.data() + i; }
};

inline Matrix identity(std::size_t n) {
  Matrix result(n, n);
  for (std::size_t i = 0; i < n; ++i) result(i, i) = 1.0;
  return result;
}

inline Matrix diagonal(const std::vector<double>& entries) {
  Matrix result(entries.size(), entries.size());
  for (std::size_t i = 0; i < entries.size(); ++i) result(i, i) = entries[i];
  return result;
}

// m x n, with the elements inside both shapes kept and the others zero.
inline Matrix resized(const Matrix& old, std::size_t m, std::size_t n) {
  Matrix result(m, n);
  for (std::size_t j = 0; j < std::min(n, old.n); ++j) {
    for (std::size_t i = 0; i < std::min(m, old.m); ++i) result(i, j) = old(i, j);
  }
  return result;
}

// X(i, c) for i < k, all c, by the leading k x k triangle of R.
inline void back_substitute(const Matrix& R, std::size_t k, Matrix& X) {
  for (std::size_t c = 0; c < X.n; ++c) {
    for (std::size_t i = k; i-- > 0;) {
      double sum = 0.0;
      for (std::size_t l = i + 1; l < k; ++l) sum = sum + R(i, l) * X(l, c);
      X(i, c) = (X(i, c) - sum) / R(i, i);
    }
  }
}

inline void swap_rows(Matrix& A, std::size_t i, std::size_t j) {
  for (std::size_t c = 0; c < A.n; ++c) std::swap(A(i, c), A(j, c));
}

inline void swap_cols(Matrix& A, std::size_t i, std::size_t j) {
  for (std::size_t r = 0; r < A.m; ++r) std::swap(A(r, i), A(r, j));
}

inline void apply_to_columns(const Reflection& h, Matrix& W, std::size_t first, std::size_t end) {
  for (std::size_t c = first; c < end; ++c) h.apply(W.column(c), 1);
}

inline bool passes_full_rank_test(const std::vector<double>& diagonal_of_r) {
  double minabs = 1e20;
  double maxabs = 0.0;
  for (const double entry : diagonal_of_r) {
    const double a = std::fabs(entry);
    if (!(a > minabs)) minabs = a;
    if (!(maxabs > a)) maxabs = a;
  }
  if (1e-20 > minabs) return false;
  return !(maxabs / minabs > 1e10);
}

struct Qr {
  Matrix R;
  std::vector<Reflection> reflections;
  bool full_rank = false;

  explicit Qr(const Matrix& A) : R(A) {
    const std::size_t d = std::min(A.m, A.n);
    std::vector<double> on_diagonal;
    for (std::size_t j = 0; j < d; ++j) {
      if (j + 1 < A.m) {
        const int pivot = static_cast<int>(j);
        reflections.emplace_back(pivot, pivot + 1, static_cast<int>(A.m), R.column(j), 1);
        apply_to_columns(reflections.back(), R, j + 1, A.n);
      }
      on_diagonal.push_back(R(j, j));
    }
    full_rank = passes_full_rank_test(on_diagonal);
  }

  // Nothing where the solve fails.
  std::optional<Matrix> solve(const Matrix& B) const {
    if (R.m < R.n || !full_rank) return std::nullopt;
    Matrix W = B;
    for (const Reflection& h : reflections) apply_to_columns(h, W, 0, W.n);
    Matrix X = resized(W, R.n, B.n);
    back_substitute(R, R.n, X);
    return X;
  }
};

// How the pivot choice judges its downdated column lengths.  The defaults are the rule; others tell
// whether a test's data can see it.
struct DowndateRule {
  double fraction = 0.001;
  bool compares_with_longest = false;  // the longest at the last full computation, instead of h[previous]
};

struct RankRevealing {
  Matrix A;
  std::size_t rank = 0;
  std::vector<Reflection> left;
  std::vector<Reflection> right;
  std::vector<std::size_t> perm;
  // How often a step after the first one trusted its downdated lengths, and how often not.
  int n_trusted = 0;
  int n_recomputed = 0;

  RankRevealing(const Matrix& matrix, double tol, DowndateRule rule = {}) : A(matrix) {
    triangularize(rule);
    const std::size_t d = std::min(A.m, A.n);
    while (rank < d && !(tol > std::fabs(A(rank, rank)))) ++rank;
    if (rank < A.n) compress();
  }

  Matrix solve(const Matrix& B) const {
    Matrix X(A.n, B.n);
    if (rank == 0) return X;
    Matrix W = B;
    for (const Reflection& h : left) apply_to_columns(h, W, 0, W.n);
    for (std::size_t c = 0; c < B.n; ++c) {
      for (std::size_t i = 0; i < rank; ++i) X(i, c) = W(i, c);
    }
    back_substitute(A, rank, X);
    turn_back(X);
    return X;
  }

  // Z becomes the basis; it comes as n x (n - rank), with zeros or with what was in it before.
  void basis(Matrix& Z) const {
    for (std::size_t i = 0; i < A.n - rank; ++i) Z(rank + i, i) = 1.0;
    turn_back(Z);
  }

  Matrix null_space(const Matrix& before = {}) const {
    if (rank == A.n) return {};
    Matrix Z = resized(before, A.n, A.n - rank);
    basis(Z);
    return Z;
  }

 private:
  std::vector<double> lengths;  // squared
  double longest_at_last_computation = 0.0;

  std::size_t choose_pivot(std::size_t j, DowndateRule rule) {
    if (j > 0) {
      const double hmax = rule.compares_with_longest ? longest_at_last_computation : lengths[perm[j - 1]];
      std::size_t lmax = j;
      for (std::size_t l = j; l < A.n; ++l) {
        lengths[l] = lengths[l] - square(A(j - 1, l));
        if (lengths[l] > lengths[lmax]) lmax = l;
      }
      if ((hmax + rule.fraction * lengths[lmax]) - hmax > 0.0) {
        ++n_trusted;
        return lmax;
      }
      ++n_recomputed;
    }
    std::size_t lmax = j;
    for (std::size_t l = j; l < A.n; ++l) {
      lengths[l] = 0.0;
      for (std::size_t i = j; i < A.m; ++i) lengths[l] = lengths[l] + square(A(i, l));
      if (lengths[l] > lengths[lmax]) lmax = l;
    }
    longest_at_last_computation = lengths[lmax];
    return lmax;
  }

  void triangularize(DowndateRule rule) {
    lengths.assign(A.n, 0.0);
    for (std::size_t j = 0; j < std::min(A.m, A.n); ++j) {
      const std::size_t lmax = choose_pivot(j, rule);
      perm.push_back(lmax);
      if (lmax != j) {
        swap_cols(A, j, lmax);
        lengths[lmax] = lengths[j];
      }
      if (j + 1 < A.m) {
        const int pivot = static_cast<int>(j);
        left.emplace_back(pivot, pivot + 1, static_cast<int>(A.m), A.column(j), 1);
        apply_to_columns(left.back(), A, j + 1, A.n);
      }
    }
  }

  void compress() {
    const int stride = static_cast<int>(A.m);
    for (std::size_t i = rank; i-- > 0;) {
      right.emplace_back(static_cast<int>(i), static_cast<int>(rank), static_cast<int>(A.n), A.row(i),
                         stride);
      for (std::size_t r = 0; r < i; ++r) right.back().apply(A.row(r), stride);
    }
  }

  // The reflections from the right, that of row 0 first, and then the interchanges, last one first.
  void turn_back(Matrix& X) const {
    for (std::size_t i = right.size(); i-- > 0;) apply_to_columns(right[i], X, 0, X.n);
    for (std::size_t i = perm.size(); i-- > 0;) swap_rows(X, perm[i], i);
  }
};

// The determinant of a square matrix of order 2 or more.
inline double determinant(const Matrix& A) {
  const Qr qr(A);
  if (!qr.full_rank) return 0.0;
  double d = qr.R(A.n - 1, A.n - 1);
  for (std::size_t i = 0; i + 1 < A.n; ++i) d = d * (-qr.R(i, i));
  return d;
}

}  // namespace reference
