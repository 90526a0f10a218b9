// SPDX-License-Identifier: MIT

#include "common/eigen.h"

namespace {

struct Operands {
  Eigen::MatrixXd A;
  Eigen::MatrixXd B;
  Eigen::MatrixXd C;

  explicit Operands(const bench::Case& c) : A(bench::matrix_a(c)), B(bench::matrix_b(c)), C(c.n, c.n) {}
  void answer(double* out) const { bench::copy_out(C, out); }
};

struct Plain : Operands {
  using Operands::Operands;
  void step() { C.noalias() = A * B; }
};

struct TransposedA : Operands {
  using Operands::Operands;
  void step() { C.noalias() = A.transpose() * B; }
};

struct TransposedB : Operands {
  using Operands::Operands;
  void step() { C.noalias() = A * B.transpose(); }
};

}  // namespace

std::unique_ptr<bench::Task> bench::make_task(const Case& c) {
  if (c.operation == "plain") return task<Plain>(c);
  if (c.operation == "transposed_a") return task<TransposedA>(c);
  return task<TransposedB>(c);
}
