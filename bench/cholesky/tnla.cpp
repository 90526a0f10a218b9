// SPDX-License-Identifier: MIT

#include "common/tnla.h"

namespace {

struct Solve {
  TnLaDblMat A;
  TnLaDblMat b;
  TnLaCholesky cholesky;
  bool keeps_factor;
  const TnArray<double>* x = nullptr;

  explicit Solve(const bench::Case& c)
      : A(bench::matrix_a(c)), b(bench::matrix_b(c)), cholesky(c.n), keeps_factor(c.operation == "solve") {
    cholesky.a(A.array());
  }
  void step() {
    if (!keeps_factor) cholesky.a(A.array());
    cholesky.b(b.array());
    x = &cholesky.x();
  }
  void answer(double* out) const { std::copy_n(x->data(), x->size(), out); }
};

}  // namespace

std::unique_ptr<bench::Task> bench::make_task(const Case& c) { return task<Solve>(c); }
