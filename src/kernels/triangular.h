// SPDX-License-Identifier: MIT

#pragma once

#include "index.h"

namespace tnla_kernels {

// Triangular solves.
struct TriangularKernels {
  // X = R^-1 X for the upper triangle R of order n and the n_rhs columns of X; both column-major, with the
  // leading dimensions ldr and ldx.  In each column, for i = n-1 ... 0:
  //
  //     X(i) = (X(i) - sum of R(i, l) * X(l) over l = i+1 ... n-1) / R(i, i)
  //
  // where the sum starts from +0.0, with l ascending.  R is not tested for zeros.
  void (*back_substitute)(Index n, const double* r, Index ldr, double* x, Index ldx, Index n_rhs);
};

}  // namespace tnla_kernels
