// SPDX-License-Identifier: MIT

#pragma once

#include <cmath>

#include "reflection.h"
#include "slab_reflection.h"

// The columns of a few slabs, made into reflections one after the other.
//
// Column j waits for the update by reflection j-1, for its largest entry, for the sum of its squares, and
// then all later columns for their sums with it.  So reflection j-1 reaches
//
//     the slab of column j      first, in a pass that copies the column out and finds its largest,
//     the slabs near it         in the shadow of the sum of squares,
//     the slabs far from it     last, in the pass that takes their sums with column j.
//
// Two chains a column, its sum with the column before it and the sum of its squares, follow each other
// and cannot be shortened.
namespace tnla_kernels::TNLA_SET {

// Slabs at most.  A matrix that fits is one panel: 25 columns then take 1.5 us, and 1.7 us in two panels.
inline constexpr Index kPanel = 10;

// Copies one lane of a slab to a column; its largest magnitude, where a NaN does not count.
inline double take_column(Index rows, const double* w, Index lane, double* column) {
  double largest = 0.0;
  for (Index i = 0; i < rows; ++i) {
    const double x = slab_row(w, i)[lane];
    column[i] = x;
    if (std::fabs(x) > largest) largest = std::fabs(x);
  }
  return largest;
}

inline Lanes magnitude(Lanes x) { return (Lanes)((Mask)x & INT64_MAX); }

// The same while x += f * u.
inline double update_and_take_column(Index rows, double* w, const double* u, Lanes f, Index lane,
                                     double* column) {
  Lanes largest{};
  for (Index i = 0; i < rows; ++i) {
    double* const p = slab_row(w, i);
    const Lanes x = load(p) + f * splat(u[i]);
    store(p, x);
    largest = select(magnitude(x) > largest, magnitude(x), largest);
    column[i] = p[lane];
  }
  return largest[lane];
}

inline double sum_squares(Index rows, const double* column, double inverse, double sum) {
  for (Index i = 0; i < rows; ++i) {
    const double scaled = column[i] * inverse;
    sum += scaled * scaled;
  }
  return sum;
}

// The same while x += f * u.
template <Index V>
inline double update_and_sum_squares(double* w, Index ld, Index rows, const double* u, Group<V> f,
                                     const double* column, double inverse, double sum) {
  for (Index i = 0; i < rows; ++i) {
    const double scaled = column[i] * inverse;
    sum += scaled * scaled;
    const Lanes ui = splat(u[i]);
    for (Index v = 0; v < V; ++v) {
      double* const x = slab_row(w + v * ld, i);
      store(x, load(x) + f.slab[v] * ui);
    }
  }
  return sum;
}

// Lanes of columns that are finished go on changing; what is stored was copied out before.
class Panel {
 public:
  Panel(Index m, Index n_cols, double* slabs, Index ld)
      : m_(m), n_cols_(n_cols), n_slabs_(slabs_for(n_cols)), slabs_(slabs), ld_(ld) {}

  // Makes the reflection of column c with the pivot in row j; `column` is where the rows from j on go.
  StoredReflection reduce(Index c, Index j, double* column) {
    const Index live = c + 1 < n_cols_ ? (c + 1) / kLanes : n_slabs_;  // slabs with columns to come
    const Index far = live + next_group(n_slabs_ - live);
    StoredReflection made{column + 1, 0.0, 0.0};

    const double largest = take(c, j, column);
    const double pivot = column[0];
    if (largest < kNoReflection) {
      update_pending(c / kLanes + 1, n_slabs_, j);
      pending_ = nullptr;
      return made;
    }
    const double inverse = 1.0 / largest;
    const double sum =
        sum_and_update(c / kLanes + 1, far, j, column, inverse, (pivot * inverse) * (pivot * inverse));
    double s = largest * std::sqrt(sum);
    if (pivot > 0.0) s = -s;
    made.up = pivot - s;
    column[0] = s;
    made.scale = reflection_scale(s, made.up);
    if (made.scale == 0.0) {
      update_pending(far, n_slabs_, j);
      pending_ = nullptr;
      return made;
    }
    take_sums(live, far, j, made);
    begin_update(live, c, j, made);
    return made;
  }

  // Brings the columns from c on up to date, of which row j is the first that is not.
  void finish(Index c, Index j) {
    update_pending(c / kLanes, n_slabs_, j);
    pending_ = nullptr;
  }

 private:
  double* row(Index slab, Index i) { return slab_row(slabs_ + slab * ld_, i); }

  template <Index V>
  Group<V> factors(Index slab) const {
    Group<V> f;
    for (Index v = 0; v < V; ++v) f.slab[v] = factor_[slab + v];
    return f;
  }

  template <Index V>
  void keep(Index slab, Group<V> sum) {
    for (Index v = 0; v < V; ++v) sum_[slab + v] = sum.slab[v];
  }

  double take(Index c, Index j, double* column) {
    const Index slab = c / kLanes;
    const Index lane = c % kLanes;
    double range;
    if (pending_ != nullptr) {
      update_and_take_column(1, row(slab, j), pending_, factor_[slab], lane, column);
      range = update_and_take_column(m_ - j - 1, row(slab, j + 1), pending_ + 1, factor_[slab], lane,
                                     column + 1);
    } else {
      take_column(1, row(slab, j), lane, column);
      range = take_column(m_ - j - 1, row(slab, j + 1), lane, column + 1);
    }
    const double pivot = std::fabs(column[0]);
    return range > pivot ? range : pivot;
  }

  double sum_and_update(Index slab, Index end, Index j, const double* column, double inverse, double sum) {
    const Index rows = m_ - j - 1;
    if (pending_ == nullptr || slab == end) return sum_squares(rows, column + 1, inverse, sum);
    for_count(end - slab, [&](auto count) {
      const auto f = factors<count.value>(slab);
      update(row(slab, j), ld_, 1, pending_, f);
      sum = update_and_sum_squares(row(slab, j + 1), ld_, rows, pending_ + 1, f, column + 1, inverse, sum);
    });
    return sum;
  }

  void update_pending(Index slab, Index end, Index j) {
    if (pending_ == nullptr) return;
    for (; slab < end; ++slab) update(row(slab, j), ld_, m_ - j, pending_, factors<1>(slab));
  }

  // The sums of the slabs from `slab` on with reflection j; those from `far` on are updated by the way.
  void take_sums(Index slab, Index far, Index j, const StoredReflection& made) {
    const Index rows = m_ - j - 1;
    for (Index n; slab < n_slabs_; slab += n) {
      n = slab < far ? far - slab : next_group(n_slabs_ - slab);
      for_count(n, [&](auto count) {
        constexpr Index V = count.value;
        double* const pivot_row = row(slab, j);
        if (pending_ != nullptr && slab >= far) {
          const auto f = factors<V>(slab);
          update(pivot_row, ld_, 1, pending_, f);
          keep(slab, update_and_dot(row(slab, j + 1), ld_, rows, pending_ + 1, f, made.u,
                                    begin_dot<V>(pivot_row, ld_, made.up)));
        } else {
          keep(slab, dot(row(slab, j + 1), ld_, rows, made.u, begin_dot<V>(pivot_row, ld_, made.up)));
        }
      });
    }
  }

  // Turns the sums into factors, and updates the pivot's row; the rows below it wait.
  void begin_update(Index live, Index c, Index j, const StoredReflection& made) {
    Mask any_zero{};
    for (Index v = live; v < n_slabs_; ++v) {
      zero_[v] = sum_[v] == Lanes{};
      if (v == c / kLanes) {
        for (Index l = 0; l <= c % kLanes; ++l) zero_[v][l] = 0;  // columns that are finished
      }
      any_zero |= zero_[v];
      factor_[v] = sum_[v] * splat(made.scale);
    }
    const bool skips = any(any_zero);
    for (Index v = live; v < n_slabs_; ++v) {
      update_unless(zero_[v], row(v, j), 1, &made.up, factor_[v]);
      if (skips) update_unless(zero_[v], row(v, j + 1), m_ - j - 1, made.u, factor_[v]);
    }
    pending_ = skips || live == n_slabs_ ? nullptr : made.u;
  }

  Index m_;
  Index n_cols_;
  Index n_slabs_;
  double* slabs_;
  Index ld_;
  const double* pending_ = nullptr;  // the range of a reflection by which the slabs have to be updated
  Lanes sum_[kPanel];
  Lanes factor_[kPanel];
  Mask zero_[kPanel];
};

}  // namespace tnla_kernels::TNLA_SET
