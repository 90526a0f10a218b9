#include "qr.h"

#include <cstdint>

#include "qr_panel.h"
#include "slab.h"
#include "slab_reflection.h"
#include "slab_substitution.h"

namespace tnla_kernels::TNLA_SET {

namespace {

double* aligned(double* scratch) {
  constexpr std::uintptr_t kLine = 64;
  return reinterpret_cast<double*>((reinterpret_cast<std::uintptr_t>(scratch) + kLine - 1) / kLine * kLine);
}

Index leading_dimension(Index m) { return m * kLanes + 8 * (kLanes - 1); }

void apply_to_slabs(Index m, Index n, const StoredReflection* list, double* slabs, Index ld,
                    Index n_slabs) {
  for (Index group; n_slabs > 0; n_slabs -= group, slabs += group * ld) {
    group = next_group(n_slabs);
    for_count(group, [&](auto count) { apply_list<count.value>(m, n, list, slabs, ld); });
  }
}

// Column j of R: the rows above its diagonal, or all where the column is no pivot.
void store_factored(Index m, Index first, Index n_cols, Index d, const double* slabs, Index ld, double* a,
                    Index lda) {
  for (Index c = 0; c < n_cols; c += kLanes) {
    const double* const slab = slabs + c / kLanes * ld;
    const Index n = smaller(kLanes, n_cols - c);
    const Index j = first + c;
    double* const column = a + j * lda;
    const Index shared = j < d ? j : m;
    empty_slab(shared, n, slab, column, lda);
    for (Index l = 1; l < n; ++l) {
      const Index rows = j + l < d ? j + l : m;
      for (Index i = shared; i < rows; ++i) column[l * lda + i] = slab_row(slab, i)[l];
    }
  }
}

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
    fill_slabs(
        m, width, [&](Index c) { return columns[first + c]; }, slabs, ld);
    apply_to_slabs(m, smaller(first, d), made, slabs, ld, slabs_for(width));
    Panel panel(m, width, slabs, ld);
    Index j = first;
    for (; j < smaller(first + width, d); ++j) made[j] = panel.reduce(j - first, j, w + j * ldw + j);
    panel.finish(j - first, j);
    store_factored(m, first, width, d, slabs, ld, w, ldw);
  }
}

void solve(Index m, Index n_reflections, const StoredReflection* list, Index n, const double* r, Index ldr,
           Index p, const double* b, Index ldb, double* x, Index ldx, double* scratch) {
  double* const slabs = aligned(scratch);
  const Index ld = leading_dimension(m);
  for (Index first = 0, width; first < p; first += width) {
    const Index n_slabs = next_group(slabs_for(p - first));
    width = smaller(n_slabs * kLanes, p - first);
    fill_slabs(
        m, width, [&](Index c) { return b + (first + c) * ldb; }, slabs, ld);
    for_count(n_slabs, [&](auto count) {
      apply_list<count.value>(m, n_reflections, list, slabs, ld);
      substitute_back<count.value>(n, r, ldr, slabs, ld);
    });
    for (Index c = 0; c < width; c += kLanes) {
      empty_slab(n, smaller(kLanes, width - c), slabs + c / kLanes * ld, x + (first + c) * ldx, ldx);
    }
  }
}

}  // namespace

QrKernels qr_kernels() { return {factor, solve}; }

}  // namespace tnla_kernels::TNLA_SET
