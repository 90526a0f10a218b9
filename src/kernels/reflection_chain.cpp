// SPDX-License-Identifier: MIT

#include "reflection_chain.h"

#include <cmath>
#include <cstdint>

#include "reflection.h"

namespace tnla_kernels::TNLA_SET {

namespace {

// Six sums and their six factors, two entries of u and two temporaries are the 16 vector registers.
constexpr Index kGroup = 6;

// The largest of `first` and the magnitudes of n entries.  A NaN in `first` stays, others do not count.
inline double largest_magnitude(Index n, const double* x, double first) {
  double largest = first;
  for (Index i = 0; i < n; ++i) largest = std::fabs(x[i]) > largest ? std::fabs(x[i]) : largest;
  return largest;
}

// What is pending for V slabs: each column's factor of u, or to leave it alone.
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

// Adds the pending updates to n rows of V slabs, and the terms of the rows so updated to `sum`.
template <Index V, bool kBlend, Term kTerm>
inline void pass(Index n, double* __restrict w, Index ld, const Lanes* factors, const Mask* skips,
                 const double* u_before, const double* u, Lanes* sums) {
  Lanes factor[V];
  Lanes sum[V];
  for (Index k = 0; k < V; ++k) factor[k] = factors[k];
  for (Index k = 0; k < V; ++k) sum[k] = sums[k];
  for (Index i = 0; i < n; ++i, w += kLanes) {
    const Lanes before = splat(u_before[i]);
    const Lanes now = splat(kTerm == Term::product ? u[i] : 0.0);
    for (Index k = 0; k < V; ++k) {
      const Lanes old = load(w + k * ld);
      Lanes x = old + factor[k] * before;
      if (kBlend) x = select(skips[k], old, x);
      store(w + k * ld, x);
      sum[k] += x * (kTerm == Term::product ? now : x);
    }
  }
  for (Index k = 0; k < V; ++k) sums[k] = sum[k];
}

// The same where columns are to be left alone.  Rare: it may be slower, and is not to be inlined six times.
template <Term kTerm>
[[gnu::noinline]] void blended_pass(Index n_slabs, Index n, double* w, Index ld, const Lanes* factors,
                                    const Mask* skips, const double* u_before, const double* u,
                                    Lanes* sums) {
  while (n_slabs > 0) {
    const Index take = n_slabs < 3 ? 1 : 3;
    if (take == 3) {
      pass<3, true, kTerm>(n, w, ld, factors, skips, u_before, u, sums);
    } else {
      pass<1, true, kTerm>(n, w, ld, factors, skips, u_before, u, sums);
    }
    n_slabs -= take;
    w += take * ld;
    factors += take;
    skips += take;
    sums += take;
  }
}

template <Index V, Term kTerm>
inline void pass(Index n, double* w, Index ld, const Updates<V>& updates, const double* u_before,
                 const double* u, Lanes* sums) {
  if (updates.blend) {
    blended_pass<kTerm>(V, n, w, ld, updates.factor, updates.skip, u_before, u, sums);
  } else {
    pass<V, false, kTerm>(n, w, ld, updates.factor, updates.skip, u_before, u, sums);
  }
}

// A group of V slabs out of `all`.
struct Group {
  double* rows;
  double* pivot;
  double* sums;
  double* lengths;

  Group(const Columns& all, const PivotRow& top, Index slab)
      : rows(all.rows + slab * all.ld),
        pivot(top.row + slab * top.ld),
        sums(all.sums + slab * kLanes),
        lengths(all.lengths == nullptr ? nullptr : all.lengths + slab * kLanes) {}
};

template <Index V>
inline void apply_to_group(const Link& link, const Pending& pending, const PivotRow& pivot, Index ld,
                           const Group& group) {
  const Updates<V> updates(group.sums, pending.scale);
  Lanes top[V];
  Lanes sum[V];
  for (Index k = 0; k < V; ++k) {
    top[k] = load(group.pivot + k * pivot.ld);
    if (pivot.pending_entry != nullptr) {
      top[k] = select(updates.skip[k], top[k], top[k] + updates.factor[k] * *pivot.pending_entry);
    }
    sum[k] = top[k] * link.up;
  }
  pass<V, Term::product>(link.n, group.rows, ld, updates, pending.u, link.u, sum);
  for (Index k = 0; k < V; ++k) {
    if (link.scale == 0.0) sum[k] = Lanes{};
    top[k] = select(sum[k] == 0.0, top[k], top[k] + (sum[k] * link.scale) * link.up);
    store(group.pivot + k * pivot.ld, top[k]);
    store(group.sums + k * kLanes, sum[k]);
  }
  if (group.lengths == nullptr) return;
  for (Index k = 0; k < V; ++k) {
    store(group.lengths + k * kLanes, load(group.lengths + k * kLanes) - top[k] * top[k]);
  }
}

template <Index V>
inline void settle_group(Index n, const Pending& pending, Index ld, const Group& group) {
  const Updates<V> updates(group.sums, pending.scale);
  Lanes squares[V]{};
  pass<V, Term::square>(n, group.rows, ld, updates, pending.u, pending.u, squares);
  for (Index k = 0; k < V; ++k) {
    store(group.sums + k * kLanes, splat(1.0));
    if (group.lengths != nullptr) store(group.lengths + k * kLanes, squares[k]);
  }
}

template <Index V>
struct GroupOf {
  static constexpr Index value = V;
};

// Calls f(GroupOf<V>(), slab) for groups of V slabs.  Few vectors do not hide the latency of an addition,
// so 7 are taken as 4 and 3 rather than as 6 and 1.
template <class F>
inline void for_groups(Index n_slabs, const F& f) {
  for (Index slab = 0; slab < n_slabs;) {
    const Index left = n_slabs - slab;
    const Index take = left <= kGroup ? left : 4;
    switch (take) {
      case 1:
        f(GroupOf<1>(), slab);
        break;
      case 2:
        f(GroupOf<2>(), slab);
        break;
      case 3:
        f(GroupOf<3>(), slab);
        break;
      case 4:
        f(GroupOf<4>(), slab);
        break;
      case 5:
        f(GroupOf<5>(), slab);
        break;
      default:
        f(GroupOf<6>(), slab);
        break;
    }
    slab += take;
  }
}

}  // namespace

Slabs slabs_in(double* scratch, Index n_rows) {
  const auto beyond_line =
      static_cast<Index>(reinterpret_cast<std::uintptr_t>(scratch) % 64 / sizeof(double));
  return {scratch + (8 - beyond_line) % 8, (n_rows * kLanes + 7) / 8 * 8 + 8};
}

void fill_slabs(Index n_rows, Index n_cols, const double* a, Index lda, const Slabs& w) {
  for (Index l = 0; l < n_cols; ++l) {
    double* __restrict const to = w.column(l);
    for (Index i = 0; i < n_rows; ++i) to[i * kLanes] = a[l * lda + i];
  }
  for (Index l = n_cols; l % kLanes != 0; ++l) {
    double* const to = w.column(l);
    for (Index i = 0; i < n_rows; ++i) to[i * kLanes] = kDead;
  }
}

void empty_slabs(Index n_rows, Index n_cols, const Slabs& w, double* __restrict a, Index lda) {
  for (Index l = 0; l < n_cols; ++l) {
    const double* const from = w.column(l);
    for (Index i = 0; i < n_rows; ++i) a[l * lda + i] = from[i * kLanes];
  }
}

void build_reflection(double& pivot, Index n, const double* range, double& up, double& scale) {
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

Pending nothing_pending(Index n, double* ones, Index n_slabs, double* sums) {
  for (Index i = 0; i < n; ++i) ones[i] = 1.0;
  for (Index k = 0; k < n_slabs; ++k) store(sums + k * kLanes, splat(1.0));
  return {ones, -0.0};
}

void settle_column(Index n, const double* from, double sum, const Pending& pending,
                   double* __restrict column) {
  const double factor = sum * pending.scale;
  if (sum == 0.0) {
    for (Index i = 0; i < n; ++i) column[i] = from[i * kLanes];
  } else {
    for (Index i = 0; i < n; ++i) column[i] = from[i * kLanes] + factor * pending.u[i];
  }
}

void apply_link(const Link& link, const Pending& pending, const PivotRow& pivot, const Columns& columns) {
  for_groups(columns.n_slabs, [&](auto group, Index slab) {
    apply_to_group<decltype(group)::value>(link, pending, pivot, columns.ld, Group(columns, pivot, slab));
  });
}

void settle(Index n, const Pending& pending, const Columns& columns) {
  for_groups(columns.n_slabs, [&](auto group, Index slab) {
    settle_group<decltype(group)::value>(n, pending, columns.ld,
                                         Group(columns, {columns.rows, 0, nullptr}, slab));
  });
}

}  // namespace tnla_kernels::TNLA_SET
