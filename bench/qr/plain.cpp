// SPDX-License-Identifier: MIT

#include "common/twin.h"

namespace {

struct Solve {
  reference::Matrix A;
  reference::Matrix B;
  reference::Matrix X;

  explicit Solve(const bench::Case& c) : A(bench::matrix_a(c)), B(bench::matrix_b(c)) {}
  void step() { X = reference::Qr(A).solve(B).value(); }
  void answer(double* out) const { bench::copy_out(X, out); }
};

}  // namespace

std::unique_ptr<bench::Task> bench::make_task(const Case& c) {
  if (c.n <= 512) return task<Solve>(c);
  return nullptr;
}
