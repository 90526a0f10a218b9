// SPDX-License-Identifier: MIT

#pragma once

#include "qr.h"
#include "slab.h"

// Reflections on V slabs at once.  Each lane is a chain of its own, in the order that reflection.h states;
// V chains of vectors side by side hide the latency of an addition.
namespace tnla_kernels::TNLA_SET {

inline constexpr Index kGroup = 5;  // slabs in one pass at most: their sums and factors fill the registers

template <Index V>
struct Count {
  static constexpr Index value = V;
};

// f(Count<n>()) for 1 <= n <= kGroup.
template <class F>
inline void for_count(Index n, F f) {
  switch (n) {
    case 1:
      f(Count<1>());
      break;
    case 2:
      f(Count<2>());
      break;
    case 3:
      f(Count<3>());
      break;
    case 4:
      f(Count<4>());
      break;
    default:
      f(Count<kGroup>());
  }
}

// How many of n slabs the next pass takes, so that no pass is left with few.
inline Index next_group(Index n) {
  if (n <= kGroup) return n;
  return n == 6 ? 3 : 4;
}

template <Index V>
struct Group {
  Lanes slab[V];
};

template <Index V>
inline Group<V> operator*(Group<V> x, double s) {
  for (Index v = 0; v < V; ++v) x.slab[v] *= splat(s);
  return x;
}

// x += f * u in `rows` rows.
template <Index V>
inline void update(double* w, Index ld, Index rows, const double* u, Group<V> f) {
  for (Index i = 0; i < rows; ++i) {
    const Lanes ui = splat(u[i]);
    for (Index v = 0; v < V; ++v) {
      double* const x = slab_row(w + v * ld, i);
      store(x, load(x) + f.slab[v] * ui);
    }
  }
}

// The same where `skip` is not set.  Adding 0 * u instead would not do: it turns -0.0 into 0.0, and an
// infinity in u into NaN.
inline void update_unless(Mask skip, double* w, Index rows, const double* u, Lanes f) {
  for (Index i = 0; i < rows; ++i) {
    const Lanes x = load(slab_row(w, i));
    store(slab_row(w, i), select(skip, x, x + f * splat(u[i])));
  }
}

// The sum of a reflection starts in its pivot's row.
template <Index V>
inline Group<V> begin_dot(const double* pivot_row, Index ld, double up) {
  Group<V> sum;
  for (Index v = 0; v < V; ++v) sum.slab[v] = load(pivot_row + v * ld) * splat(up);
  return sum;
}

// sum += x * u over `rows` rows.
template <Index V>
inline Group<V> dot(const double* w, Index ld, Index rows, const double* u, Group<V> sum) {
  for (Index i = 0; i < rows; ++i) {
    const Lanes ui = splat(u[i]);
    for (Index v = 0; v < V; ++v) sum.slab[v] += load(slab_row(w + v * ld, i)) * ui;
  }
  return sum;
}

// Both in one pass: x += f * u, sum += x * next.
template <Index V>
inline Group<V> update_and_dot(double* w, Index ld, Index rows, const double* u, Group<V> f,
                               const double* next, Group<V> sum) {
  for (Index i = 0; i < rows; ++i) {
    const Lanes ui = splat(u[i]);
    const Lanes ni = splat(next[i]);
    for (Index v = 0; v < V; ++v) {
      double* const p = slab_row(w + v * ld, i);
      const Lanes x = load(p) + f.slab[v] * ui;
      store(p, x);
      sum.slab[v] += x * ni;
    }
  }
  return sum;
}

inline Index next_active(const StoredReflection* list, Index k, Index n) {
  while (k < n && list[k].scale == 0.0) ++k;
  return k;
}

// The reflections 0 ... n-1 of a list: each pass updates by one of them and takes the sums of the next.
template <Index V>
inline void apply_list(Index m, Index n, const StoredReflection* list, double* w, Index ld) {
  const auto sums = [&](Index k) {
    return dot(slab_row(w, k + 1), ld, m - k - 1, list[k].u, begin_dot<V>(slab_row(w, k), ld, list[k].up));
  };
  Index k = next_active(list, 0, n);
  Group<V> sum{};
  if (k < n) sum = sums(k);
  while (k < n) {
    const StoredReflection now = list[k];
    const Index next = next_active(list, k + 1, n);
    const Group<V> f = sum * now.scale;
    Mask any_zero{};
    for (Index v = 0; v < V; ++v) any_zero |= sum.slab[v] == Lanes{};
    if (any(any_zero)) {
      for (Index v = 0; v < V; ++v) {
        const Mask zero = sum.slab[v] == Lanes{};
        update_unless(zero, slab_row(w + v * ld, k), 1, &now.up, f.slab[v]);
        update_unless(zero, slab_row(w + v * ld, k + 1), m - k - 1, now.u, f.slab[v]);
      }
      if (next < n) sum = sums(next);
    } else {
      update(slab_row(w, k), ld, 1, &now.up, f);
      const Index before = (next < n ? next : m - 1) - k;  // rows that the next reflection does not sum
      update(slab_row(w, k + 1), ld, before, now.u, f);
      if (next < n) {
        sum = update_and_dot(slab_row(w, next + 1), ld, m - next - 1, now.u + before, f, list[next].u,
                             begin_dot<V>(slab_row(w, next), ld, list[next].up));
      }
    }
    k = next;
  }
}

}  // namespace tnla_kernels::TNLA_SET
