// SPDX-License-Identifier: MIT

#include "common/twin.h"

namespace {

struct Inverse {
  reference::Matrix A;
  reference::Matrix X;

  explicit Inverse(const bench::Case& c) : A(bench::matrix_a(c)) {}
  void step() { X = reference::Qr(A).solve(reference::identity(A.n)).value(); }
  void answer(double* out) const { bench::copy_out(X, out); }
};

struct Determinant {
  reference::Matrix A;
  double result = 0.0;

  explicit Determinant(const bench::Case& c) : A(bench::matrix_a(c)) {}
  void step() { result = reference::determinant(A); }
  void answer(double* out) const { *out = result; }
};

}  // namespace

std::unique_ptr<bench::Task> bench::make_task(const Case& c) {
  if (c.operation == "inverse") return task<Inverse>(c);
  return task<Determinant>(c);
}
