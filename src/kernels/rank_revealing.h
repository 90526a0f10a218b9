// SPDX-License-Identifier: MIT

#pragma once

#include "index.h"

// The rank-revealing decomposition Q A P = [R S; 0 e], and the turn [R S] K = [W 0] (Lawson and Hanson,
// Solving Least Squares Problems, chapter 14).
//
// Matrices are column-major.  Reflections are built and applied as reflection.h states, each to one column
// or row after the other.  Scratch needs no initialisation.
namespace tnla_kernels {

// The downdated column lengths are trusted while this fraction of the longest still shows against the
// reference length.
inline constexpr double kLengthFraction = 0.001;

// Reflections in the order in which they were made.  Number i has the pivot entry up[i] and the range
// u + i * ld, and a scale of 0 if it is the identity.
struct Reflections {
  double* u;
  Index ld;
  double* up;
  double* scale;
};

struct RankRevealingKernels {
  // a, m x n, becomes r, m x n, whose upper triangle is [R S] and below whose diagonal are the ranges of
  // the reflections: left.u = r + 1 and left.ld = m + 1.  For j = 0 ... min(m, n) - 1:
  //
  //     pivot choice: the longest of the columns j ... n-1, by the lengths h; the first of equal ones.
  //     perm[j] = that column; it is exchanged with column j, and h[perm[j]] = h[j].
  //     j + 1 < m: the reflection that zeroes rows j+1 ... m-1 of column j is built, and applied to the
  //     columns j+1 ... n-1.
  //
  // Pivot choice at j > 0: h[l] -= r(j-1, l)^2 for l = j ... n-1.  That stands if
  // (h_ref + kLengthFraction * h[longest]) - h_ref > 0, where h_ref is h[perm[j-1]] before the subtraction,
  // that is, what the interchange of step j-1 left there, and not, as in the book, the largest length at
  // the last full computation.  Otherwise, and at j = 0: h[l] = sum of r(i, l)^2 over i = j ... m-1, from
  // +0.0.
  //
  // Scratch: columns_scratch(m, n).
  void (*triangularize)(Index m, Index n, const double* a, double* r, const Reflections& left, int* perm,
                        double* scratch);

  // For i = k-1 ... 0: the reflection that zeroes columns k ... n-1 of row i of r, with the pivot r(i, i),
  // is built, and applied to the rows 0 ... i-1.  Number i is that of row i.  The ranges, n - k entries
  // each, go to right.u, which may be where the columns k ... n-1 of r are: their content is lost.
  //
  // Scratch: columns_scratch(n - k, k).
  void (*compress)(Index k, Index m, Index n, double* r, const Reflections& right, double* scratch);

  // x = the first k rows of Q b, for p columns: b is m x p, x has the leading dimension ldx.  The left
  // reflections from number k on are not applied: they leave these rows as they are.
  //
  // Scratch: columns_scratch(m, min(p, kTogether)).
  void (*apply_left)(Index k, Index m, Index p, const Reflections& left, const double* b, double* x,
                     Index ldx, double* scratch);

  // The right reflections 0 ... k-1, in that order, on the p columns of x, n x p.
  //
  // Scratch: columns_scratch(n, min(p, kTogether)).
  void (*turn)(Index k, Index n, Index p, const Reflections& right, double* x, double* scratch);
};

// Scratch, in doubles, for columns side by side in vectors of up to kWidest.
inline constexpr Index kWidest = 8;
inline constexpr Index kTogether = 4 * kWidest;  // right sides go through in groups of no more than these

constexpr Index columns_scratch(Index n_rows, Index n_cols) { return (n_rows + 12) * (n_cols + kWidest); }

}  // namespace tnla_kernels
