// SPDX-License-Identifier: MIT

#pragma once

#include "index.h"

namespace tnla_kernels {

// A pivot below it ends the factorisation; a NaN does not.
inline constexpr double kSmallestPivot = 1e-10;

// The Cholesky factor A = L L' of a symmetric n x n matrix, and solving with it.
//
// The column-major l holds L below its diagonal and L' above, so that both substitutions, and the
// factorisation, find what they need side by side.  The diagonal of L is apart in `diagonal`.
struct CholeskyKernels {
  // The number of values that `factor` needs as scratch.
  Index (*factor_scratch)(Index n);

  // L from the upper triangle of A, which l holds at the start.  For j ascending, and i = j ... n-1:
  //
  //     s = A(j, i);  then s = s - L(i, k) * L(j, k) for k = j-1 ... 0, in this order
  //     i == j: s < kSmallestPivot ends it with false;  L(j, j) = sqrt(s)
  //     i  > j: L(i, j) = s / L(j, j)
  //
  // What l holds on its diagonal, and all of it after false, is not said.  The lower triangle does not
  // count at the start.
  bool (*factor)(Index n, double* l, double* diagonal, double* scratch);

  // x = the solution of L L' x = b.  x may be b.
  //
  //     for i ascending:   s = b(i);  s = s - L(i, k) * x(k) for k = i-1 ... 0;    x(i) = s / L(i, i)
  //     for i descending:  s = x(i);  s = s - L(k, i) * x(k) for k = i+1 ... n-1;  x(i) = s / L(i, i)
  void (*solve)(Index n, const double* l, const double* diagonal, const double* b, double* x);
};

}  // namespace tnla_kernels
