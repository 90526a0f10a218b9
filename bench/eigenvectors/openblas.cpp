// SPDX-License-Identifier: MIT

#include "common/openblas.h"

namespace {

struct Basis {
  int n;
  std::vector<double> A;
  std::vector<double> V;
  std::vector<double> d;
  std::vector<double> work;

  explicit Basis(const bench::Case& c) : n(c.n), A(c.a), V(A), d(static_cast<std::size_t>(n)) {
    work = bench::workspace([this](double* w, int size) { solve(w, size); });
  }
  void solve(double* w, int size) {
    LAPACKE_dsyev_work(LAPACK_COL_MAJOR, 'V', 'U', n, V.data(), n, d.data(), w, size);
  }
  void step() {
    std::copy(A.begin(), A.end(), V.begin());
    solve(work.data(), bench::length(work));
  }
  void answer(double* out) const { std::copy(V.begin(), V.end(), std::copy(d.begin(), d.end(), out)); }
};

}  // namespace

std::unique_ptr<bench::Task> bench::make_task(const Case& c) { return task<Basis>(c); }
