// SPDX-License-Identifier: MIT

#pragma once

#include "index.h"

// The inner loops of least squares with a band: rows that are folded into a triangle, equations from which
// unknown after unknown is eliminated, the substitution at the end.
//
// They work on private copies whose rows are contiguous, `stride` apart and padded with zeros up to it.  A
// stride is a multiple of kBandPadding.  Reflections and their order of operations are those of
// reflection.h, with u the range of a column.
namespace tnla_kernels {

inline constexpr Index kBandPadding = 4;  // as many as the longest vector of a kernel set has lanes
inline constexpr Index kBandExtra = 5;    // rows behind those of a fold, entries behind a column of theirs

static inline Index padded_band(Index n) { return (n + kBandPadding - 1) / kBandPadding * kBandPadding; }

struct BandKernels {
  // Band storage in a column-major matrix, bandwidth coefficients and n_rhs right-hand sides a row, to
  // rows. The coefficients move `shift` columns down; what that leaves free is zero, as is the padding.
  void (*gather)(Index n_rows, Index shift, Index bandwidth, Index n_rhs, const double* matrix, Index ld,
                 double* rows, Index stride);

  // And back, n_cols columns as they are, but with +0.0 below the diagonal of the first n_zeroed ones.
  void (*scatter)(Index n_rows, Index n_cols, Index n_zeroed, const double* rows, Index stride,
                  double* matrix, Index ld);

  // Folds rows n_old ... n_rows-1 into the triangle that the rows before them are, bandwidth >= 1 columns
  // wide: for i = 0, 1, ... bandwidth-1, up to n_rows-2, the reflection of the rows from i on that zeroes
  // column i below row i.
  //
  // It gives what reflections of that full length give, without touching the zeros of the old triangle.
  // Where that is not so, which the rows themselves tell, the result is false and the rows hold nothing of
  // use.  There is room for kBandExtra rows more, and `scratch` is 2 * (n_rows + kBandExtra) long.
  bool (*fold)(Index n_old, Index n_rows, Index bandwidth, double* rows, Index stride, double* scratch);

  // Applies a reflection with a contiguous u to n_cols contiguous columns w[0 ... n], `stride` apart,
  // several side by side.
  void (*reflect_columns)(double up, const double* u, Index n, double scale, double* w, Index stride,
                          Index n_cols);

  // The reflection of a pivot row and n >= 1 rows below it that zeroes their column, applied to the whole
  // stride.  `u` is n long.
  void (*eliminate)(Index column, Index n, double* pivot, double* rows, Index stride, double* u);

  // For i = n-1 ... 0 and every right-hand side k < n_rhs:
  //
  //     band = sum over j = 1 ... bandwidth-1 of x(i+j, k) * row(i, j)
  //     coupled = sum over c < n_coupled of x_coupled(c, k) * coupling(i, c)
  //     x(i, k) = ((row(i, bandwidth+k) - band) - coupled) / row(i, 0)
  //
  // with sums from +0.0 on.  Ends before the first row whose diagonal element, row(i, 0), is smaller in
  // magnitude than `smallest`; the result is how many rows are left then.  Rows of x are x_stride apart,
  // those of the coupling n_coupled.  A row holds the diagonal and n_rhs, padded, behind the band.
  Index (*substitute)(Index n, Index bandwidth, Index n_rhs, double smallest, const double* rows,
                      Index stride, Index n_coupled, const double* coupling, const double* x_coupled,
                      double* x, Index x_stride);
};

}  // namespace tnla_kernels
