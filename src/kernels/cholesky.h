#pragma once

#include "index.h"

namespace tnla_kernels {

// A pivot below it ends the factorisation; a NaN does not.
inline constexpr double kSmallestPivot = 1e-10;

// The Cholesky factor A = L L' of a column-major n x n matrix, and solving with it.
//
// The strictly lower part of L is column-major in l, its diagonal apart in `diagonal`.
struct CholeskyKernels {
  // L from the upper triangle of A.  For j ascending, and i = j ... n-1:
  //
  //     s = A(j, i);  then s = s - L(i, k) * L(j, k) for k = j-1 ... 0, in this order
  //     i == j: s < kSmallestPivot ends it with false;  L(j, j) = sqrt(s)
  //     i  > j: L(i, j) = s / L(j, j)
  //
  // The diagonal and the upper triangle of l are not touched.
  bool (*factor)(Index n, const double* a, double* l, double* diagonal);

  // x = the solution of L L' x = b.  x may be b.
  //
  //     for i ascending:   s = b(i);  s = s - L(i, k) * x(k) for k = i-1 ... 0;    x(i) = s / L(i, i)
  //     for i descending:  s = x(i);  s = s - L(k, i) * x(k) for k = i+1 ... n-1;  x(i) = s / L(i, i)
  void (*solve)(Index n, const double* l, const double* diagonal, const double* b, double* x);
};

}  // namespace tnla_kernels
