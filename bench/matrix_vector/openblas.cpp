// SPDX-License-Identifier: MIT

#include "common/openblas.h"

namespace {

struct Product {
  int n;
  std::vector<double> A;
  std::vector<double> x;
  std::vector<double> y;

  explicit Product(const bench::Case& c) : n(c.n), A(c.a), x(c.b), y(c.b.size()) {}
  void step() {
    cblas_dgemv(CblasColMajor, CblasNoTrans, n, n, 1.0, A.data(), n, x.data(), 1, 0.0, y.data(), 1);
  }
  void answer(double* out) const { std::copy(y.begin(), y.end(), out); }
};

}  // namespace

std::unique_ptr<bench::Task> bench::make_task(const Case& c) { return task<Product>(c); }
