// SPDX-License-Identifier: MIT

#include "common/eigen.h"

namespace {

struct Vectors {
  Eigen::VectorXd x;
  Eigen::VectorXd y;
  Eigen::VectorXd z;

  explicit Vectors(const bench::Case& c) : x(bench::vector_a(c)), y(bench::vector_b(c)), z(x) {}
  void answer(double* out) const { bench::copy_out(z, out); }
};

struct LinComb : Vectors {
  using Vectors::Vectors;
  double a = 0.75;
  double b = 1.25;
  void step() { z = a * x + b * y; }
};

struct Add : Vectors {
  using Vectors::Vectors;
  void step() {
    Eigen::VectorXd sum = x + y;
    z.swap(sum);
  }
};

struct Scale : Vectors {
  using Vectors::Vectors;
  double factor = -1.0;
  void step() { z *= factor; }
};

}  // namespace

std::unique_ptr<bench::Task> bench::make_task(const Case& c) {
  if (c.operation == "lincomb") return task<LinComb>(c);
  if (c.operation == "add") return task<Add>(c);
  return task<Scale>(c);
}
