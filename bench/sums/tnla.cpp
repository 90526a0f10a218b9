// SPDX-License-Identifier: MIT

#include "common/tnla.h"

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
  void step() { result = tnla_norm(n, x.data(), nullptr); }
};

struct ScalarProduct : Sum {
  using Sum::Sum;
  void step() { result = tnla_scalprod(n, x.data(), y.data()); }
};

struct Distance : Sum {
  using Sum::Sum;
  void step() { result = tnla_norm(n, x.data(), y.data()); }
};

struct UnitVectors : Sum {
  using Sum::Sum;
  void step() { result = tnla_scalprod(n, x.data(), y.data(), true, true); }
};

}  // namespace

std::unique_ptr<bench::Task> bench::make_task(const Case& c) {
  if (c.operation == "norm") return task<Norm>(c);
  if (c.operation == "scalar_product") return task<ScalarProduct>(c);
  if (c.operation == "distance") return task<Distance>(c);
  return task<UnitVectors>(c);
}
