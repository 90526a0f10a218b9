// SPDX-License-Identifier: MIT

#include "common/eigen.h"

namespace {

struct Inverse {
  Eigen::MatrixXd A;
  Eigen::MatrixXd X;

  explicit Inverse(const bench::Case& c) : A(bench::matrix_a(c)) {}
  void step() { X = A.inverse(); }
  void answer(double* out) const { bench::copy_out(X, out); }
};

struct Determinant {
  Eigen::MatrixXd A;
  double result = 0.0;

  explicit Determinant(const bench::Case& c) : A(bench::matrix_a(c)) {}
  void step() { result = A.determinant(); }
  void answer(double* out) const { *out = result; }
};

}  // namespace

std::unique_ptr<bench::Task> bench::make_task(const Case& c) {
  if (c.operation == "inverse") return task<Inverse>(c);
  return task<Determinant>(c);
}
