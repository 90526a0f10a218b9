// SPDX-License-Identifier: MIT

#include "product.h"

#include "product_parts.h"
#include "simd.h"

namespace tnla_kernels::TNLA_SET {

namespace {

// An A that the first cache holds beside the rest is not packed.
constexpr Index kSmallOperand = 2000;

bool goes_direct(Index m, Index k) { return m < 2 * kLanes || m * k <= kSmallOperand; }

// An empty sum is 0, and its operands may be null.
void product_of_nothing(Index m, Index n, double* c, Steps sc) {
  for (Index j = 0; j < n; ++j) {
    for (Index i = 0; i < m; ++i) c[i * sc.row + j * sc.col] = 0.0;
  }
}

void product(Index m, Index k, Index n, const double* a, const double* b, double* c) {
  if (m == 0 || n == 0) return;
  if (k == 0) return product_of_nothing(m, n, c, {1, m});
  if (goes_direct(m, k)) {
    direct_product(m, k, n, a, m, b, k, c, m);
  } else if (n <= 3) {
    for (Index j = 0; j < n; ++j) matrix_vector(m, k, a, b + j * k, c + j * m);
  } else {
    packed_product(m, k, n, a, {1, m}, b, {1, k}, c, {1, m});
  }
}

Index magnitude(Index a) { return a < 0 ? -a : a; }

Index greatest_common_divisor(Index a, Index b) {
  while (b != 0) {
    const Index rest = a % b;
    a = b;
    b = rest;
  }
  return a;
}

// Whether two elements of an m x n matrix lie at one place: then col / g rows and row / g columns apart,
// where g divides both steps.
bool shares_places(Index m, Index n, Steps s) {
  const Index row = magnitude(s.row);
  const Index col = magnitude(s.col);
  const Index divisor = greatest_common_divisor(row, col);
  return divisor == 0 ? m > 1 || n > 1 : col / divisor < m && row / divisor < n;
}

// One sum after the other.
void product_in_row_order(Index m, Index k, Index n, const double* a, Steps sa, const double* b, Steps sb,
                          double* c, Steps sc) {
  product_of_nothing(m, n, c, sc);
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

Steps transposed(Steps s) { return {s.col, s.row}; }

void strided_product(Index m, Index k, Index n, const double* a, Steps sa, const double* b, Steps sb,
                     double* c, Steps sc) {
  if (m == 0 || n == 0) return;
  if (k == 0) return product_of_nothing(m, n, c, sc);
  if (shares_places(m, n, sc)) return product_in_row_order(m, k, n, a, sa, b, sb, c, sc);
  if (sc.row != 1 && sc.col == 1) {  // C' = B' A' has contiguous rows
    return strided_product(n, k, m, b, transposed(sb), a, transposed(sa), c, transposed(sc));
  }
  if (sa.row == 1 && sb.row == 1 && sc.row == 1 && goes_direct(m, k)) {
    direct_product(m, k, n, a, sa.col, b, sb.col, c, sc.col);
  } else {
    packed_product(m, k, n, a, sa, b, sb, c, sc);
  }
}

}  // namespace

void copy_elements(Index m, Index n, const double* from, Steps sf, double* to, Steps st) {
  for (Index j = 0; j < n; ++j) {
    for (Index i = 0; i < m; ++i) to[i * st.row + j * st.col] = from[i * sf.row + j * sf.col];
  }
}

ProductKernels product_kernels() { return {matrix_vector, product, strided_product}; }

}  // namespace tnla_kernels::TNLA_SET
