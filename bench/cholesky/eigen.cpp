// SPDX-License-Identifier: MIT

#include "common/eigen.h"

namespace {

struct Solve {
  Eigen::MatrixXd A;
  Eigen::VectorXd b;
  Eigen::VectorXd x;
  Eigen::LLT<Eigen::MatrixXd> factor;
  bool keeps_factor;

  explicit Solve(const bench::Case& c)
      : A(bench::matrix_a(c)), b(bench::vector_b(c)), factor(A), keeps_factor(c.operation == "solve") {}
  void step() {
    if (!keeps_factor) factor.compute(A);
    x = factor.solve(b);
  }
  void answer(double* out) const { bench::copy_out(x, out); }
};

}  // namespace

std::unique_ptr<bench::Task> bench::make_task(const Case& c) { return task<Solve>(c); }
