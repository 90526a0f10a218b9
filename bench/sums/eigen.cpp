// SPDX-License-Identifier: MIT

#include "common/eigen.h"

namespace {

struct Sum {
  Eigen::VectorXd x;
  Eigen::VectorXd y;
  double result = 0.0;

  explicit Sum(const bench::Case& c) : x(bench::vector_a(c)), y(bench::vector_b(c)) {}
  void answer(double* out) const { *out = result; }
};

struct Norm : Sum {
  using Sum::Sum;
  void step() { result = x.norm(); }
};

struct ScalarProduct : Sum {
  using Sum::Sum;
  void step() { result = x.dot(y); }
};

struct Distance : Sum {
  using Sum::Sum;
  void step() { result = (x - y).norm(); }
};

struct UnitVectors : Sum {
  using Sum::Sum;
  void step() { result = x.dot(y) / (x.norm() * y.norm()); }
};

}  // namespace

std::unique_ptr<bench::Task> bench::make_task(const Case& c) {
  if (c.operation == "norm") return task<Norm>(c);
  if (c.operation == "scalar_product") return task<ScalarProduct>(c);
  if (c.operation == "distance") return task<Distance>(c);
  return task<UnitVectors>(c);
}
