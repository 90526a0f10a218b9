// SPDX-License-Identifier: MIT

#include "common/tnla.h"

namespace {

struct System {
  TnLaDblMat A;
  TnLaDblMat B;
  TnLaDblMat X;

  explicit System(const bench::Case& c) : A(bench::matrix_a(c)), B(bench::matrix_b(c)) {}
  void answer(double* out) const { bench::copy_out(X, out); }
};

struct Solve : System {
  using System::System;
  void step() { tnla_linearsolve(A, B, X); }
};

struct Decomposition : System {
  using System::System;
  void step() { TnLaTQRDecompo<TnLaDblMat>(A).solve(B, X); }
};

}  // namespace

std::unique_ptr<bench::Task> bench::make_task(const Case& c) {
  if (c.operation == "solve") return task<Solve>(c);
  return task<Decomposition>(c);
}
