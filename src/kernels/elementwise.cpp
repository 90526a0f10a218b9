#include "elementwise.h"

#include "simd.h"

namespace tnla_kernels::TNLA_SET {

namespace {

void add(Index n, const double* x, const double* y, double* out) {
  for (Index i = 0; i < n; ++i) out[i] = x[i] + y[i];
}

void subtract(Index n, const double* x, const double* y, double* out) {
  for (Index i = 0; i < n; ++i) out[i] = x[i] - y[i];
}

void scale(Index n, const double* x, double s, double* out) {
  for (Index i = 0; i < n; ++i) out[i] = x[i] * s;
}

void divide(Index n, const double* x, double s, double* out) {
  for (Index i = 0; i < n; ++i) out[i] = x[i] / s;
}

void combine(Index n, const double* x, double a, const double* y, double b, double* out) {
  for (Index i = 0; i < n; ++i) out[i] = a * x[i] + b * y[i];
}

}  // namespace

ElementwiseKernels elementwise_kernels() { return {add, subtract, scale, divide, combine}; }

}  // namespace tnla_kernels::TNLA_SET
