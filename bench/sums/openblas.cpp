// SPDX-License-Identifier: MIT

#include "common/openblas.h"

namespace {

struct Sum {
  int n;
  std::vector<double> x;
  std::vector<double> y;
  double result = 0.0;

  explicit Sum(const bench::Case& c) : n(c.n), x(c.a), y(c.b) {}
  void answer(double* out) const { *out = result; }
};

struct Norm : Sum {
  using Sum::Sum;
  void step() { result = cblas_dnrm2(n, x.data(), 1); }
};

struct ScalarProduct : Sum {
  using Sum::Sum;
  void step() { result = cblas_ddot(n, x.data(), 1, y.data(), 1); }
};

struct UnitVectors : Sum {
  using Sum::Sum;
  void step() {
    result = cblas_ddot(n, x.data(), 1, y.data(), 1) /
             (cblas_dnrm2(n, x.data(), 1) * cblas_dnrm2(n, y.data(), 1));
  }
};

}  // namespace

std::unique_ptr<bench::Task> bench::make_task(const Case& c) {
  if (c.operation == "norm") return task<Norm>(c);
  if (c.operation == "scalar_product") return task<ScalarProduct>(c);
  if (c.operation == "unit_vectors") return task<UnitVectors>(c);
  return nullptr;
}
