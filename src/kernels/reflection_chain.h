#pragma once

#include <cmath>
#include <cstdint>

#include "reflection.h"
#include "simd.h"

// A chain of Householder reflections on many columns side by side.
//
// The columns lie in slabs: kLanes of them, row after row, so that a vector holds one row of a slab.
//
//     slab 0: a00 a01 a02 a03 a10 a11 ...        slab 1, `ld` doubles further: a04 a05 a06 a07 a14 ...
//
// Applying a reflection takes a sum over a column and then an update of it, and the next one does the same.
// A chain does the update of one and the sum of the next in a single pass: each element is loaded and stored
// once a reflection.  Between two passes a column is represented by its sum, from which the update that it
// still lacks follows.
//
// Every column has its own operations, in the order that reflection.h states.  A sum of exactly 0 leaves its
// column alone, which is not the same as adding 0 * u; a group of slabs that has such a column takes a pass
// that blends.  So a sum of 0 also stands for "nothing is pending".  Lanes that hold no column, or none any
// longer, hold NaN: their sums are never 0.
namespace tnla_kernels::TNLA_SET {

// Six sums and their six factors, two entries of u and two temporaries are the 16 vector registers.
inline constexpr Index kGroup = 6;

inline constexpr double kDead = __builtin_nan("");  // the content of a lane without a column

struct Slabs {
  double* data;
  Index ld;

  double* row(Index slab, Index i) const { return data + slab * ld + i * kLanes; }
  double* column(Index l) const { return data + l / kLanes * ld + l % kLanes; }  // kLanes from row to row
};

inline Index slabs_for(Index n_cols) { return (n_cols + kLanes - 1) / kLanes; }

// The distance of two slabs: whole cache lines, and one more so that slabs of 2^k rows do not meet in one
// cache set.
inline Index slab_distance(Index n_rows) { return (n_rows * kLanes + 7) / 8 * 8 + 8; }

inline double* at_cache_line(double* p) {
  return p + (64 - reinterpret_cast<std::uintptr_t>(p) % 64) % 64 / sizeof(double);
}

// n_cols columns of a, and dead ones up to the end of the last slab.
inline void fill_slabs(Index n_rows, Index n_cols, const double* a, Index lda, const Slabs& w) {
  for (Index l = 0; l < n_cols; ++l) {
    double* const to = w.column(l);
    for (Index i = 0; i < n_rows; ++i) to[i * kLanes] = a[l * lda + i];
  }
  for (Index l = n_cols; l % kLanes != 0; ++l) {
    double* const to = w.column(l);
    for (Index i = 0; i < n_rows; ++i) to[i * kLanes] = kDead;
  }
}

inline void empty_slabs(Index n_rows, Index n_cols, const Slabs& w, double* a, Index lda) {
  for (Index l = 0; l < n_cols; ++l) {
    const double* const from = w.column(l);
    for (Index i = 0; i < n_rows; ++i) a[l * lda + i] = from[i * kLanes];
  }
}

// The larger of `largest` and the magnitudes of n entries; a NaN in `largest` stays, others do not count.
inline double largest_magnitude(Index n, const double* x, double largest) {
  for (Index i = 0; i < n; ++i) {
    const double magnitude = std::fabs(x[i]);
    if (magnitude > largest) largest = magnitude;
  }
  return largest;
}

// Builds the reflection of a pivot and a range of n entries, as ReflectionKernels::make does.
inline void build_reflection(double& pivot, Index n, const double* range, double& up, double& scale) {
  up = 0.0;
  scale = 0.0;
  const double largest = largest_magnitude(n, range, std::fabs(pivot));
  if (largest < kNoReflection) return;
  const double inverse = 1.0 / largest;
  double sum = (pivot * inverse) * (pivot * inverse);
  for (Index i = 0; i < n; ++i) {
    const double scaled = range[i] * inverse;
    sum += scaled * scaled;
  }
  double s = largest * std::sqrt(sum);
  if (pivot > 0.0) s = -s;
  up = pivot - s;
  pivot = s;
  scale = reflection_scale(s, up);
}

// What is still to be added to the rows of a pass: sum * scale * u.
struct Pending {
  const double* u;
  double scale;
};

// A reflection as the chain applies it to a pivot row and n further rows: the identity if scale is 0.
struct Link {
  const double* u;  // n entries
  Index n;
  double up;
  double scale;
};

template <Index V>
struct Vectors {
  Lanes v[V];
};

template <Index V>
struct Updates {
  Lanes factor[V];
  Mask skip[V];
  bool blend = false;

  Updates(const double* sums, double scale) {
    Mask skipped{};
    for (Index k = 0; k < V; ++k) {
      const Lanes sum = load(sums + k * kLanes);
      factor[k] = sum * scale;
      skip[k] = sum == 0.0;
      skipped |= skip[k];
    }
    blend = any(skipped);
  }
};

enum class Term { product, square };  // what a pass sums up: w * u or w * w

// Adds the pending updates to n rows of V slabs, and the terms of the rows so updated to `sums`.
template <Index V, bool kBlend, Term kTerm>
void pass(Index n, double* __restrict w, Index ld, const Updates<V>& updates, const double* u_before,
          const double* u, Vectors<V>& sums) {
  Lanes factor[V];
  Lanes sum[V];
  for (Index k = 0; k < V; ++k) factor[k] = updates.factor[k];
  for (Index k = 0; k < V; ++k) sum[k] = sums.v[k];
  for (Index i = 0; i < n; ++i, w += kLanes) {
    const Lanes before = splat(u_before[i]);
    const Lanes now = splat(kTerm == Term::product ? u[i] : 0.0);
    for (Index k = 0; k < V; ++k) {
      const Lanes old = load(w + k * ld);
      Lanes x = old + factor[k] * before;
      if (kBlend) x = select(updates.skip[k], old, x);
      store(w + k * ld, x);
      sum[k] += x * (kTerm == Term::product ? now : x);
    }
  }
  for (Index k = 0; k < V; ++k) sums.v[k] = sum[k];
}

template <Index V, Term kTerm>
void pass(Index n, double* w, Index ld, const Updates<V>& updates, const double* u_before, const double* u,
          Vectors<V>& sums) {
  if (updates.blend) {
    pass<V, true, kTerm>(n, w, ld, updates, u_before, u, sums);
  } else {
    pass<V, false, kTerm>(n, w, ld, updates, u_before, u, sums);
  }
}

// Where the pivot row of a link is, and whether what is pending concerns it.
struct PivotRow {
  double* row;
  Index ld;
  const double* pending_entry;  // null: it does not
};

// Applies the link to V slabs: the pivot row becomes final, the other rows pending.  `sums` is replaced.
// The squares of the pivot row are subtracted from `lengths`, unless that is null.
template <Index V>
void apply_link(const Link& link, const Pending& pending, const PivotRow& pivot, double* w, Index ld,
                double* sums, double* lengths) {
  const Updates<V> updates(sums, pending.scale);
  Lanes top[V];
  Vectors<V> sum;
  for (Index k = 0; k < V; ++k) {
    top[k] = load(pivot.row + k * pivot.ld);
    if (pivot.pending_entry != nullptr) {
      top[k] = select(updates.skip[k], top[k], top[k] + updates.factor[k] * *pivot.pending_entry);
    }
    sum.v[k] = top[k] * link.up;
  }
  pass<V, Term::product>(link.n, w, ld, updates, pending.u, link.u, sum);
  for (Index k = 0; k < V; ++k) {
    if (link.scale == 0.0) sum.v[k] = Lanes{};
    top[k] = select(sum.v[k] == 0.0, top[k], top[k] + (sum.v[k] * link.scale) * link.up);
    store(pivot.row + k * pivot.ld, top[k]);
    store(sums + k * kLanes, sum.v[k]);
  }
  if (lengths == nullptr) return;
  for (Index k = 0; k < V; ++k) {
    store(lengths + k * kLanes, load(lengths + k * kLanes) - top[k] * top[k]);
  }
}

// Adds what is pending to n rows of V slabs.  `lengths` become the sums of their squares, from +0.0 on.
template <Index V>
void settle(Index n, const Pending& pending, double* w, Index ld, double* sums, double* lengths) {
  const Updates<V> updates(sums, pending.scale);
  Vectors<V> squares{};
  pass<V, Term::square>(n, w, ld, updates, pending.u, pending.u, squares);
  for (Index k = 0; k < V; ++k) {
    store(lengths + k * kLanes, squares.v[k]);
    store(sums + k * kLanes, Lanes{});
  }
}

template <Index V>
struct GroupOf {
  static constexpr Index value = V;
};

// Calls f(GroupOf<V>(), slab) for groups of V slabs, from `first` to `end`.  Fewer than four vectors do not
// hide the latency of an addition, so 7 are taken as 4 and 3.
template <class F>
void for_groups(Index first, Index end, const F& f) {
  while (first < end) {
    const Index left = end - first;
    const Index take = left <= kGroup ? left : 4;
    switch (take) {
      case 1: f(GroupOf<1>(), first); break;
      case 2: f(GroupOf<2>(), first); break;
      case 3: f(GroupOf<3>(), first); break;
      case 4: f(GroupOf<4>(), first); break;
      case 5: f(GroupOf<5>(), first); break;
      default: f(GroupOf<6>(), first); break;
    }
    first += take;
  }
}

}  // namespace tnla_kernels::TNLA_SET
