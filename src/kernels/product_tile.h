// SPDX-License-Identifier: MIT

#pragma once

#include "index.h"
#include "simd.h"

// A tile of C = A B: as many sums as the registers hold, side by side.
namespace tnla_kernels::TNLA_SET {

// Two vectors of rows by six columns: these twelve sums, the two vectors of a column of A, an element of B
// and a product take the sixteen registers that there are.
inline constexpr Index kTileRows = 2 * kLanes;
inline constexpr Index kTileCols = 6;

// f(0), ..., f(n - 1), each written out, so that an array indexed by the argument stays in registers.
template <Index n, class F>
[[gnu::always_inline]] inline void unrolled(const F& f) {
  if constexpr (n > 0) {
    unrolled<n - 1>(f);
    f(n - 1);
  }
}

// The first n lanes of a vector; those behind them are zero, and not written.
template <Index n>
[[gnu::always_inline]] inline Lanes load_first(const double* p) {
  if constexpr (n >= kLanes) return load(p);
  Lanes v = {};
  unrolled<n>([&](Index i) { v[i] = p[i]; });
  return v;
}

template <Index n>
[[gnu::always_inline]] inline void store_first(double* p, Lanes v) {
  if constexpr (n >= kLanes) {
    store(p, v);
  } else {
    unrolled<n>([&](Index i) { p[i] = v[i]; });
  }
}

// C(i, j) = sum of A(i, l) * B(l, j) over l = 0 ... k-1, from +0.0 or, if kGoesOn, from C(i, j); in kRows
// rows, whole vectors of them or less than one, and kCols columns.  A and C are column-major with the
// leading dimensions lda and ldc.  B(l, j) lies at l * kRowStep + j * ldb.
template <Index kRows, Index kCols, Index kRowStep, bool kGoesOn>
inline void tile(Index k, const double* a, Index lda, const double* b, Index ldb, double* c, Index ldc) {
  constexpr Index kVecs = kRows < kLanes ? 1 : kRows / kLanes;
  constexpr Index kSums = kVecs * kCols;  // sum s belongs to vector s % kVecs of column s / kVecs
  const auto place = [=](Index s) { return c + s / kVecs * ldc + s % kVecs * kLanes; };

  Lanes sum[kSums] = {};
  if constexpr (kGoesOn) {
    unrolled<kSums>([&](Index s) { sum[s] = load_first<kRows>(place(s)); });
  }
  for (Index l = 0; l < k; ++l, a += lda, b += kRowStep) {
    Lanes column[kVecs];
    unrolled<kVecs>([&](Index v) { column[v] = load_first<kRows>(a + v * kLanes); });
    unrolled<kCols>([&](Index j) {
      const Lanes factor = splat(b[j * ldb]);
      unrolled<kVecs>([&](Index v) { sum[j * kVecs + v] += column[v] * factor; });
    });
  }
  unrolled<kSums>([&](Index s) { store_first<kRows>(place(s), sum[s]); });
}

}  // namespace tnla_kernels::TNLA_SET
