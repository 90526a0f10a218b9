// SPDX-License-Identifier: MIT

#include "reductions.h"

#include <cmath>

namespace tnla_kernels {

double dot(Index n, const double* x, const double* y, Index incr_y) {
  double sum = 0.0;
  for (Index i = 0; i < n; ++i) sum += x[i] * y[i * incr_y];
  return sum;
}

double largest_magnitude(Index n, const double* x) {
  double largest = x[0];
  for (Index i = 1; i < n; ++i) {
    const double magnitude = std::fabs(x[i]);
    if (!(largest > magnitude)) largest = magnitude;
  }
  return largest;
}

}  // namespace tnla_kernels
