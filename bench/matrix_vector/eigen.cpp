// SPDX-License-Identifier: MIT

#include "common/eigen.h"

namespace {

struct Product {
  Eigen::MatrixXd A;
  Eigen::VectorXd x;
  Eigen::VectorXd y;

  explicit Product(const bench::Case& c) : A(bench::matrix_a(c)), x(bench::vector_b(c)), y(c.n) {}
  void step() { y.noalias() = A * x; }
  void answer(double* out) const { bench::copy_out(y, out); }
};

}  // namespace

std::unique_ptr<bench::Task> bench::make_task(const Case& c) { return task<Product>(c); }
