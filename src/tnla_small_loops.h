// SPDX-License-Identifier: MIT

#pragma once

#include "kernels/kernel_set.h"

// The loops of the small types, whose length is known when they are compiled.
namespace tnla_small {

using tnla_kernels::Index;

// Up to so many elements the loop is cheaper than a call of the kernel: sums of 12 elements, repeated,
// take 2 ns against 4; but of 36 elements 7 ns against 3.6.
inline constexpr Index kInline = 16;

// out[i] = element(i).  The results wait in registers, since out may be what element reads.
template <Index n, class Element>
inline void each(double* out, const Element& element) {
  double result[n];
  for (Index i = 0; i < n; ++i) result[i] = element(i);
  for (Index i = 0; i < n; ++i) out[i] = result[i];
}

template <Index n>
void add(const double* x, const double* y, double* out) {
  if constexpr (n <= kInline) {
    each<n>(out, [=](Index i) { return x[i] + y[i]; });
  } else {
    tnla_kernels::best.elementwise.add(n, x, y, out);
  }
}

template <Index n>
void subtract(const double* x, const double* y, double* out) {
  if constexpr (n <= kInline) {
    each<n>(out, [=](Index i) { return x[i] - y[i]; });
  } else {
    tnla_kernels::best.elementwise.subtract(n, x, y, out);
  }
}

template <Index n>
void scale(const double* x, double s, double* out) {
  if constexpr (n <= kInline) {
    each<n>(out, [=](Index i) { return x[i] * s; });
  } else {
    tnla_kernels::best.elementwise.scale(n, x, s, out);
  }
}

// y = M x for a column-major n x n matrix.  Never by a call: repeated for 12 x 12, 13 ns against 20.
template <Index n>
void multiply(const double* m, const double* x, double* y) {
  double sum[n] = {};
  for (Index j = 0; j < n; ++j) {
    for (Index i = 0; i < n; ++i) sum[i] += m[j * n + i] * x[j];
  }
  for (Index i = 0; i < n; ++i) y[i] = sum[i];
}

}  // namespace tnla_small
