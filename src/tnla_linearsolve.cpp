// SPDX-License-Identifier: MIT

#include <algorithm>
#include <memory>
#include <type_traits>

#include "kernels/kernel_set.h"
#include "tnla_access.h"
#include "tnla_instances.h"
#include "tnla_linearsolve_i.h"
#include "tnla_qr.h"
#include "tnlathftidecompo.h"

using tnla_kernels::Index;

namespace {

constexpr char kFile[] = "src/tnla_linearsolve.cpp";
constexpr char kQrFile[] = "src/tnlaqrdecompo.cpp";  // whose precondition a solve with m >= n has

constexpr std::size_t kLargestSmall = tnla_kernels::kLargestSmall;

constexpr double kDefaultTolerance = 1e-13;  // of the pseudo-rank, for systems with m < n
constexpr double kInvertTolerance = 1e-20;   // where invert falls back to the pseudo-inverse
constexpr int kNoRank = -1;                  // the rank of a system that could not be looked at

TnLaDblMat identity(std::size_t n) { return {n, n, 1.0}; }

// The identity, of which every leading block is one.
struct SmallIdentity {
  double element[kLargestSmall * kLargestSmall] = {};
  constexpr SmallIdentity() {
    for (std::size_t i = 0; i < kLargestSmall; ++i) element[i * (kLargestSmall + 1)] = 1.0;
  }
};
constexpr SmallIdentity kSmallIdentity;

// A right side: p columns, the leading dimension ld apart.
struct RightSide {
  const double* b;
  std::size_t p;
  std::size_t ld;
};

template <class M>
bool has_small_order(const M& A) {
  return A.n_rows() == A.n_cols() && A.n_rows() - 1 < kLargestSmall;
}

bool factor_and_solve(std::size_t n, const double* a, const RightSide& B, double* x, double* diagonal) {
  return tnla_kernels::best.small_qr.solve[n - 1](static_cast<Index>(n), a, static_cast<Index>(B.p), B.b,
                                                  static_cast<Index>(B.ld), x, diagonal);
}

// X of a square system of order 1 ... kLargestSmall, on the stack.
template <class M>
bool solve_small(const M& A, const RightSide& B, M& X) {
  const std::size_t n = A.n_cols();
  double diagonal[kLargestSmall];
  double copy[kLargestSmall * kLargestSmall];
  const double* a = TnLaAccess::elements(A);
  if (&A == &X) a = std::copy_n(a, n * n, copy) - n * n;  // what it holds is about to change
  X.resize(n, B.p, true);
  return factor_and_solve(n, a, B, TnLaAccess::elements(X), diagonal);
}

bool solve_large(const TnLaDblMat& A, const RightSide& B, TnLaDblMat& X) {
  const std::size_t n = A.n_cols();
  if (n == 0) {
    X.resize(n, B.p, true);
    return true;
  }
  TnLaQrSystem system(A.n_rows(), n, TnLaAccess::elements(A), B.p, B.b, B.ld);
  X.resize(n, B.p, true);
  if (!system.full_rank()) return false;
  system.solve_into(TnLaAccess::elements(X));
  return true;
}

// The least-squares solution for m >= n, as TnLaTQRDecompo<M>::solve gives it.
template <class M>
bool least_squares(const M& A, const RightSide& B, M& X) {
  if constexpr (std::is_same_v<M, TnLaDblMat>) {
    if (!has_small_order(A)) return solve_large(A, B, X);
  }
  return solve_small(A, B, X);
}

}  // namespace

template <class M>
void tnla_linearsolve(const M& A, const M& B, M& X, double tol, int* rank,
                      typename TnLaTOptional<M>::Pointer null_space) {
  const bool valid = A.n_rows() == B.n_rows() && !(0.0 >= tol) && !A.empty() && !B.empty();
  TN_ASSERT(kFile, valid);
  if (!valid) {
    X.resize(0, 0, true);
    if (rank != nullptr) *rank = kNoRank;
    return;
  }
  const TnLaTHFTIDecompo<M> decomposition(A, tol);
  decomposition.solve(B, X);
  if (rank != nullptr) *rank = decomposition.rank();
  if (null_space != nullptr) decomposition.null_space(*null_space);
}

template <class M>
bool tnla_linearsolve(const M& A, const M& B, M& X, typename TnLaTOptional<M>::Pointer null_space) {
  if (A.n_rows() < A.n_cols()) {
    const std::size_t m = A.n_rows();  // X may be A
    int rank = kNoRank;
    tnla_linearsolve<M>(A, B, X, kDefaultTolerance, &rank, null_space);
    return rank == static_cast<int>(m);
  }
  TN_ASSERT(kQrFile, B.n_rows() == A.n_rows());
  bool solved = false;
  if (B.n_rows() < A.n_rows() && B.n_cols() > 0) {
    X.resize(A.n_cols(), B.n_cols(), true);
  } else {
    solved = least_squares(A, {TnLaAccess::elements(B), B.n_cols(), B.n_rows()}, X);
  }
  if (null_space != nullptr) null_space->resize(0, 0, true);
  return solved;
}

#define TNLA_INSTANTIATE(M)                                               \
  template void tnla_linearsolve<M>(const M&, const M&, M&, double, int*, \
                                    typename TnLaTOptional<M>::Pointer);  \
  template bool tnla_linearsolve<M>(const M&, const M&, M&, typename TnLaTOptional<M>::Pointer);
TNLA_FOR_ALL_MATRICES(TNLA_INSTANTIATE)
#undef TNLA_INSTANTIATE

bool tnla_linearsolve(const TnLaDblMat& A, const TnLaDblMat& B, TnLaDblMat& X, TnLaDblMat* null_space) {
  return tnla_linearsolve<TnLaDblMat>(A, B, X, null_space);
}

void tnla_inverse(const TnLaDblMat& A, TnLaDblMat& Ainv, double tol, int* rank) {
  TN_ASSERT(kFile, !A.empty());
  if (A.empty()) {
    Ainv.resize(0, 0, true);
    return;
  }
  tnla_linearsolve<TnLaDblMat>(A, identity(A.n_rows()), Ainv, tol, rank, nullptr);
}

bool tnla_inverse(const TnLaDblMat& A, TnLaDblMat& Ainv) {
  if (has_small_order(A)) return solve_small(A, {kSmallIdentity.element, A.n_rows(), kLargestSmall}, Ainv);
  return tnla_linearsolve<TnLaDblMat>(A, identity(A.n_rows()), Ainv, nullptr);
}

void TnLaDblMat::invert() {
  if (n_rows_ == n_cols_) {  // a failed attempt leaves a square matrix as it was
    if (!tnla_inverse(*this, *this)) tnla_inverse(*this, *this, kInvertTolerance, nullptr);
    return;
  }
  const TnLaDblMat original(*this);
  if (!tnla_inverse(original, *this)) tnla_inverse(original, *this, kInvertTolerance, nullptr);
}

TnLaDblMat TnLaDblMat::inv() const {
  TnLaDblMat result(*this);
  result.invert();
  return result;
}

double TnLaDblMat::det() const {
  if (n_rows_ != n_cols_ || n_rows_ == 0) return 0.0;
  if (n_rows_ == 1) return array_[0];
  const bool small = has_small_order(*this);
  double on_stack[kLargestSmall];
  const std::unique_ptr<double[]> on_heap(small ? nullptr : new double[n_rows_]);
  double* const diagonal = small ? on_stack : on_heap.get();
  const bool full_rank = small ? factor_and_solve(n_rows_, data(), {nullptr, 0, n_rows_}, nullptr, diagonal)
                               : tnla_qr_diagonal(n_rows_, data(), diagonal);
  if (!full_rank) return 0.0;
  const std::size_t last = n_rows_ - 1;
  double product = diagonal[last];
  for (std::size_t i = 0; i < last; ++i) product *= -diagonal[i];  // each reflection has determinant -1
  return product;
}
