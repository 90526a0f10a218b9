// SPDX-License-Identifier: MIT

#include "cholesky.h"

#include <cmath>
#include <cstdint>

#include "simd.h"
#include "transpose.h"

// The rows of L are independent but for the pivots, and the columns are not: the order of the
// subtractions starts the sum of column j+1 with what column j has just given.  So some rows side by side
// run through all columns, in a slab of their own: its element (j, r) is A(j, first + r) at first and
// L(first + r, j) in the end.
namespace tnla_kernels::TNLA_SET {

namespace {

// bench/cholesky, AVX2: eight vectors hide the latency of the subtractions, 10% over four for n = 64 to
// 128; from 256 on their slab leaves the first cache, and 16 rows win by 10% (24 rows: 5% better at 256, 8%
// worse at 512).
constexpr Index kWideRows = 8 * kLanes;
constexpr Index kNarrowRows = 16;
constexpr Index kLargestWide = 128;

// Below it a slab does not pay: 30 ns of its own, which is as much as the loops for n = 3 take.
constexpr Index kSmallestSlab = 8;

constexpr Index kCacheLine = 8;  // doubles

// Element by element.
bool factor_small(Index n, double* l, double* diagonal) {
  for (Index j = 0; j < n; ++j) {
    for (Index i = j; i < n; ++i) {
      double s = l[i * n + j];
      for (Index k = j - 1; k >= 0; --k) s -= l[i * n + k] * l[j * n + k];
      if (i > j) {
        l[j * n + i] = l[i * n + j] = s / diagonal[j];
        continue;
      }
      if (s < kSmallestPivot) return false;
      diagonal[j] = std::sqrt(s);
    }
  }
  return true;
}

// Rows side by side: element (j, r) is at[j * n_rows + r].
struct Slab {
  double* at;
  Index n_rows;
};

// Column j of kVectors vectors of rows: s = S(j) - sum of S(k) * L(j, k), the last k first.  L(j, k) is
// row[k * incr].
template <Index kVectors>
inline void reduce(Index j, const Slab& slab, const double* row, Index incr, Lanes (&s)[kVectors]) {
  for (Index v = 0; v < kVectors; ++v) s[v] = load(slab.at + j * slab.n_rows + v * kLanes);
  for (Index k = j - 1; k >= 0; --k) {
    const Lanes factor = splat(row[k * incr]);
    for (Index v = 0; v < kVectors; ++v) s[v] -= load(slab.at + k * slab.n_rows + v * kLanes) * factor;
  }
}

template <Index kVectors>
inline void finish(Index j, const Slab& slab, double pivot, const Lanes (&s)[kVectors]) {
  for (Index v = 0; v < kVectors; ++v) store(slab.at + j * slab.n_rows + v * kLanes, s[v] / pivot);
}

// The columns before the first row of the slab.
template <Index kVectors>
void earlier_columns(Index n, Index first, const Slab& slab, const double* l, const double* diagonal) {
  for (Index j = 0; j < first; ++j) {
    Lanes s[kVectors];
    reduce(j, slab, l + j * n, 1, s);
    finish(j, slab, diagonal[j], s);
  }
}

// The columns first ... first + n_rows - 1, whose pivots are in the slab itself; it starts at the vector
// that holds row `first`.  The rows above a pivot are computed with the others, and nobody looks at them.
template <Index kVectors>
[[gnu::noinline]] bool own_columns(Index first, Index n_rows, const Slab& slab, double* diagonal) {
  const Index here = smaller(kLanes, n_rows);
  for (Index c = 0; c < here; ++c) {
    const Index j = first + c;
    Lanes s[kVectors];
    reduce(j, slab, slab.at + c, slab.n_rows, s);
    if (s[0][c] < kSmallestPivot) return false;
    diagonal[j] = std::sqrt(s[0][c]);
    finish(j, slab, diagonal[j], s);
  }
  if constexpr (kVectors > 1) {
    const Slab behind = {slab.at + kLanes, slab.n_rows};
    return own_columns<kVectors - 1>(first + kLanes, n_rows - here, behind, diagonal);
  }
  return true;
}

// The first n_rows rows of L, at most kVectors vectors of them.
template <Index kVectors>
bool first_columns(Index n_rows, const Slab& slab, double* diagonal) {
  if constexpr (kVectors > 1) {
    if (n_rows <= (kVectors - 1) * kLanes) return first_columns<kVectors - 1>(n_rows, slab, diagonal);
  }
  return own_columns<kVectors>(0, n_rows, slab, diagonal);
}

template <Index kVectors>
bool factor_slab(Index n, Index first, Index n_rows, const Slab& slab, const double* l, double* diagonal) {
  if (first == 0) return first_columns<kVectors>(n_rows, slab, diagonal);
  earlier_columns<kVectors>(n, first, slab, l, diagonal);
  return own_columns<kVectors>(first, n_rows, slab, diagonal);
}

// The rows above L(j, j), which are no part of it, come from the transposed and are overwritten.
void copy_out(Index n, Index first, Index n_rows, const Slab& slab, double* l) {
  transpose(n_rows, first + n_rows, slab.at, slab.n_rows, l + first * n, n);
  for (Index j = 0; j < first + n_rows; ++j) {
    double* const column = l + j * n + first;
    for (Index r = larger(0, j + 1 - first); r < n_rows; ++r) column[r] = slab.at[j * slab.n_rows + r];
  }
}

// A slab that is not full comes first, where its columns are short.
bool factor_by_rows(Index n, double* l, double* diagonal, const Slab& slab) {
  Index n_rows = n % slab.n_rows == 0 ? slab.n_rows : n % slab.n_rows;
  for (Index first = 0; first < n; first += n_rows, n_rows = slab.n_rows) {
    transpose(first + n_rows, n_rows, l + first * n, n, slab.at, slab.n_rows);
    const bool passed = slab.n_rows == kWideRows
                            ? factor_slab<kWideRows / kLanes>(n, first, n_rows, slab, l, diagonal)
                            : factor_slab<kNarrowRows / kLanes>(n, first, n_rows, slab, l, diagonal);
    if (!passed) return false;
    copy_out(n, first, n_rows, slab, l);
  }
  return true;
}

bool is_small(Index n) { return n < kSmallestSlab; }

Index rows_of_slab(Index n) { return n <= kLargestWide ? kWideRows : kNarrowRows; }

Index scratch(Index n) { return is_small(n) ? 0 : rows_of_slab(n) * n + kCacheLine; }

double* to_cache_line(double* p) {
  const auto past = static_cast<Index>(reinterpret_cast<std::uintptr_t>(p) / sizeof(double)) % kCacheLine;
  return p + (kCacheLine - past) % kCacheLine;
}

bool cholesky(Index n, double* l, double* diagonal, double* space) {
  if (is_small(n)) return factor_small(n, l, diagonal);
  return factor_by_rows(n, l, diagonal, {to_cache_line(space), rows_of_slab(n)});
}

// One chain of subtractions, which starts with the newest x: nothing can run beside it.
void cholesky_solve(Index n, const double* l, const double* diagonal, const double* b, double* x) {
  for (Index i = 0; i < n; ++i) {
    double s = b[i];
    for (Index k = i - 1; k >= 0; --k) s -= l[i * n + k] * x[k];
    x[i] = s / diagonal[i];
  }
  for (Index i = n - 1; i >= 0; --i) {
    double s = x[i];
    for (Index k = i + 1; k < n; ++k) s -= l[i * n + k] * x[k];
    x[i] = s / diagonal[i];
  }
}

}  // namespace

CholeskyKernels cholesky_kernels() { return {scratch, cholesky, cholesky_solve}; }

}  // namespace tnla_kernels::TNLA_SET
