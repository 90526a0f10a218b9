// SPDX-License-Identifier: MIT

#pragma once

#include "simd.h"

namespace tnla_kernels::TNLA_SET {

// A square tile, kLanes vectors, becomes its transposed.
template <class Vector>
inline void transpose_tile(Vector (&v)[2]) {
  const Vector first = v[0];
  v[0] = __builtin_shufflevector(first, v[1], 0, 2);
  v[1] = __builtin_shufflevector(first, v[1], 1, 3);
}

template <class Vector>
inline void transpose_tile(Vector (&v)[4]) {
  const Vector even01 = __builtin_shufflevector(v[0], v[1], 0, 4, 2, 6);
  const Vector odd01 = __builtin_shufflevector(v[0], v[1], 1, 5, 3, 7);
  const Vector even23 = __builtin_shufflevector(v[2], v[3], 0, 4, 2, 6);
  const Vector odd23 = __builtin_shufflevector(v[2], v[3], 1, 5, 3, 7);
  v[0] = __builtin_shufflevector(even01, even23, 0, 1, 4, 5);
  v[1] = __builtin_shufflevector(odd01, odd23, 0, 1, 4, 5);
  v[2] = __builtin_shufflevector(even01, even23, 2, 3, 6, 7);
  v[3] = __builtin_shufflevector(odd01, odd23, 2, 3, 6, 7);
}

// to(j, i) = from(i, j) for i < m and j < n, both column-major.
[[gnu::noinline]] inline void transpose(Index m, Index n, const double* from, Index ld_from, double* to,
                                        Index ld_to) {
  const Index full_m = m - m % kLanes;
  const Index full_n = n - n % kLanes;
  for (Index j = 0; j < full_n; j += kLanes) {
    for (Index i = 0; i < full_m; i += kLanes) {
      Lanes tile[kLanes];
      for (Index l = 0; l < kLanes; ++l) tile[l] = load(from + (j + l) * ld_from + i);
      transpose_tile(tile);
      for (Index l = 0; l < kLanes; ++l) store(to + (i + l) * ld_to + j, tile[l]);
    }
  }
  for (Index j = 0; j < n; ++j) {
    for (Index i = j < full_n ? full_m : 0; i < m; ++i) to[i * ld_to + j] = from[j * ld_from + i];
  }
}

}  // namespace tnla_kernels::TNLA_SET
