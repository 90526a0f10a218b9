// SPDX-License-Identifier: MIT

#include <cmath>

#include "common/peer.h"

namespace {

double square_sum(const std::vector<double>& x) {
  double s = 0.0;
  for (const double value : x) s += value * value;
  return s;
}

struct Sum {
  std::vector<double> x;
  std::vector<double> y;
  double result = 0.0;

  explicit Sum(const bench::Case& c) : x(c.a), y(c.b) {}
  void answer(double* out) const { *out = result; }
};

struct Norm : Sum {
  using Sum::Sum;
  void step() { result = std::sqrt(square_sum(x)); }
};

struct ScalarProduct : Sum {
  using Sum::Sum;
  void step() {
    double s = 0.0;
    for (std::size_t i = 0; i < x.size(); ++i) s += x[i] * y[i];
    result = s;
  }
};

struct Distance : Sum {
  using Sum::Sum;
  void step() {
    double s = 0.0;
    for (std::size_t i = 0; i < x.size(); ++i) s += (x[i] - y[i]) * (x[i] - y[i]);
    result = std::sqrt(s);
  }
};

struct UnitVectors : Sum {
  using Sum::Sum;
  void step() {
    const double factor = (1.0 / std::sqrt(square_sum(y))) * (1.0 / std::sqrt(square_sum(x)));
    double s = 0.0;
    for (std::size_t i = 0; i < x.size(); ++i) s += factor * x[i] * y[i];
    result = s;
  }
};

}  // namespace

std::unique_ptr<bench::Task> bench::make_task(const Case& c) {
  if (c.operation == "norm") return task<Norm>(c);
  if (c.operation == "scalar_product") return task<ScalarProduct>(c);
  if (c.operation == "distance") return task<Distance>(c);
  return task<UnitVectors>(c);
}
