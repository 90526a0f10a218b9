// SPDX-License-Identifier: MIT

#include "common/openblas.h"

namespace {

struct Lu {
  int n;
  std::vector<double> A;
  std::vector<double> X;
  std::vector<int> pivots;

  explicit Lu(const bench::Case& c) : n(c.n), A(c.a), X(A), pivots(static_cast<std::size_t>(n)) {}
  void factor() {
    std::copy(A.begin(), A.end(), X.begin());
    LAPACKE_dgetrf_work(LAPACK_COL_MAJOR, n, n, X.data(), n, pivots.data());
  }
};

struct Inverse : Lu {
  std::vector<double> work;

  explicit Inverse(const bench::Case& c) : Lu(c) {
    factor();
    work = bench::workspace([this](double* w, int size) { invert(w, size); });
  }
  void invert(double* w, int size) {
    LAPACKE_dgetri_work(LAPACK_COL_MAJOR, n, X.data(), n, pivots.data(), w, size);
  }
  void step() {
    factor();
    invert(work.data(), bench::length(work));
  }
  void answer(double* out) const { std::copy(X.begin(), X.end(), out); }
};

struct Determinant : Lu {
  using Lu::Lu;
  double result = 0.0;

  void step() {
    factor();
    result = 1.0;
    for (int i = 0; i < n; ++i) {
      const auto k = static_cast<std::size_t>(i);
      const double factor = X[k * static_cast<std::size_t>(n) + k];
      result *= pivots[k] == i + 1 ? factor : -factor;
    }
  }
  void answer(double* out) const { *out = result; }
};

}  // namespace

std::unique_ptr<bench::Task> bench::make_task(const Case& c) {
  if (c.operation == "inverse") return task<Inverse>(c);
  return task<Determinant>(c);
}
