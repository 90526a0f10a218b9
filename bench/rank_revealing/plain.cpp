// SPDX-License-Identifier: MIT

#include "common/twin.h"

namespace {

struct Solve {
  reference::Matrix A;
  reference::Matrix B;
  reference::Matrix X;

  explicit Solve(const bench::Case& c) : A(bench::matrix_a(c)), B(bench::matrix_b(c)) {}
  void step() { X = reference::RankRevealing(A, 1e-10).solve(B); }
  void answer(double* out) const { bench::copy_out(X, out); }
};

}  // namespace

std::unique_ptr<bench::Task> bench::make_task(const Case& c) { return task<Solve>(c); }
