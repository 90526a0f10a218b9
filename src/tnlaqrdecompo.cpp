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

// A = Q R, column by column: R replaces A, the reflections go to the list.
void triangularize(double* a, std::size_t m, std::size_t n, TnArray<TnLaHouseholder*>& reflections) {
  for (std::size_t j = 0; j < n && j + 1 < m; ++j) {
    double* const column = a + j * m;
    const int pivot = static_cast<int>(j);
    tnla_reflect_and_keep(reflections, pivot, pivot + 1, static_cast<int>(m), column, 1, column + m,
                          static_cast<Index>(m), n - j - 1);
  }
}

}  // namespace

template <class M>
TnLaTQRDecompo<M>::TnLaTQRDecompo() : full_rank_(false), R_(nullptr) {}

// Delegates, so that the destructor frees what is there if a later allocation fails.
template <class M>
TnLaTQRDecompo<M>::TnLaTQRDecompo(const M& A) : TnLaTQRDecompo() {
  R_ = new M(A);
  double* const r = TnLaAccess::elements(*R_);
  triangularize(r, R_->n_rows(), R_->n_cols(), trafos_);
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

  M W(B);  // becomes Q' B
  double* const w = TnLaAccess::elements(W);
  const std::size_t ldw = W.n_rows();
  for (std::size_t i = 0; i < trafos_.size(); ++i) {
    TnLaAccess::reflect(*trafos_[i], w, 1, static_cast<Index>(ldw), W.n_cols());
  }

  double* const x = TnLaAccess::elements(X);
  for (std::size_t c = 0; c < W.n_cols(); ++c) std::copy_n(w + c * ldw, n, x + c * n);
  tnla_kernels::best.triangular.back_substitute(static_cast<Index>(n), TnLaAccess::elements(*R_),
                                                static_cast<Index>(m), x, static_cast<Index>(n),
                                                static_cast<Index>(W.n_cols()));
  return true;
}

#define TNLA_INSTANTIATE(M) template class TnLaTQRDecompo<M>;
TNLA_FOR_ALL_MATRICES(TNLA_INSTANTIATE)
#undef TNLA_INSTANTIATE
