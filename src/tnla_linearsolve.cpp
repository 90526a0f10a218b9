#include "tnla_instances.h"
#include "tnla_linearsolve_i.h"
#include "tnlaqrdecompo_i.h"
#include "tnlathftidecompo.h"

namespace {

constexpr char kFile[] = "src/tnla_linearsolve.cpp";

constexpr double kDefaultTolerance = 1e-13;  // of the pseudo-rank, for systems with m < n
constexpr double kInvertTolerance = 1e-20;   // where invert falls back to the pseudo-inverse
constexpr int kNoRank = -1;                  // the rank of a system that could not be looked at

TnLaDblMat identity(std::size_t n) { return {n, n, 1.0}; }

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
  const TnLaTQRDecompo<M> decomposition(A);
  const bool solved = decomposition.solve(B, X);
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
  return tnla_linearsolve<TnLaDblMat>(A, identity(A.n_rows()), Ainv, nullptr);
}

void TnLaDblMat::invert() {
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
  const TnLaTQRDecompo<TnLaDblMat> decomposition(*this);
  if (!decomposition.full_rank()) return 0.0;
  const TnLaDblMat& R = decomposition.R();
  const std::size_t last = n_rows_ - 1;
  double product = R(last, last);
  for (std::size_t i = 0; i < last; ++i) product *= -R(i, i);  // each reflection has determinant -1
  return product;
}
