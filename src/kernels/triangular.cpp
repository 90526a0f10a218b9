#include "triangular.h"

#include "simd.h"

namespace tnla_kernels::TNLA_SET {

namespace {

void back_substitute(Index n, const double* r, Index ldr, double* x, Index ldx, Index n_rhs) {
  for (Index c = 0; c < n_rhs; ++c) {
    double* const column = x + c * ldx;
    for (Index i = n - 1; i >= 0; --i) {
      double sum = 0.0;
      for (Index l = i + 1; l < n; ++l) sum += r[l * ldr + i] * column[l];
      column[i] = (column[i] - sum) / r[i * ldr + i];
    }
  }
}

}  // namespace

TriangularKernels triangular_kernels() { return {back_substitute}; }

}  // namespace tnla_kernels::TNLA_SET
