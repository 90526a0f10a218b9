// SPDX-License-Identifier: MIT

#include "qr.h"

#include <cstdint>

#include "qr_panel.h"
#include "slab.h"
#include "slab_reflection.h"
#include "slab_substitution.h"

namespace tnla_kernels::TNLA_SET {

namespace {

static_assert(kLanes <= kQrLanes && kPanel * kLanes <= kQrColumns && kGroup * kLanes <= kQrColumns);

// The first whole cache line.
double* aligned(double* scratch) {
  constexpr std::uintptr_t kDoubles = 8;
  const std::uintptr_t behind_line = reinterpret_cast<std::uintptr_t>(scratch) / sizeof(double) % kDoubles;
  return scratch + (kDoubles - behind_line) % kDoubles;
}

// The distance of two slabs; qr_scratch has room for it.  The gap keeps their rows, which are often a power
// of two apart, from competing for a place in the cache: 128 to 512 columns gain 1 to 2%.
Index leading_dimension(Index m) { return m * kLanes + 8 * (kLanes - 1); }

// n_cols columns from `first` on to slabs.  A last slab that is not full repeats the last column, so that
// no lane holds what none of the columns does.
void fill_slabs(Index n_rows, const QrColumns& columns, Index first, Index n_cols, double* slabs,
                Index ld) {
  for (Index c = 0; c < n_cols; c += kLanes) {
    const double* from[kLanes];
    for (Index l = 0; l < kLanes; ++l) from[l] = columns[first + smaller(c + l, n_cols - 1)];
    double* __restrict const slab = slabs + c / kLanes * ld;
    for (Index i = 0; i < n_rows; ++i) {
      for (Index l = 0; l < kLanes; ++l) slab[i * kLanes + l] = from[l][i];
    }
  }
}

void apply_to_slabs(Index m, Index n, const StoredReflection* list, double* slabs, Index ld,
                    Index n_slabs) {
  for (Index group; n_slabs > 0; n_slabs -= group, slabs += group * ld) {
    group = next_group(n_slabs);
    for_count(group, [&](auto count) { apply_list<count.value>(m, n, list, slabs, ld); });
  }
}

// The columns that are factored together, of n that are left.  Panel by panel, each takes all reflections
// before it while it is in the cache.
Index panel_width(Index n) {
  const Index n_slabs = slabs_for(n);
  return n_slabs <= kPanel ? n : next_group(n_slabs) * kLanes;
}

void factor(Index m, const QrColumns& columns, double* w, Index ldw, StoredReflection* made,
            double* scratch) {
  double* const slabs = aligned(scratch);
  const Index ld = leading_dimension(m);
  const Index d = smaller(columns.n, larger(m, 1) - 1);
  const Index n = columns.n + columns.p;
  for (Index first = 0, width; first < n; first += width) {
    width = panel_width(n - first);
    fill_slabs(m, columns, first, width, slabs, ld);
    apply_to_slabs(m, smaller(first, d), made, slabs, ld, slabs_for(width));
    Panel panel(m, width, slabs, ld);
    Index j = first;
    for (; j < smaller(first + width, d); ++j) made[j] = panel.reduce(j - first, j, w + j * ldw + j);
    panel.finish(j - first, j);
    for (Index c = 0; c < width; ++c) {
      const Index column = first + c;
      const Index rows = column < d ? column : m;  // of a pivot's column the panel has stored the others
      empty_lane(rows, slab_lane(slabs, ld, c), w + column * ldw);
    }
  }
}

void solve(Index m, Index n_reflections, const StoredReflection* list, Index n, const double* r, Index ldr,
           Index p, const double* b, Index ldb, double* x, Index ldx, double* scratch) {
  double* const slabs = aligned(scratch);
  const Index ld = leading_dimension(m);
  const QrColumns columns = {0, nullptr, 0, p, b, ldb};
  for (Index first = 0, width; first < p; first += width) {
    const Index n_slabs = next_group(slabs_for(p - first));
    width = smaller(n_slabs * kLanes, p - first);
    fill_slabs(m, columns, first, width, slabs, ld);
    for_count(n_slabs, [&](auto count) {
      apply_list<count.value>(m, n_reflections, list, slabs, ld);
      substitute_back<count.value>(n, r, ldr, slabs, ld);
    });
    for (Index c = 0; c < width; ++c) empty_lane(n, slab_lane(slabs, ld, c), x + (first + c) * ldx);
  }
}

}  // namespace

QrKernels qr_kernels() { return {factor, solve}; }

}  // namespace tnla_kernels::TNLA_SET
