#include "tnlathftidecompo.h"

#include <algorithm>
#include <cmath>

#include "kernels/kernel_set.h"
#include "kernels/reductions.h"
#include "tnla_access.h"
#include "tnla_instances.h"
#include "tnla_reflections.h"

using tnla_kernels::Index;

namespace {

constexpr char kFile[] = "src/tnlathftidecompo.cpp";

// The downdated column lengths are trusted while this fraction of the longest still shows against the
// reference length.
constexpr double kLengthFraction = 0.001;

// The column that step j eliminates: the longest of j ... n-1, over the rows j ... m-1.  `h` holds their
// squared lengths; the first of equal lengths wins.
//
// From step to step the lengths are downdated by the row that was finished last.  They are computed anew
// when cancellation may have eaten them up.  The reference of that test is h[previous], what the
// interchange of step j-1 left at the place of its pivot, and not, as in the book, the largest length at
// the last full computation.
std::size_t choose_pivot(const double* a, std::size_t m, std::size_t n, std::size_t j, std::size_t previous,
                         double* h) {
  std::size_t longest = j;
  if (j > 0) {
    const double reference = h[previous];
    for (std::size_t l = j; l < n; ++l) {
      const double finished = a[l * m + j - 1];
      h[l] -= finished * finished;
      if (h[l] > h[longest]) longest = l;
    }
    if ((reference + kLengthFraction * h[longest]) - reference > 0.0) return longest;
    longest = j;
  }
  for (std::size_t l = j; l < n; ++l) {
    h[l] = tnla_kernels::sum_of_squares(static_cast<Index>(m - j), a + l * m + j);
    if (h[l] > h[longest]) longest = l;
  }
  return longest;
}

}  // namespace

template <class M>
TnLaTHFTIDecompo<M>::TnLaTHFTIDecompo() : A_(nullptr), rank_(-1) {}

// Delegates, so that the destructor frees what is there if a later allocation fails.
template <class M>
TnLaTHFTIDecompo<M>::TnLaTHFTIDecompo(const M& A, double tol) : TnLaTHFTIDecompo() {
  A_ = new M(A);
  perm_.set_size(A_->n_cols(), false);
  triangularize();           // Q A P = [R S; 0 e]
  rank_ = pseudo_rank(tol);  // e is noise: the diagonal reaches tol up to rank_ only
  compress();                // [R S] K = [W 0], for the shortest solution
}

template <class M>
TnLaTHFTIDecompo<M>::~TnLaTHFTIDecompo() {
  delete A_;
  tnla_delete_reflections(left_);
  tnla_delete_reflections(right_);
}

template <class M>
void TnLaTHFTIDecompo<M>::triangularize() {
  const std::size_t m = A_->n_rows();
  const std::size_t n = A_->n_cols();
  double* const a = TnLaAccess::elements(*A_);
  TnArray<double> lengths;
  lengths.set_size(n, false);
  double* const h = lengths.data();

  std::size_t pivot = 0;
  for (std::size_t j = 0; j < std::min(m, n); ++j) {
    pivot = choose_pivot(a, m, n, j, pivot, h);
    perm_[j] = static_cast<int>(pivot);
    if (pivot != j) {
      A_->swap_cols(j, pivot);
      h[pivot] = h[j];
    }
    if (j + 1 == m) break;  // nothing below the diagonal of the last row
    double* const column = a + j * m;
    const int row = static_cast<int>(j);
    tnla_reflect_and_keep(left_, row, row + 1, static_cast<int>(m), column, 1, column + m,
                          static_cast<Index>(m), n - j - 1);
  }
}

// The number of diagonal entries before the first one below tol.
template <class M>
int TnLaTHFTIDecompo<M>::pseudo_rank(double tol) const {
  const std::size_t m = A_->n_rows();
  const std::size_t d = std::min(m, A_->n_cols());
  const double* const a = TnLaAccess::elements(*A_);
  std::size_t k = 0;
  while (k < d && !(tol > std::fabs(a[k * m + k]))) ++k;
  return static_cast<int>(k);
}

template <class M>
void TnLaTHFTIDecompo<M>::compress() {
  const std::size_t m = A_->n_rows();
  const int n = static_cast<int>(A_->n_cols());
  double* const a = TnLaAccess::elements(*A_);
  if (rank_ == n) return;
  for (int i = rank_ - 1; i >= 0; --i) {
    tnla_reflect_and_keep(right_, i, rank_, n, a + i, static_cast<int>(m), a, 1,
                          static_cast<std::size_t>(i));
  }
}

// Exchanges rows perm_[i] and i, last exchange first.
template <class M>
void TnLaTHFTIDecompo<M>::undo_interchanges(double* x, std::size_t n_cols) const {
  const std::size_t n = perm_.size();
  for (std::size_t i = std::min(A_->n_rows(), n); i-- > 0;) {
    const std::size_t j = static_cast<std::size_t>(perm_[i]);
    for (std::size_t c = 0; c < n_cols; ++c) std::swap(x[c * n + j], x[c * n + i]);
  }
}

template <class M>
void TnLaTHFTIDecompo<M>::solve(const M& B, M& X) const {
  const std::size_t m = A_->n_rows();
  const std::size_t n = A_->n_cols();
  const std::size_t p = B.n_cols();
  TN_ASSERT(kFile, B.n_rows() == m);
  M W(B);  // becomes Q' B; copied before X changes, so that an X that is B reads no foreign memory
  X.resize(n, p, false);
  double* const x = TnLaAccess::elements(X);
  std::fill_n(x, n * p, 0.0);  // a small matrix is not cleared by resize
  if (rank_ == 0) return;

  double* const w = TnLaAccess::elements(W);
  for (std::size_t i = 0; i < left_.size(); ++i) {
    TnLaAccess::reflect(*left_[i], w, 1, static_cast<Index>(m), p);
  }

  for (std::size_t c = 0; c < p; ++c) std::copy_n(w + c * m, rank_, x + c * n);
  tnla_kernels::best.triangular.back_substitute(rank_, TnLaAccess::elements(*A_), static_cast<Index>(m), x,
                                                static_cast<Index>(n), static_cast<Index>(p));
  for (std::size_t i = right_.size(); i-- > 0;) {  // the free unknowns are still zero
    TnLaAccess::reflect(*right_[i], x, 1, static_cast<Index>(n), p);
  }
  undo_interchanges(x, p);
}

template <class M>
void TnLaTHFTIDecompo<M>::null_space(M& Z) const {
  const std::size_t n = A_->n_cols();
  const std::size_t k = static_cast<std::size_t>(rank_);
  if (k >= n) {
    Z.resize(0, 0, true);
    return;
  }
  Z.resize(n, n - k, true);
  Z.set_diagonal(1.0, -rank_);
  double* const z = TnLaAccess::elements(Z);
  for (std::size_t i = right_.size(); i-- > 0;) {
    TnLaAccess::reflect(*right_[i], z, 1, static_cast<Index>(n), n - k);
  }
  undo_interchanges(z, n - k);
}

#define TNLA_INSTANTIATE(M) template class TnLaTHFTIDecompo<M>;
TNLA_FOR_ALL_MATRICES(TNLA_INSTANTIATE)
#undef TNLA_INSTANTIATE
