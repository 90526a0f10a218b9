// SPDX-License-Identifier: MIT

#include "product_parts.h"
#include "product_tile.h"

namespace tnla_kernels::TNLA_SET {

namespace {

// Columns that one pass over y takes in.  bench/matrix_vector, AVX2: eight are 10% faster at 64 and 5%
// at 2000, and 5% slower at 512, where all columns begin at the same place of a page and compete for the
// same lines of a cache.
constexpr Index kPassCols = 6;

// So many rows stay in registers.
constexpr Index kFewRows = 12;

// y = A x, or if kGoesOn y + A x, for kCols columns of A, and for as many pieces of kRows rows from i on as
// there are.  Returns the row behind them.
template <Index kRows, Index kCols, bool kGoesOn>
Index pieces(Index i, Index m, const double* a, const double* x, double* y) {
  Lanes factor[kCols];
  unrolled<kCols>([&](Index l) { factor[l] = splat(x[l]); });
  for (; m - i >= kRows; i += kRows) {
    Lanes sum = {};
    if constexpr (kGoesOn) sum = load_first<kRows>(y + i);
    unrolled<kCols>([&](Index l) { sum += load_first<kRows>(a + i + l * m) * factor[l]; });
    store_first<kRows>(y + i, sum);
  }
  return i;
}

template <Index kCols>
void pass(Index m, const double* a, const double* x, double* y, bool goes_on) {
  if (goes_on) {
    const Index i = pieces<kLanes, kCols, true>(0, m, a, x, y);
    pieces<1, kCols, true>(i, m, a, x, y);
  } else {
    const Index i = pieces<kLanes, kCols, false>(0, m, a, x, y);
    pieces<1, kCols, false>(i, m, a, x, y);
  }
}

}  // namespace

void matrix_vector(Index m, Index n, const double* a, const double* x, double* y) {
  if (m <= kFewRows || n == 0) return direct_product(m, n, 1, a, m, x, n, y, m);
  Index l = 0;
  for (; n - l >= kPassCols; l += kPassCols) pass<kPassCols>(m, a + l * m, x + l, y, l != 0);
  for (; n - l >= 3; l += 3) pass<3>(m, a + l * m, x + l, y, l != 0);
  for (; l < n; ++l) pass<1>(m, a + l * m, x + l, y, l != 0);
}

}  // namespace tnla_kernels::TNLA_SET
