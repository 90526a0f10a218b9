// SPDX-License-Identifier: MIT

#include "band.h"
#include "band_reflection.h"
#include "simd.h"

// In column i the rows of the old triangle below row i hold +0.0, so u is +0.0 there.  A reflection of all
// rows from i on therefore does to the pivot row and the new rows what one of these alone does, and
// nothing to the old rows:
//
//   - the largest magnitude: +0.0 is never strictly greater;
//   - the scaled squares: the factor 1/c is finite or the sum is NaN anyway, and +0.0 added to a sum that
//     is not negative leaves it as it is;
//   - the sum of products: w * +0.0 is a zero if w is finite, and changes at most the sign of a sum that
//     is zero.  Such a sum is one that leaves the column alone, whatever its sign;
//   - the change: w + f * +0.0 is w, unless w is -0.0, or f is not finite.
//
// So it is enough that the old rows are finite and without a -0.0, hold +0.0 below the diagonal, and that
// every factor f is finite.  check_old_row() and complete() look for it; a fold of which it is not true is
// given up.
namespace tnla_kernels::TNLA_SET::band {

namespace {

// New rows that stay in registers.  When this was introduced, 4 equations an unknown with bandwidth 16 and
// 2 right-hand sides, from a table, went from 818 to 727 ns an unknown.
constexpr Index kFewRows = 4;
static_assert(kFewRows < kBandExtra);

// Rows after which the chain of the next reflection and the change of this one take turns.
constexpr Index kChunk = 16;

class Fold {
 public:
  Fold(Index n_old, Index n_rows, Index bandwidth, double* rows, Index stride, double* scratch)
      : n_old_(n_old),
        n_rows_(n_rows),
        n_reflections_(smaller(bandwidth, n_rows - 1)),
        rows_(rows),
        stride_(stride),
        columns_{scratch, scratch + n_rows + kBandExtra} {}

  bool run() {
    if (n_reflections_ > 0) build_first();
    if (n_rows_ - n_old_ <= kFewRows && !has_negative_zero(n_old_, n_rows_)) {
      few_rows();
    } else {
      for (Index i = 0; i < n_reflections_; ++i) step(i);
    }
    for (Index i = larger(n_reflections_, 0); i < n_old_; ++i) check_old_row(i);
    return !any(odd_) && !any(not_finite_ != 0.0);
  }

 private:
  double* row(Index i) const { return rows_ + i * stride_; }

  Index first_below(Index i) const { return larger(i + 1, n_old_); }

  Reflection reflection(Index i, const double* u) const {
    const Index below = first_below(i);
    return {row(i), row(below), stride_, n_rows_ - below, u};
  }

  bool has_negative_zero(Index begin, Index end) const {
    Mask found{};
    for (const double* p = row(begin); p < row(end); p += kLanes) found |= is_negative_zero(load(p));
    return any(found);
  }

  void build_first() {
    h_ = reflection(0, columns_[0]);
    double largest = std::fabs(h_.pivot[0]);
    for (Index e = 0; e < h_.n; ++e) {
      columns_[0][e] = h_.rows[e * stride_];
      largest = larger_magnitude(columns_[0][e], largest);
    }
    h_.begin(h_.pivot[0], largest);
    h_.add_squares(0, h_.n);
    h_.finish();
  }

  // Applies reflection i, and builds the next one while the change of the rows is under way: its chain of
  // operations, a division, a sum, a root, a division, is what a fold waits for.
  void step(Index i) {
    const bool is_last = i + 1 == n_reflections_;
    Change change;
    change.start(h_, (i + 1) / kLanes * kLanes, stride_);
    double lead = is_last ? 0.0 : h_.pivot[i + 1] * h_.up;
    for (Index from = 0; from < h_.n; from += kChunk) {
      const Index to = smaller(from + kChunk, h_.n);
      if (!is_last) lead = add_products_of_column(i + 1, from, to, lead);
      change.add_products(h_, from, to);
    }
    Reflection next = is_last ? h_ : begin_next(i + 1, lead);
    complete(i, change);
    for (Index from = 0; from < h_.n; from += kChunk) {
      const Index to = smaller(from + kChunk, h_.n);
      if (!is_last) next.add_squares(from, smaller(to, next.n));
      change.update_rows(h_, from, to);
    }
    if (!is_last) next.finish();
    check_old_row(i);
    change.update_pivot(h_);
    apply_from(change.begin + change.n_vec * kLanes, i);
    h_.pivot[i] = h_.s;
    h_ = next;
  }

  // The same for up to kFewRows new rows, which stay in registers.  Rows of zeros fill them up: they change
  // as little as those of the old triangle.  No row holds a -0.0, and none comes up: so what a sum of 0
  // adds changes nothing, and need not be left out.
  void few_rows() {
    for (double* p = row(n_rows_); p < row(n_rows_ + kFewRows); p += kLanes) store(p, Lanes{});
    for (double* const u : columns_) {
      for (Index e = larger(h_.n, 0); e <= kFewRows; ++e) u[e] = 0.0;
    }
    Reflection h = h_;
    for (Index i = 0; i < n_reflections_; ++i) {
      Reflection next = h;
      if (i + 1 < n_reflections_) next = build_next(i + 1, h);
      check_old_row(i);
      if (h.scale != 0.0) apply(i, h);
      h.pivot[i] = h.s;
      h = next;
    }
  }

  void apply(Index i, const Reflection& h) {
    constexpr Index n = kFewRows;
    Lanes u[n];
    for (Index e = 0; e < n; ++e) u[e] = splat(h.u[e]);
    for (Index c = (i + 1) / kLanes * kLanes; c < stride_; c += kLanes) {
      double* const w = h.rows + c;
      const Lanes pivot = load(h.pivot + c);
      Lanes rows[n];
      Lanes sum = pivot * h.up;
      for (Index e = 0; e < n; ++e) {
        rows[e] = load(w + e * stride_);
        sum += rows[e] * u[e];
      }
      const Lanes factor = sum * h.scale;
      not_finite_ += factor - factor;
      store(h.pivot + c, pivot + factor * h.up);
      for (Index e = 0; e < n; ++e) store(w + e * stride_, rows[e] + factor * u[e]);
    }
  }

  // Reflection i, from its column, to which the one before is applied here.
  Reflection build_next(Index i, const Reflection& h) {
    constexpr Index n = kFewRows;
    const double* const rows = h.rows + i;
    double product = h.pivot[i] * h.up;
    for (Index e = 0; e < n; ++e) product += rows[e * stride_] * h.u[e];
    double entries[n];
    for (Index e = 0; e < n; ++e) entries[e] = rows[e * stride_];
    if (h.scale != 0.0) {
      const double factor = product * h.scale;
      for (Index e = 0; e < n; ++e) entries[e] += factor * h.u[e];
    }
    double* const u = columns_[i % 2];
    for (Index e = 0; e < n; ++e) u[e] = entries[e];
    const Index is_new = i >= n_old_ ? 1 : 0;  // the pivot is one of the rows that change
    Reflection next = reflection(i, u + is_new);
    const double pivot = is_new == 1 ? entries[0] : next.pivot[i];
    double largest = std::fabs(pivot);  // the pivot once more, where it is new, does no harm
    for (Index e = 0; e < n; ++e) largest = larger_magnitude(entries[e], largest);
    next.begin(pivot, largest);
    if (is_new == 0) next.sum += (entries[0] * next.inverse) * (entries[0] * next.inverse);
    for (Index e = 1; e < n; ++e) next.sum += (entries[e] * next.inverse) * (entries[e] * next.inverse);
    next.finish();
    return next;
  }

  double add_products_of_column(Index column, Index from, Index to, double sum) const {
    const double* entry = h_.rows + from * stride_ + column;
    const double* const u = h_.u;
    for (Index e = from; e < to; ++e, entry += stride_) sum += *entry * u[e];
    return sum;
  }

  // Reflection i from its column, to which the one before is applied here: the vectors come later.
  Reflection begin_next(Index i, double product) {
    const bool applies = product != 0.0 && h_.scale != 0.0;
    const double factor = product * h_.scale;
    double* const u = columns_[i % 2];
    const double* const rows = h_.rows + i;
    const auto updated = [&, old_u = h_.u, stride = stride_](Index e) {
      const double entry = rows[e * stride];
      return u[e] = applies ? entry + factor * old_u[e] : entry;
    };
    const Index is_new = i >= n_old_ ? 1 : 0;  // the pivot is one of the rows that change
    Reflection next = reflection(i, u + is_new);
    const double pivot = is_new == 1 ? updated(0) : next.pivot[i];
    double largest = std::fabs(pivot);
    for (Index e = is_new; e < h_.n; ++e) largest = larger_magnitude(updated(e), largest);
    next.begin(pivot, largest);
    return next;
  }

  void complete(Index i, Change& change) {
    change.complete(h_);
    for (Index g = 0; g < change.n_vec; ++g) {
      change.live[g] &= numbers_from(change.begin + g * kLanes) > i - Mask{};
      not_finite_ += select(change.live[g], change.factor[g] - change.factor[g], Lanes{});
    }
  }

  // The vectors from `begin` on.  Inlined, for wide bands only, it would add 13 KB to the module.
  [[gnu::noinline]] void apply_from(Index begin, Index i) {
    for (; begin < stride_; begin += kSideBySide * kLanes) {
      Change change;
      change.start(h_, begin, stride_);
      change.add_products(h_, 0, h_.n);
      complete(i, change);
      change.update_rows(h_, 0, h_.n);
      change.update_pivot(h_);
    }
  }

  void check_old_row(Index i) {
    if (i >= n_old_) return;
    const double* const w = row(i);
    for (Index c = 0; c < stride_; c += kLanes) {
      const Lanes v = load(w + c);
      odd_ |= is_negative_zero(v) | (bits_of(v) & (numbers_from(c) < i - Mask{}));
      not_finite_ += v - v;
    }
  }

  Index n_old_;
  Index n_rows_;
  Index n_reflections_;
  double* rows_;
  Index stride_;
  double* columns_[2];  // u of the reflections of even and of odd columns
  Reflection h_;
  Mask odd_{};
  Lanes not_finite_{};
};

}  // namespace

bool fold(Index n_old, Index n_rows, Index bandwidth, double* rows, Index stride, double* scratch) {
  return Fold(n_old, n_rows, bandwidth, rows, stride, scratch).run();
}

void eliminate(Index column, Index n, double* pivot, double* rows, Index stride, double* u) {
  Reflection h{pivot, rows, stride, n, u};
  double largest = std::fabs(pivot[column]);
  for (Index e = 0; e < n; ++e) {
    u[e] = rows[e * stride + column];
    rows[e * stride + column] = 0.0;
    largest = larger_magnitude(u[e], largest);
  }
  h.begin(pivot[column], largest);
  h.add_squares(0, n);
  h.finish();
  for (Index begin = 0; begin < stride; begin += kSideBySide * kLanes) {
    Change change;
    change.start(h, begin, stride);
    change.add_products(h, 0, n);
    change.complete(h);
    for (Index g = 0; g < change.n_vec; ++g) {
      change.live[g] &= numbers_from(begin + g * kLanes) != column - Mask{};
    }
    change.update_rows(h, 0, n);
    change.update_pivot(h);
  }
  pivot[column] = h.s;
}

}  // namespace tnla_kernels::TNLA_SET::band
