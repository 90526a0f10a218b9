// SPDX-License-Identifier: MIT

#include "rank_revealing.h"
#include "reflection_chain.h"
#include "simd.h"

// What follows the triangularisation: the reflections from the right, and the solve.
namespace tnla_kernels::TNLA_SET {

namespace {

constexpr Index kSlabs = 4;  // taken through a chain at once
static_assert(kSlabs * kLanes <= kTogether);

// Columns side by side and their pending sums, in scratch.
struct Chain {
  Index n_cols;
  Index n_slabs;
  Slabs w;
  double* sums;
  Pending nothing;

  Chain(Index n_rows, Index columns, double* scratch)
      : n_cols(columns),
        n_slabs(slabs_for(columns)),
        w(slabs_in(scratch, n_rows)),
        sums(w.data + n_slabs * w.ld),
        nothing(nothing_pending(n_rows, sums + n_slabs * kLanes, n_slabs, sums)) {}

  Columns from(Index row) const { return {n_slabs, w.row(0, row), w.ld, sums, nullptr}; }
};

Link link_of(const Reflections& all, Index i, Index n) {
  return {all.u + i * all.ld, n, all.up[i], all.scale[i]};
}

}  // namespace

void apply_left(Index k, Index m, Index p, const Reflections& left, const double* b, double* x, Index ldx,
                double* scratch) {
  for (Index c = 0; c < p; c += kSlabs * kLanes) {
    const Chain columns(m, smaller(p - c, kSlabs * kLanes), scratch);
    const Slabs& w = columns.w;
    fill_slabs(m, columns.n_cols, b + c * m, m, w);
    Pending pending = columns.nothing;
    const double* at_pivot = nullptr;
    for (Index j = 0; j < k; ++j) {  // later reflections leave the first k rows as they are
      const Link link = link_of(left, j, m - j - 1);
      apply_link(link, pending, {w.row(0, j), w.ld, at_pivot}, columns.from(j + 1));
      at_pivot = link.u;
      pending = {link.u + 1, link.scale};
    }
    empty_slabs(k, columns.n_cols, w, x + c * ldx, ldx);
  }
}

void turn(Index k, Index n, Index p, const Reflections& right, double* x, double* scratch) {
  for (Index c = 0; c < p; c += kSlabs * kLanes) {
    const Chain columns(n, smaller(p - c, kSlabs * kLanes), scratch);
    const Slabs& w = columns.w;
    fill_slabs(n, columns.n_cols, x + c * n, n, w);
    Pending pending = columns.nothing;
    for (Index i = 0; i < k; ++i) {
      const Link link = link_of(right, i, n - k);
      apply_link(link, pending, {w.row(0, i), w.ld, nullptr}, columns.from(k));
      pending = {link.u, link.scale};
    }
    settle(n - k, pending, columns.from(k));
    empty_slabs(n, columns.n_cols, w, x + c * n, n);
  }
}

namespace {

// The rows 0 ... k-1 of [R S] wait for the reflections from the right side by side in the lanes, S in
// slabs. They are turned in blocks, which stay in the cache: first by the reflections of the rows below the
// block, then by those of its own rows.
class Compression {
 public:
  Compression(Index k, Index m, Index n, double* r, const Reflections& right, double* scratch)
      : k_(k), m_(m), n_(n - k), r_(r), right_(right), rows_(n - k, k, scratch) {
    const double* const s = r + k * m;
    const Index padded = rows_.n_slabs * kLanes;
    for (Index l = 0; l < n_; ++l) {
      for (Index i = 0; i < k; ++i) rows_.w.column(i)[l * kLanes] = s[l * m + i];
      for (Index i = k; i < padded; ++i) rows_.w.column(i)[l * kLanes] = kDead;
    }
  }

  void run() {
    for (Index end = k_; end > 0;) {
      const Index begin = (end - 1) / (kSlabs * kLanes) * (kSlabs * kLanes);
      turn_block(begin, end);
      end = begin;
    }
  }

 private:
  void turn_block(Index begin, Index end) {
    pending_ = rows_.nothing;
    for (Index i = k_ - 1; i >= end; --i) apply(i, begin, end);
    for (Index i = end - 1; i >= begin; --i) {
      take_row(i);
      build_reflection(r_[i * m_ + i], n_, right_.u + i * right_.ld, right_.up[i], right_.scale[i]);
      apply(i, begin, i);
    }
  }

  // Number i to the rows begin ... end - 1.
  void apply(Index i, Index begin, Index end) {
    double pivots[kSlabs * kLanes];
    double* const column = r_ + i * m_ + begin;
    const Index n_rows = end - begin;
    const Index first = begin / kLanes;
    const Index n_slabs = slabs_for(n_rows);
    for (Index t = 0; t < n_slabs * kLanes; ++t) pivots[t] = t < n_rows ? column[t] : kDead;
    const Link link = link_of(right_, i, n_);
    apply_link(link, pending_, {pivots, kLanes, nullptr},
               {n_slabs, rows_.w.row(first, 0), rows_.w.ld, rows_.sums + begin, nullptr});
    for (Index t = 0; t < n_rows; ++t) column[t] = pivots[t];
    pending_ = {link.u, link.scale};
  }

  // Brings row i up to date and to the ranges of the reflections.
  void take_row(Index i) {
    settle_column(n_, rows_.w.column(i), rows_.sums[i], pending_, right_.u + i * right_.ld);
  }

  Index k_;
  Index m_;
  Index n_;  // columns of S
  double* r_;
  const Reflections& right_;
  Chain rows_;
  Pending pending_ = rows_.nothing;
};

}  // namespace

void compress(Index k, Index m, Index n, double* r, const Reflections& right, double* scratch) {
  Compression(k, m, n, r, right, scratch).run();
}

}  // namespace tnla_kernels::TNLA_SET
