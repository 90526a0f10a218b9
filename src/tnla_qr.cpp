// SPDX-License-Identifier: MIT

#include "tnla_qr.h"

#include "kernels/full_rank.h"
#include "kernels/kernel_set.h"

using tnla_kernels::Index;
using tnla_kernels::QrColumns;

namespace {

// The distance of two columns of m rows: an odd number of cache lines, so that the entries of a row do not
// compete for the same places in the cache.
std::size_t leading_dimension(std::size_t m) { return 8 * ((m + 7) / 8 | 1); }

}  // namespace

bool tnla_has_full_rank(const double* r, std::size_t ldr, std::size_t d) {
  tnla_kernels::FullRank rank;
  for (std::size_t i = 0; i < d; ++i) rank.take(r[i * (ldr + 1)]);
  return rank.verdict();
}

TnLaQrSystem::TnLaQrSystem(std::size_t m, std::size_t n, const double* a, std::size_t p, const double* b,
                           std::size_t ldb)
    : n_(n),
      p_(p),
      ld_(leading_dimension(m)),
      scratch_(m, n + p, n, ld_ * (n + p)),
      reduced_(scratch_.more()) {
  const auto rows = static_cast<Index>(m);
  const QrColumns columns = {static_cast<Index>(n), a, rows,
                             static_cast<Index>(p), b, static_cast<Index>(ldb)};
  tnla_kernels::best.qr.factor(rows, columns, reduced_, static_cast<Index>(ld_), scratch_.reflections(),
                               scratch_.slabs());
  full_rank_ = tnla_has_full_rank(reduced_, ld_, n);
}

void TnLaQrSystem::solve_into(double* x) {
  const auto n = static_cast<Index>(n_);
  const auto ld = static_cast<Index>(ld_);
  tnla_kernels::best.qr.solve(n, 0, nullptr, n, reduced_, ld, static_cast<Index>(p_), reduced_ + n_ * ld_,
                              ld, x, n, scratch_.slabs());
}

bool tnla_qr_diagonal(std::size_t n, const double* a, double* diagonal) {
  const std::size_t ld = leading_dimension(n);
  TnLaQrScratch scratch(n, n, n, ld * n);
  double* const r = scratch.more();
  const auto order = static_cast<Index>(n);
  tnla_kernels::best.qr.factor(order, {order, a, order, 0, nullptr, 0}, r, static_cast<Index>(ld),
                               scratch.reflections(), scratch.slabs());
  for (std::size_t i = 0; i < n; ++i) diagonal[i] = r[i * (ld + 1)];
  return tnla_has_full_rank(r, ld, n);
}
