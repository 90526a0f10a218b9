// SPDX-License-Identifier: MIT

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

// One lane of a slab, which begins at `lane`, to a column.
inline void empty_lane(Index n_rows, const double* __restrict lane, double* __restrict column) {
  for (Index i = 0; i < n_rows; ++i) column[i] = lane[i * kLanes];
}

// Where column c of the slabs begins.
inline double* slab_lane(double* slabs, Index ld, Index c) { return slabs + c / kLanes * ld + c % kLanes; }

}  // namespace tnla_kernels::TNLA_SET
