// SPDX-License-Identifier: MIT

#include "common/openblas.h"

namespace {

// dgels without its scaling: factor, Q' B, back substitution.
struct Solve {
  int m;
  int n;
  int p;
  std::vector<double> A;
  std::vector<double> B;
  std::vector<double> QR;
  std::vector<double> X;
  std::vector<double> tau;
  std::vector<double> work;

  explicit Solve(const bench::Case& c)
      : m(c.m), n(c.n), p(c.p), A(c.a), B(c.b), QR(A), X(B), tau(static_cast<std::size_t>(n)) {
    work = bench::workspace([this](double* w, int size) { factor(w, size); });
    const auto other = bench::workspace([this](double* w, int size) { transform(w, size); });
    if (other.size() > work.size()) work = other;
  }
  void factor(double* w, int size) {
    LAPACKE_dgeqrf_work(LAPACK_COL_MAJOR, m, n, QR.data(), m, tau.data(), w, size);
  }
  void transform(double* w, int size) {
    LAPACKE_dormqr_work(LAPACK_COL_MAJOR, 'L', 'T', m, p, n, QR.data(), m, tau.data(), X.data(), m, w,
                        size);
  }
  void step() {
    std::copy(A.begin(), A.end(), QR.begin());
    std::copy(B.begin(), B.end(), X.begin());
    factor(work.data(), bench::length(work));
    transform(work.data(), bench::length(work));
    LAPACKE_dtrtrs_work(LAPACK_COL_MAJOR, 'U', 'N', 'N', n, p, QR.data(), m, X.data(), m);
  }
  void answer(double* out) const {
    for (int j = 0; j < p; ++j) out = std::copy_n(X.begin() + static_cast<std::ptrdiff_t>(j) * m, n, out);
  }
};

}  // namespace

std::unique_ptr<bench::Task> bench::make_task(const Case& c) { return task<Solve>(c); }
