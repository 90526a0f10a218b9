// SPDX-License-Identifier: MIT

#pragma once

#include "index.h"

namespace tnla_kernels {

// Where element (i, j) of a matrix lies: at i * row + j * col.
struct Steps {
  Index row;
  Index col;
};

// Matrix products.  Every element of a result is one sum, from +0.0, with l ascending; nothing else about
// the order of the loops shows.  The result must overlap no operand.  Nothing is allocated; a large product
// packs its operands into 70 KiB of stack.
struct ProductKernels {
  // y = A x for a column-major m x n matrix A with the leading dimension m.
  void (*matrix_vector)(Index m, Index n, const double* a, const double* x, double* y);

  // C = A B for column-major blocks: A is m x k, B is k x n, C is m x n, leading dimensions m, k, m.
  void (*product)(Index m, Index k, Index n, const double* a, const double* b, double* c);

  // C = A B for any steps.  Where elements of C share a place, the sums there run on in row order.
  void (*strided_product)(Index m, Index k, Index n, const double* a, Steps sa, const double* b, Steps sb,
                          double* c, Steps sc);
};

}  // namespace tnla_kernels
