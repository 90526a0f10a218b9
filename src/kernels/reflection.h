// SPDX-License-Identifier: MIT

#pragma once

#include "index.h"

// Householder reflections on strided vectors.
//
// A vector is a pivot entry and a range of n entries, `incr` apart.  A reflection is I + scale * u * u',
// where u has the pivot entry `up` and the range u[0], u[incr_u], ...
namespace tnla_kernels {

// What is smaller in magnitude counts as zero when a reflection is built or judged.
inline constexpr double kNoReflection = 1e-20;

// 1 / (s * up), the scale of the reflection that `make` left in s and up; 0.0, the identity, if
// the product is less than kNoReflection in magnitude (NaN is not).
static inline double reflection_scale(double s, double up) {
  const double product = s * up;
  if (kNoReflection > -product) return 0.0;  // written this way round so that a NaN goes on
  return 1.0 / product;
}

struct ReflectionKernels {
  // Takes the reflection that zeroes the range of v (Lawson and Hanson's H1):
  //
  //     c = the largest magnitude of pivot and range    (the pivot's, unless one is strictly greater)
  //     q = (pivot / c)^2 + sum over the range of (v / c)^2, where 1/c is formed once and multiplied
  //     s = c * sqrt(q), with the sign opposite to a positive pivot; up = pivot - s; pivot = s
  //
  // The range is read only.  c < kNoReflection: false, and nothing is written.
  bool (*make)(double& pivot, Index n, const double* range, Index incr, double& up);

  // Applies a reflection to n_vec vectors: vector k has the pivot pivot[k * stride] and the range
  // range[k * stride + i * incr].  No two of them share an element.
  //
  //     m = pivot * up + sum of range * u, starting with the pivot's term
  //     m == 0: the vector is left alone (a NaN is not 0)
  //     f = m * scale;  pivot += f * up;  range[i] += f * u[i]
  void (*reflect)(double up, const double* u, Index incr_u, Index n, double scale, double* pivot,
                  double* range, Index incr, Index stride, Index n_vec);
};

}  // namespace tnla_kernels
