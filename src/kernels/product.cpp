#include "product.h"

#include "simd.h"

namespace tnla_kernels::TNLA_SET {

namespace {

// Column by column of A: the sums of all rows grow side by side, and A is read in storage order.
void matrix_vector(Index m, Index n, const double* a, const double* x, double* y) {
  for (Index i = 0; i < m; ++i) y[i] = 0.0;
  for (Index l = 0; l < n; ++l) {
    const double* const column = a + l * m;
    const double factor = x[l];
    for (Index i = 0; i < m; ++i) y[i] += column[i] * factor;
  }
}

void product(Index m, Index k, Index n, const double* a, const double* b, double* c) {
  for (Index j = 0; j < n; ++j) matrix_vector(m, k, a, b + j * k, c + j * m);
}

void strided_product(Index m, Index k, Index n, const double* a, Steps sa, const double* b, Steps sb,
                     double* c, Steps sc) {
  for (Index i = 0; i < m; ++i) {
    for (Index j = 0; j < n; ++j) c[i * sc.row + j * sc.col] = 0.0;
  }
  for (Index i = 0; i < m; ++i) {
    for (Index j = 0; j < n; ++j) {
      double sum = c[i * sc.row + j * sc.col];
      for (Index l = 0; l < k; ++l) {
        sum += a[i * sa.row + l * sa.col] * b[l * sb.row + j * sb.col];
      }
      c[i * sc.row + j * sc.col] = sum;
    }
  }
}

}  // namespace

ProductKernels product_kernels() { return {matrix_vector, product, strided_product}; }

}  // namespace tnla_kernels::TNLA_SET
