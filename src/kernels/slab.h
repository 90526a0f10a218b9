#pragma once

#include "simd.h"

// A slab: kLanes columns side by side, row after row, so that one vector holds a row of it.
//
//     columns  0 1 2 3 | 4 5 6 7           slab 0: a00 a01 a02 a03 a10 a11 ...
//              slab 0  | slab 1            slab 1, `ld` doubles further: a04 a05 a06 a07 a14 ...
//
// What is done to one column after the other, each with operations of its own, is done to the columns of a
// slab at once.
namespace tnla_kernels::TNLA_SET {

inline Index slabs_for(Index n_cols) { return (n_cols + kLanes - 1) / kLanes; }

// One row of one slab.
inline double* slab_row(double* slabs, Index row) { return slabs + row * kLanes; }
inline const double* slab_row(const double* slabs, Index row) { return slabs + row * kLanes; }

// n_cols columns to slabs; column(c) is where column c begins.  A last slab that is not full repeats the
// last column, so that no lane holds what none of the columns does.
template <class Column>
inline void fill_slabs(Index n_rows, Index n_cols, Column column, double* slabs, Index ld) {
  for (Index c = 0; c < n_cols; c += kLanes) {
    const double* from[kLanes];
    for (Index l = 0; l < kLanes; ++l) from[l] = column(smaller(c + l, n_cols - 1));
    double* __restrict const slab = slabs + c / kLanes * ld;
    for (Index i = 0; i < n_rows; ++i) {
      for (Index l = 0; l < kLanes; ++l) slab[i * kLanes + l] = from[l][i];
    }
  }
}

// The first rows of a slab to n_cols <= kLanes columns of a.
inline void empty_slab(Index n_rows, Index n_cols, const double* __restrict slab, double* a, Index lda) {
  for (Index l = 0; l < n_cols; ++l) {
    double* __restrict const column = a + l * lda;
    for (Index i = 0; i < n_rows; ++i) column[i] = slab[i * kLanes + l];
  }
}

}  // namespace tnla_kernels::TNLA_SET
