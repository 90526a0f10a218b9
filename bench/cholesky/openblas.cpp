// SPDX-License-Identifier: MIT

#include "common/openblas.h"

namespace {

struct Solve {
  int n;
  std::vector<double> A;
  std::vector<double> b;
  std::vector<double> L;
  std::vector<double> x;
  bool keeps_factor;

  explicit Solve(const bench::Case& c)
      : n(c.n), A(c.a), b(c.b), L(A), x(b), keeps_factor(c.operation == "solve") {
    factor();
  }
  void factor() {
    std::copy(A.begin(), A.end(), L.begin());
    LAPACKE_dpotrf_work(LAPACK_COL_MAJOR, 'L', n, L.data(), n);
  }
  void step() {
    if (!keeps_factor) factor();
    std::copy(b.begin(), b.end(), x.begin());
    LAPACKE_dpotrs_work(LAPACK_COL_MAJOR, 'L', n, 1, L.data(), n, x.data(), n);
  }
  void answer(double* out) const { std::copy(x.begin(), x.end(), out); }
};

}  // namespace

std::unique_ptr<bench::Task> bench::make_task(const Case& c) { return task<Solve>(c); }
