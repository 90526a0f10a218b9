// SPDX-License-Identifier: MIT

#include "common/tnla.h"

namespace {

struct Solve {
  TnLaDblMat A;
  TnLaDblMat B;
  TnLaDblMat X;

  explicit Solve(const bench::Case& c) : A(bench::matrix_a(c)), B(bench::matrix_b(c)) {}
  void step() { tnla_linearsolve(A, B, X, 1e-10); }
  void answer(double* out) const { bench::copy_out(X, out); }
};

}  // namespace

std::unique_ptr<bench::Task> bench::make_task(const Case& c) { return task<Solve>(c); }
