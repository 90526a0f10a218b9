// SPDX-License-Identifier: MIT

#include "common/eigen.h"

#include <Eigen/Eigenvalues>

namespace {

struct Basis {
  Eigen::MatrixXd A;
  Eigen::SelfAdjointEigenSolver<Eigen::MatrixXd> solver;

  explicit Basis(const bench::Case& c) : A(bench::matrix_a(c)), solver(c.n) {}
  void step() { solver.compute(A); }
  void answer(double* out) const {
    bench::copy_out(solver.eigenvalues(), out);
    bench::copy_out(solver.eigenvectors(), out + A.rows());
  }
};

}  // namespace

std::unique_ptr<bench::Task> bench::make_task(const Case& c) { return task<Basis>(c); }
