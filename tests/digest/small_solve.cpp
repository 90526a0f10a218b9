// SPDX-License-Identifier: MIT

#include "dimensions.h"
#include "families.h"

// Linear systems of the small types and of dense matrices of the same orders, all twelve in each round.

namespace {

struct Systems {
  Data& data;
  Digest& digest;

  template <int N>
  void run() {
    constexpr std::size_t n = N;
    using Mat = TnLaTSmallMat<n, n, double>;
    Mat A = data.small_matrix<n>();
    const Mat B = data.small_matrix<n>();
    Mat X = data.small_matrix<n>();
    Mat null_space;

    const TnLaTQRDecompo<Mat> qr(A);
    digest.add(qr.R());
    digest.add(qr.full_rank());
    digest.add(qr.n_trafo());
    digest.add(qr.solve(B, X));
    digest.add(X);
    for (int k = 0; k < qr.n_trafo(); ++k) {
      std::vector<double> w = data.numbers(n);
      qr.T(k).apply(w.data(), 1);
      digest.add(w);
    }

    digest.add(tnla_linearsolve<Mat>(A, B, X, data.one_in(8) ? &null_space : nullptr));
    digest.add(X);
    int rank = -7;
    tnla_linearsolve<Mat>(A, B, X, data.one_in(2) ? 1e-9 : 0.5, &rank, &null_space);
    digest.add(rank);
    digest.add(X);
    digest.add(null_space);

    const TnLaDblMat dense = data.matrix(n, n);
    TnLaDblMat dense_x = data.leftover();
    digest.add(tnla_linearsolve(dense, data.matrix(n, data.below(30)), dense_x));
    digest.add(dense_x);
    digest.add(dense.det());
    digest.add(dense.inv());

    digest.add(tnla_linearsolve<Mat>(A, B, A));  // X is A
    digest.add(A);
  }
};

}  // namespace

void small_solve_round(Data& data, Digest& digest) { for_every_dimension(Systems{data, digest}); }
