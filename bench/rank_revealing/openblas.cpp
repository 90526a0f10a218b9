// SPDX-License-Identifier: MIT

#include "common/openblas.h"

namespace {

struct Solve {
  int n;
  int p;
  std::vector<double> A;
  std::vector<double> B;
  std::vector<double> QR;
  std::vector<double> X;
  std::vector<int> order;
  std::vector<double> work;

  explicit Solve(const bench::Case& c)
      : n(c.n), p(c.p), A(c.a), B(c.b), QR(A), X(B), order(static_cast<std::size_t>(n)) {
    work = bench::workspace([this](double* w, int size) { solve(w, size); });
  }
  void solve(double* w, int size) {
    int rank = 0;
    LAPACKE_dgelsy_work(LAPACK_COL_MAJOR, n, n, p, QR.data(), n, X.data(), n, order.data(), 1e-10, &rank, w,
                        size);
  }
  void step() {
    std::copy(A.begin(), A.end(), QR.begin());
    std::copy(B.begin(), B.end(), X.begin());
    std::fill(order.begin(), order.end(), 0);
    solve(work.data(), bench::length(work));
  }
  void answer(double* out) const { std::copy(X.begin(), X.end(), out); }
};

}  // namespace

std::unique_ptr<bench::Task> bench::make_task(const Case& c) { return task<Solve>(c); }
