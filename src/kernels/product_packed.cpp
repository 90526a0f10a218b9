// SPDX-License-Identifier: MIT

#include "product_parts.h"
#include "product_tile.h"

namespace tnla_kernels::TNLA_SET {

namespace {

// How much of A is packed at a time.  64 KiB of it, and 6 KiB of B, are what may lie on any thread's stack.
// bench/product, AVX2: a depth of 64, 128 and 256 with as many rows as then fit give 52, 54 and 54
// Gflop/s at 256; but a B that has to be packed is packed again for every block of rows, which costs 6, 10
// and 27%.
constexpr Index kDepth = 128;
constexpr Index kBlockRows = 64;
static_assert(kBlockRows % kTileRows == 0);

// Puts kWide lines of an operand side by side: packed[l * kWide + r] = from[r * step + l * depth_step].
// What stands in the place of lines that are missing does not matter, but is finite.
template <Index kWide>
void pack_sliver(Index lines, Index depth, const double* from, Index step, Index depth_step,
                 double* packed) {
  if (step == 1 && lines == kWide) {
    for (Index l = 0; l < depth; ++l, from += depth_step, packed += kWide) {
      std::memcpy(packed, from, kWide * sizeof(double));
    }
  } else {
    if (lines < kWide) std::memset(packed, 0, static_cast<std::size_t>(depth * kWide) * sizeof(double));
    copy_elements(depth, lines, from, {depth_step, step}, packed, {kWide, 1});
  }
}

// kTileCols columns of B: in a sliver, or as they lie, contiguous and ld apart.
struct ColumnsOfB {
  const double* elements;
  Index ld;
  bool in_sliver;
};

// A full tile from a sliver of A.
template <bool kGoesOn>
[[gnu::noinline]] void full_tile(Index depth, const double* a, const ColumnsOfB& b, double* c, Index ldc) {
  if (b.in_sliver) {
    tile<kTileRows, kTileCols, kTileCols, kGoesOn>(depth, a, kTileRows, b.elements, 1, c, ldc);
  } else {
    tile<kTileRows, kTileCols, 1, kGoesOn>(depth, a, kTileRows, b.elements, b.ld, c, ldc);
  }
}

[[gnu::noinline]] void full_tile(Index depth, const double* a, const ColumnsOfB& b, double* c, Index ldc,
                                 bool goes_on) {
  if (goes_on) {
    full_tile<true>(depth, a, b, c, ldc);
  } else {
    full_tile<false>(depth, a, b, c, ldc);
  }
}

// A tile that is not full, or whose rows are not contiguous: by way of a full one.
void partial_tile(Index depth, const double* a, const ColumnsOfB& b, Index rows, Index cols, double* c,
                  Steps sc, bool goes_on) {
  double full[kTileRows * kTileCols] = {};
  if (goes_on) copy_elements(rows, cols, c, sc, full, {1, kTileRows});
  full_tile(depth, a, b, full, kTileRows, goes_on);
  copy_elements(rows, cols, full, {1, kTileRows}, c, sc);
}

}  // namespace

// Block by block of A: a block of rows stays in the second cache while all of B passes by.  Over l the
// blocks come in ascending order, and each goes on with the sums that the one before has stored in C.
void packed_product(Index m, Index k, Index n, const double* a, Steps sa, const double* b, Steps sb,
                    double* c, Steps sc) {
  alignas(64) double packed_a[kBlockRows * kDepth];
  alignas(64) double packed_b[kTileCols * kDepth];
  for (Index l = 0; l == 0 || l < k; l += kDepth) {
    const Index depth = smaller(kDepth, k - l);
    for (Index i0 = 0; i0 < m; i0 += kBlockRows) {
      const Index i_end = smaller(i0 + kBlockRows, m);
      for (Index i = i0; i < i_end; i += kTileRows) {
        pack_sliver<kTileRows>(smaller(kTileRows, i_end - i), depth, a + i * sa.row + l * sa.col, sa.row,
                               sa.col, packed_a + (i - i0) * kDepth);
      }
      for (Index j = 0; j < n; j += kTileCols) {
        const Index cols = smaller(kTileCols, n - j);
        ColumnsOfB bj{b + l * sb.row + j * sb.col, sb.col, sb.row != 1 || cols < kTileCols};
        if (bj.in_sliver) {
          pack_sliver<kTileCols>(cols, depth, bj.elements, sb.col, sb.row, packed_b);
          bj.elements = packed_b;
        }
        for (Index i = i0; i < i_end; i += kTileRows) {
          const double* const ai = packed_a + (i - i0) * kDepth;
          double* const cij = c + i * sc.row + j * sc.col;
          if (i_end - i >= kTileRows && cols == kTileCols && sc.row == 1) {
            full_tile(depth, ai, bj, cij, sc.col, l != 0);
          } else {
            partial_tile(depth, ai, bj, smaller(kTileRows, i_end - i), cols, cij, sc, l != 0);
          }
        }
      }
    }
  }
}

}  // namespace tnla_kernels::TNLA_SET
