// SPDX-License-Identifier: MIT

#pragma once

#include <cstddef>

#include "tnla_reflections.h"

// Householder reduction without objects for the reflections, for those who want the solution or the
// diagonal of R alone.

// The full-rank verdict on the diagonal r[i * (ldr + 1)], i < d (see TnLaTQRDecompo).
bool tnla_has_full_rank(const double* r, std::size_t ldr, std::size_t d);

// A X = B in the sense of least squares.
//
// A is m x n with m >= n and without gaps between its columns, B m x p with the leading dimension
// ldb >= m.  Both are read by the constructor alone, so that solve_into may write where they were.
// Computes what TnLaTQRDecompo does.  std::bad_alloc, which the constructor alone may throw, leaves nothing
// behind.
class TnLaQrSystem {
 public:
  TnLaQrSystem(std::size_t m, std::size_t n, const double* a, std::size_t p, const double* b,
               std::size_t ldb);

  bool full_rank() const { return full_rank_; }

  // X, n x p without gaps, for a system of full rank.
  void solve_into(double* x);

 private:
  std::size_t n_;
  std::size_t p_;
  std::size_t ld_;
  TnLaQrScratch scratch_;
  double* reduced_;  // R and Q' B, column by column
  bool full_rank_;
};

// The diagonal of R for a square matrix of order n; false if it is not of full rank.
bool tnla_qr_diagonal(std::size_t n, const double* a, double* diagonal);
