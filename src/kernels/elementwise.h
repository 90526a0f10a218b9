// SPDX-License-Identifier: MIT

#pragma once

#include "index.h"

namespace tnla_kernels {

// Loops whose elements are independent of each other.
//
// Each runs as if element by element in ascending order: an output may be one of the inputs, or overlap
// it.
struct ElementwiseKernels {
  void (*add)(Index n, const double* x, const double* y, double* out);       // out[i] = x[i] + y[i]
  void (*subtract)(Index n, const double* x, const double* y, double* out);  // out[i] = x[i] - y[i]
  void (*scale)(Index n, const double* x, double s, double* out);            // out[i] = x[i] * s
  void (*divide)(Index n, const double* x, double s, double* out);           // out[i] = x[i] / s
  // out[i] = (a * x[i]) + (b * y[i])
  void (*combine)(Index n, const double* x, double a, const double* y, double b, double* out);
};

}  // namespace tnla_kernels
