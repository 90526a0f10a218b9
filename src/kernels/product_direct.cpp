// SPDX-License-Identifier: MIT

#include "product_parts.h"
#include "product_tile.h"

namespace tnla_kernels::TNLA_SET {

namespace {

struct Operands {
  Index m, k;
  const double* a;
  Index lda;
  const double* b;
  Index ldb;
  double* c;
  Index ldc;
};

template <Index kRows, Index kCols>
[[gnu::always_inline]] inline void rows_from(Index i, const Operands& p) {
  tile<kRows, kCols, 1, false>(p.k, p.a + i, p.lda, p.b, p.ldb, p.c + i, p.ldc);
}

// All rows where there are at most kRows, less than a vector holds.
template <Index kRows, Index kCols>
void less_than_a_vector(const Operands& p) {
  if constexpr (kRows > 0) {
    if (p.m == kRows) {
      rows_from<kRows, kCols>(0, p);
    } else {
      less_than_a_vector<kRows - 1, kCols>(p);
    }
  }
}

// All rows of the first kCols columns.  The last piece of rows overlaps the one before: what it forms
// again, it forms with the same bits.
template <Index kCols>
void columns(const Operands& p) {
  if (p.m < kLanes) return less_than_a_vector<kLanes - 1, kCols>(p);
  Index i = 0;
  if (p.m >= kTileRows) {
    for (; p.m - i > kLanes; i += kTileRows) rows_from<kTileRows, kCols>(smaller(i, p.m - kTileRows), p);
  }
  for (; i < p.m; i += kLanes) rows_from<kLanes, kCols>(smaller(i, p.m - kLanes), p);
}

// How many of the columns that are left come next.  Seven and eight divide more evenly than by sixes.
Index next_columns(Index left) {
  if (left == 5) return 3;
  if (left == 7 || left == 8) return 4;
  return smaller(left, kTileCols);
}

}  // namespace

void direct_product(Index m, Index k, Index n, const double* a, Index lda, const double* b, Index ldb,
                    double* c, Index ldc) {
  Operands p{m, k, a, lda, b, ldb, c, ldc};
  for (Index j = 0; j < n;) {
    const Index here = next_columns(n - j);
    p.b = b + j * ldb;
    p.c = c + j * ldc;
    switch (here) {
      case 1:
        columns<1>(p);
        break;
      case 2:
        columns<2>(p);
        break;
      case 3:
        columns<3>(p);
        break;
      case 4:
        columns<4>(p);
        break;
      default:
        columns<kTileCols>(p);
    }
    j += here;
  }
}

}  // namespace tnla_kernels::TNLA_SET
