#pragma once

#include "index.h"

namespace tnla_kernels {

// A reflection (see reflection.h) of the rows k ... m-1 with the pivot k, as a factorisation keeps it: its
// number in a list is k.  A scale of 0 is the identity.
struct StoredReflection {
  const double* u;  // rows k+1 ... m-1
  double up;
  double scale;
};

// Doubles of scratch memory for an m x n matrix, or for n vectors of m elements.
constexpr Index qr_scratch(Index m, Index n) {
  constexpr Index most = 40;  // columns at once
  const Index columns = (n + 3) / 4 * 4;
  return (m + 8) * (columns < most ? columns : most) + 8;
}

// The QR decomposition and its use, many columns side by side.
struct QrKernels {
  // Reduces the columns j = 0 ... n_pivots-1, but not the last row's, of the m x n matrix a: each column
  // gives a reflection with the pivot j, by `make` and `reflection_scale`, and that is applied to all later
  // columns by `reflect` (all of reflection.h).  Where `make` says false, up is 0.0 and the scale is that
  // of the column's pivot and 0.0.
  //
  // On return a holds R on and above its diagonal, and the ranges of the reflections below it, where
  // made[j].u points.
  void (*factor)(Index m, Index n_pivots, Index n, double* a, Index lda, StoredReflection* made,
                 double* scratch);

  // Applies the reflections 0 ... n_reflections-1 to n_vec vectors w of m elements, and stores the first
  // n_rows of each result to x, which may be w.
  void (*apply)(Index m, Index n_reflections, const StoredReflection* list, Index n_vec, const double* w,
                Index ldw, Index n_rows, double* x, Index ldx, double* scratch);
};

}  // namespace tnla_kernels
