// SPDX-License-Identifier: MIT

#include "tnlathftidecompo.h"

#include <algorithm>
#include <cmath>
#include <type_traits>

#include "kernels/kernel_set.h"
#include "tnla_access.h"
#include "tnla_instances.h"

using tnla_kernels::best;
using tnla_kernels::columns_scratch;
using tnla_kernels::Index;

namespace {

constexpr char kFile[] = "src/tnlathftidecompo.cpp";

std::size_t doubles(Index n) { return static_cast<std::size_t>(n) * sizeof(double); }

// R or W with the ranges, up and scale of at most d reflections from either side, and the interchanges.
std::size_t decomposition_size(Index m, Index n) {
  const Index d = std::min(m, n);
  return doubles(m * n + 4 * d) + static_cast<std::size_t>(d) * sizeof(int);
}

std::size_t scratch_size(Index n_rows, Index n_cols) {
  return doubles(columns_scratch(n_rows, std::min(n_cols, tnla_kernels::kTogether)));
}

}  // namespace

TnLaRankRevealing::TnLaRankRevealing(Index m, Index n, const double* a, double tol)
    : m_(m), n_(n), d_(std::min(m, n)), block_(decomposition_size(m, n)) {
  const std::size_t d = static_cast<std::size_t>(d_);
  r_ = block_.take<double>(static_cast<std::size_t>(m * n));
  left_ = {r_ + 1, m_ + 1, block_.take<double>(d), block_.take<double>(d)};
  right_ = {nullptr, 0, block_.take<double>(d), block_.take<double>(d)};
  perm_ = block_.take<int>(d);

  TnLaWorkspace scratch(doubles(columns_scratch(m_, n_)));
  best.rank_revealing.triangularize(m_, n_, a, r_, left_, perm_,
                                    scratch.doubles());  // Q A P = [R S; 0 e]
  rank_ = pseudo_rank(tol);  // e is noise: the diagonal reaches tol up to rank_ only
  if (rank_ < n_) {          // [R S] K = [W 0], for the shortest solution
    right_.u = r_ + rank_ * m_;
    right_.ld = n_ - rank_;
    TnLaWorkspace rows(doubles(columns_scratch(n_ - rank_, rank_)));
    best.rank_revealing.compress(rank_, m_, n_, r_, right_, rows.doubles());
  }
}

std::size_t TnLaRankRevealing::solve_scratch(Index p) const { return scratch_size(std::max(m_, n_), p); }

std::size_t TnLaRankRevealing::basis_scratch(Index n_cols) const { return scratch_size(n_, n_cols); }

// The number of diagonal entries before the first one below tol.
Index TnLaRankRevealing::pseudo_rank(double tol) const {
  Index k = 0;
  while (k < d_ && !(tol > std::fabs(r_[k * m_ + k]))) ++k;
  return k;
}

void TnLaRankRevealing::turn_back(Index n_cols, double* x, double* scratch) const {
  if (rank_ < n_) best.rank_revealing.turn(rank_, n_, n_cols, right_, x, scratch);
  for (Index i = d_; i-- > 0;) {
    if (perm_[i] == i) continue;
    for (Index c = 0; c < n_cols; ++c) std::swap(x[c * n_ + perm_[i]], x[c * n_ + i]);
  }
}

void TnLaRankRevealing::solve(Index p, const double* b, double* x, double* scratch) const {
  if (rank_ < n_) std::fill_n(x, n_ * p, 0.0);  // a small matrix is not cleared by resize
  if (rank_ == 0) return;
  best.rank_revealing.apply_left(rank_, m_, p, left_, b, x, n_, scratch);
  best.triangular.back_substitute(rank_, r_, m_, x, n_, p);
  turn_back(p, x, scratch);  // the free unknowns are still zero
}

template <class M>
TnLaTHFTIDecompo<M>::TnLaTHFTIDecompo(const M& A, double tol)
    : decomposition_(static_cast<Index>(A.n_rows()), static_cast<Index>(A.n_cols()),
                     TnLaAccess::elements(A), tol) {}

template <class M>
void TnLaTHFTIDecompo<M>::solve(const M& B, M& X) const {
  if (&B == &X) {  // reads no foreign memory all the same
    solve(M(B), X);
    return;
  }
  const Index p = static_cast<Index>(B.n_cols());
  TN_ASSERT(kFile, static_cast<Index>(B.n_rows()) == decomposition_.m());
  TnLaWorkspace scratch(decomposition_.solve_scratch(p));  // before X changes
  X.resize(static_cast<std::size_t>(decomposition_.n()), B.n_cols(), false);
  decomposition_.solve(p, TnLaAccess::elements(B), TnLaAccess::elements(X), scratch.doubles());
}

template <class M>
void TnLaTHFTIDecompo<M>::null_space(M& Z) const {
  const Index n = decomposition_.n();
  const Index n_free = n - decomposition_.rank();
  if (n_free == 0) {
    Z.resize(0, 0, true);
    return;
  }
  const Index n_cols = std::is_same_v<M, TnLaDblMat> ? n_free : n;  // a small Z keeps its columns
  TnLaWorkspace scratch(decomposition_.basis_scratch(n_cols));      // before Z changes
  Z.resize(static_cast<std::size_t>(n), static_cast<std::size_t>(n_free), true);
  Z.set_diagonal(1.0, -rank());
  decomposition_.turn_back(n_cols, TnLaAccess::elements(Z), scratch.doubles());
}

#define TNLA_INSTANTIATE(M) template class TnLaTHFTIDecompo<M>;
TNLA_FOR_ALL_MATRICES(TNLA_INSTANTIATE)
#undef TNLA_INSTANTIATE
