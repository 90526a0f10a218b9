// SPDX-License-Identifier: MIT

#include <algorithm>

#include "kernels/kernel_set.h"
#include "tnla_access.h"
#include "tnla_instances.h"
#include "tnla_qr.h"
#include "tnla_reflections.h"
#include "tnlaqrdecompo_i.h"

using tnla_kernels::Index;

namespace {

constexpr char kFile[] = "src/tnlaqrdecompo.cpp";

// A = Q R: R replaces the m x n elements, and the reflections go to the list.
[[gnu::noinline]] void triangularize(std::size_t m, std::size_t n, double* a,
                                     TnArray<TnLaHouseholder*>& list) {
  const std::size_t n_reflections = std::min(m, n + 1) - 1;  // the last row has nothing below it
  TnLaQrScratch scratch(m, n, n_reflections);
  const auto rows = static_cast<Index>(m);
  tnla_kernels::best.qr.factor(rows, {static_cast<Index>(n), a, rows, 0, nullptr, 0}, a, rows,
                               scratch.reflections(), scratch.slabs());
  tnla_keep_reflections(list, m, n_reflections, scratch.reflections());
  for (std::size_t j = 0; j < n_reflections; ++j) std::fill_n(a + j * m + j + 1, m - j - 1, 0.0);
}

// X = R^-1 Q' B for the m x n matrix with these reflections and this R.
[[gnu::noinline]] void solve_by(const TnArray<TnLaHouseholder*>& list, std::size_t m, std::size_t n,
                                const double* r, std::size_t p, const double* b, std::size_t ldb,
                                double* x) {
  const std::size_t n_reflections = list.size();
  TnLaQrScratch scratch(m, p, n_reflections);
  for (std::size_t j = 0; j < n_reflections; ++j) scratch.reflections()[j] = TnLaAccess::stored(*list[j]);
  const auto rows = static_cast<Index>(m);
  const auto order = static_cast<Index>(n);
  tnla_kernels::best.qr.solve(rows, static_cast<Index>(n_reflections), scratch.reflections(), order, r,
                              rows, static_cast<Index>(p), b, static_cast<Index>(ldb), x, order,
                              scratch.slabs());
}

}  // namespace

template <class M>
TnLaTQRDecompo<M>::TnLaTQRDecompo() : full_rank_(false), R_(nullptr) {}

// Delegates, so that the destructor frees what is there if a later allocation fails.
template <class M>
TnLaTQRDecompo<M>::TnLaTQRDecompo(const M& A) : TnLaTQRDecompo() {
  R_ = new M(A);
  double* const r = TnLaAccess::elements(*R_);
  if (!R_->empty()) triangularize(R_->n_rows(), R_->n_cols(), r, trafos_);
  full_rank_ = tnla_has_full_rank(r, R_->n_rows(), std::min(R_->n_rows(), R_->n_cols()));
}

template <class M>
TnLaTQRDecompo<M>::~TnLaTQRDecompo() {
  delete R_;
  tnla_delete_reflections(trafos_);
}

template <class M>
const M& TnLaTQRDecompo<M>::R() const {
  return *R_;
}

template <class M>
const TnLaHouseholder& TnLaTQRDecompo<M>::T(int i) const {
  return *trafos_[static_cast<std::size_t>(i)];
}

template <class M>
int TnLaTQRDecompo<M>::n_trafo() const {
  return static_cast<int>(trafos_.size());
}

template <class M>
bool TnLaTQRDecompo<M>::full_rank() const {
  return full_rank_;
}

template <class M>
bool TnLaTQRDecompo<M>::solve(const M& B, M& X) const {
  const std::size_t m = R_->n_rows();
  const std::size_t n = R_->n_cols();
  TN_ASSERT(kFile, B.n_rows() == m);
  X.resize(n, B.n_cols(), true);
  const bool too_short = B.n_rows() < m && B.n_cols() > 0;
  if (m < n || !full_rank_ || too_short) return false;
  solve_by(trafos_, m, n, TnLaAccess::elements(*R_), B.n_cols(), TnLaAccess::elements(B), B.n_rows(),
           TnLaAccess::elements(X));
  return true;
}

#define TNLA_INSTANTIATE(M) template class TnLaTQRDecompo<M>;
TNLA_FOR_ALL_MATRICES(TNLA_INSTANTIATE)
#undef TNLA_INSTANTIATE
