// SPDX-License-Identifier: MIT

#pragma once

#include "slab_reflection.h"

namespace tnla_kernels::TNLA_SET {

// X = R^-1 X as in triangular.h, for the columns of V slabs.
template <Index V>
inline void substitute_back(Index n, const double* r, Index ldr, double* x, Index ld) {
  for (Index i = n - 1; i >= 0; --i) {
    Group<V> sum{};
    for (Index l = i + 1; l < n; ++l) {
      const Lanes entry = splat(r[l * ldr + i]);
      for (Index v = 0; v < V; ++v) sum.slab[v] += entry * load(slab_row(x + v * ld, l));
    }
    const Lanes diagonal = splat(r[i * ldr + i]);
    for (Index v = 0; v < V; ++v) {
      double* const p = slab_row(x + v * ld, i);
      store(p, (load(p) - sum.slab[v]) / diagonal);
    }
  }
}

}  // namespace tnla_kernels::TNLA_SET
