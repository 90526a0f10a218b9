#include "reflection.h"

#include <cmath>

#include "simd.h"

namespace tnla_kernels::TNLA_SET {

namespace {

bool make_reflection(double& pivot, Index n, const double* range, Index incr, double& up) {
  double largest = std::fabs(pivot);
  for (Index i = 0; i < n; ++i) {
    const double magnitude = std::fabs(range[i * incr]);
    if (magnitude > largest) largest = magnitude;
  }
  if (largest < kNoReflection) return false;

  const double inverse = 1.0 / largest;  // scaling before squaring keeps the sum from overflowing
  double sum = (pivot * inverse) * (pivot * inverse);
  for (Index i = 0; i < n; ++i) {
    const double scaled = range[i * incr] * inverse;
    sum += scaled * scaled;
  }
  double s = largest * std::sqrt(sum);
  if (pivot > 0.0) s = -s;
  up = pivot - s;
  pivot = s;
  return true;
}

void reflect_one(double up, const double* u, Index incr_u, Index n, double scale, double& pivot,
                 double* range, Index incr) {
  double sum = pivot * up;
  for (Index i = 0; i < n; ++i) sum += range[i * incr] * u[i * incr_u];
  if (sum == 0.0) return;
  const double factor = sum * scale;
  pivot += factor * up;
  for (Index i = 0; i < n; ++i) range[i * incr] += factor * u[i * incr_u];
}

void reflect(double up, const double* u, Index incr_u, Index n, double scale, double* pivot, double* range,
             Index incr, Index stride, Index n_vec) {
  for (Index k = 0; k < n_vec; ++k) {
    reflect_one(up, u, incr_u, n, scale, pivot[k * stride], range + k * stride, incr);
  }
}

}  // namespace

ReflectionKernels reflection_kernels() { return {make_reflection, reflect}; }

}  // namespace tnla_kernels::TNLA_SET
