// SPDX-License-Identifier: MIT

#include "families.h"

// The QR decomposition of dense matrices, the default solve, inverses and determinants.

namespace {

void decomposition(Data& data, const TnLaDblMat& A, const TnLaDblMat& B, Digest& digest) {
  const TnLaTQRDecompo<TnLaDblMat> qr(A);
  digest.add(qr.R());
  digest.add(qr.full_rank());
  digest.add(qr.n_trafo());
  TnLaDblMat X = data.leftover();
  digest.add(qr.solve(B, X));
  digest.add(X);
  if (qr.n_trafo() > 0) {
    std::vector<double> w = data.numbers(A.n_rows());
    qr.T(static_cast<int>(data.below(static_cast<std::size_t>(qr.n_trafo())))).apply(w.data(), 1);
    digest.add(w);
  }
}

void default_solve(Data& data, TnLaDblMat& A, const TnLaDblMat& B, Digest& digest) {
  TnLaDblMat X = data.leftover();
  TnLaDblMat null_space;
  digest.add(tnla_linearsolve(A, B, X, data.one_in(2) ? &null_space : nullptr));
  digest.add(X);
  digest.add(null_space);
  digest.add(tnla_linearsolve<TnLaDblMat>(A, B, A));  // X is A
  digest.add(A);
}

void inverses(Data& data, std::size_t n, Digest& digest) {
  TnLaDblMat A = data.matrix(n, data.one_in(16) ? data.short_size() : n);
  digest.add(A.det());
  digest.add(A.inv());
  TnLaDblMat inverse = data.leftover();
  digest.add(tnla_inverse(A, inverse));
  digest.add(inverse);
  A.invert();
  digest.add(A);
}

}  // namespace

void qr_round(Data& data, Digest& digest) {
  const std::size_t n = data.size(1000);
  const std::size_t m = data.one_in(16) ? data.short_size() : n + data.below(data.one_in(2) ? 1 : 30);
  TnLaDblMat A = data.matrix(m, n);
  const std::size_t n_sides = data.below(8);
  const TnLaDblMat B = data.matrix(data.one_in(30) ? m + 1 : m, n_sides);
  decomposition(data, A, B, digest);
  default_solve(data, A, B, digest);
  if (n < 100 || data.one_in(2)) inverses(data, n, digest);
}
