// SPDX-License-Identifier: MIT

#pragma once

#include "index.h"

namespace tnla_kernels {

// The largest order that has kernels of its own: that of the largest small matrix.
inline constexpr Index kLargestSmall = 12;

// Square systems A X = B of order 1 ... kLargestSmall, factored and solved in one go without memory from
// the heap.
struct SmallQrKernels {
  using Solve = bool (*)(Index n, const double* a, Index p, const double* b, Index ldb, double* x,
                         double* diagonal);

  // solve[n - 1](n, ...) for a column-major A of order n without gaps, and p >= 0 right sides with the
  // leading dimension ldb >= n.  x is n x p without gaps; it may be a if p <= n, and b if ldb == n.  Where
  // p is 0, neither b nor x is looked at.
  //
  //     A = Q R            one reflection for each of the columns 0 ... n-2, as ReflectionKernels states
  //                        it: make and reflection_scale of the column, reflect of the columns behind it
  //     diagonal = R(i,i)  always written
  //     false              if the diagonal fails the test of full rank (FullRank); x is not written
  //     X = R^-1 Q' B      as TriangularKernels states it
  Solve solve[kLargestSmall];
};

}  // namespace tnla_kernels
