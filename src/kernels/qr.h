// SPDX-License-Identifier: MIT

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

// The columns of [A | B], where they are.
struct QrColumns {
  Index n;  // of A
  const double* a;
  Index lda;
  Index p;  // of B
  const double* b;
  Index ldb;

  [[gnu::always_inline]] const double* operator[](Index j) const {
    return j < n ? a + j * lda : b + (j - n) * ldb;
  }
};

inline constexpr Index kQrLanes = 4;     // of the widest set
inline constexpr Index kQrColumns = 40;  // side by side at once, in any set

// Doubles of scratch memory for n columns of m rows.
constexpr Index qr_scratch(Index m, Index n) {
  const Index columns = (n + kQrLanes - 1) / kQrLanes * kQrLanes;
  return (m + 8) * (columns < kQrColumns ? columns : kQrColumns) + 8;
}

// The QR decomposition and the solution by it, many columns side by side.
struct QrKernels {
  // Reduces [A | B] of m rows by reflections, and stores the result to w, which may be where A is if p is
  // 0.
  //
  // Each column j of A, but not one of the last row, gives a reflection of the rows from j on by `make` and
  // `reflection_scale`, and `reflect` applies it to all later columns (all of reflection.h; where `make`
  // says false, up and scale are 0.0).  On return w holds R on and above its diagonal, behind it Q' B, and
  // below the diagonal the ranges of the reflections, to which made[j].u points.
  void (*factor)(Index m, const QrColumns& columns, double* w, Index ldw, StoredReflection* made,
                 double* scratch);

  // X = R^-1 Q' B, for p columns of B with m rows each: applies the reflections 0 ... n_reflections-1, and
  // takes the first n rows of the results through `back_substitute` of triangular.h.  X may be B.
  void (*solve)(Index m, Index n_reflections, const StoredReflection* list, Index n, const double* r,
                Index ldr, Index p, const double* b, Index ldb, double* x, Index ldx, double* scratch);
};

}  // namespace tnla_kernels
