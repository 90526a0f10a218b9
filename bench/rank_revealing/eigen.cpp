// SPDX-License-Identifier: MIT

#include "common/eigen.h"

namespace {

struct Solve {
  Eigen::MatrixXd A;
  Eigen::MatrixXd B;
  Eigen::MatrixXd X;

  explicit Solve(const bench::Case& c) : A(bench::matrix_a(c)), B(bench::matrix_b(c)) {}
  void step() {
    Eigen::CompleteOrthogonalDecomposition<Eigen::MatrixXd> decomposition(A.rows(), A.cols());
    decomposition.setThreshold(1e-10);
    X = decomposition.compute(A).solve(B);
  }
  void answer(double* out) const { bench::copy_out(X, out); }
};

}  // namespace

std::unique_ptr<bench::Task> bench::make_task(const Case& c) { return task<Solve>(c); }
