// SPDX-License-Identifier: MIT

#include <algorithm>

#include "common/peer.h"

namespace {

struct Product {
  std::size_t n;
  std::vector<double> A;
  std::vector<double> x;
  std::vector<double> y;

  explicit Product(const bench::Case& c)
      : n(static_cast<std::size_t>(c.n)), A(c.a), x(c.b), y(c.b.size()) {}
  void step() {
    std::fill(y.begin(), y.end(), 0.0);
    for (std::size_t j = 0; j < n; ++j) {
      for (std::size_t i = 0; i < n; ++i) y[i] += A[j * n + i] * x[j];
    }
  }
  void answer(double* out) const { std::copy(y.begin(), y.end(), out); }
};

}  // namespace

std::unique_ptr<bench::Task> bench::make_task(const Case& c) { return task<Product>(c); }
