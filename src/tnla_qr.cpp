#include "tnla_qr.h"

#include <algorithm>

#include "kernels/full_rank.h"
#include "kernels/kernel_set.h"

using tnla_kernels::Index;

namespace {

// A = Q R for the first n columns of the m x n_total matrix, and Q' of the others.
void triangularize(std::size_t m, std::size_t n, std::size_t n_total, double* a) {
  for (std::size_t j = 0; j < n && j + 1 < m; ++j) {
    double* const pivot = a + j * (m + 1);
    const auto range = static_cast<Index>(m - j - 1);
    double up = 0.0;
    if (!tnla_kernels::best.reflection.make(*pivot, range, pivot + 1, 1, up)) continue;
    const double scale = tnla_kernels::reflection_scale(*pivot, up);
    if (scale == 0.0) continue;
    tnla_kernels::best.reflection.reflect(up, pivot + 1, 1, range, scale, pivot + m, pivot + m + 1, 1,
                                          static_cast<Index>(m), static_cast<Index>(n_total - j - 1));
  }
}

}  // namespace

bool tnla_has_full_rank(const double* r, std::size_t ldr, std::size_t d) {
  tnla_kernels::FullRank rank;
  for (std::size_t i = 0; i < d; ++i) rank.take(r[i * (ldr + 1)]);
  return rank.verdict();
}

TnLaQrSystem::TnLaQrSystem(std::size_t m, std::size_t n, const double* a, std::size_t p, const double* b,
                           std::size_t ldb)
    : m_(m), n_(n), p_(p), work_(new double[m * (n + p)]) {
  std::copy_n(a, m * n, work_.get());
  for (std::size_t c = 0; c < p; ++c) std::copy_n(b + c * ldb, m, work_.get() + (n + c) * m);
  triangularize(m, n, n + p, work_.get());
  full_rank_ = tnla_has_full_rank(work_.get(), m, n);
}

void TnLaQrSystem::solve_into(double* x) {
  double* const w = work_.get() + n_ * m_;
  const auto m = static_cast<Index>(m_);
  tnla_kernels::best.triangular.back_substitute(static_cast<Index>(n_), work_.get(), m, w, m,
                                                static_cast<Index>(p_));
  for (std::size_t c = 0; c < p_; ++c) std::copy_n(w + c * m_, n_, x + c * n_);
}

bool tnla_qr_diagonal(std::size_t n, const double* a, double* diagonal) {
  const std::unique_ptr<double[]> work(new double[n * n]);
  std::copy_n(a, n * n, work.get());
  triangularize(n, n, n, work.get());
  for (std::size_t i = 0; i < n; ++i) diagonal[i] = work[i * (n + 1)];
  return tnla_has_full_rank(work.get(), n, n);
}
