// SPDX-License-Identifier: MIT

#include "triangular.h"

#include "simd.h"

namespace tnla_kernels::TNLA_SET {

namespace {

// P columns whose sums run side by side, each a chain of its own.
template <Index P>
void substitute_columns(Index n, const double* r, Index ldr, double* x, Index ldx) {
  for (Index i = n - 1; i >= 0; --i) {
    const double* const diagonal = r + i * ldr + i;
    double sum[P] = {};
    const double* entry = diagonal;
    for (Index l = i + 1; l < n; ++l) {
      entry += ldr;
      for (Index c = 0; c < P; ++c) sum[c] += *entry * x[c * ldx + l];
    }
    for (Index c = 0; c < P; ++c) x[c * ldx + i] = (x[c * ldx + i] - sum[c]) / *diagonal;
  }
}

void back_substitute(Index n, const double* r, Index ldr, double* x, Index ldx, Index n_rhs) {
  Index c = 0;
  for (; c + 4 <= n_rhs; c += 4) substitute_columns<4>(n, r, ldr, x + c * ldx, ldx);
  for (; c + 2 <= n_rhs; c += 2) substitute_columns<2>(n, r, ldr, x + c * ldx, ldx);
  for (; c < n_rhs; ++c) substitute_columns<1>(n, r, ldr, x + c * ldx, ldx);
}

}  // namespace

TriangularKernels triangular_kernels() { return {back_substitute}; }

}  // namespace tnla_kernels::TNLA_SET
