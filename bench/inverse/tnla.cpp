// SPDX-License-Identifier: MIT

#include "common/tnla.h"

namespace {

struct Inverse {
  TnLaDblMat A;
  TnLaDblMat X;

  explicit Inverse(const bench::Case& c) : A(bench::matrix_a(c)) {}
  void step() { tnla_inverse(A, X); }
  void answer(double* out) const { bench::copy_out(X, out); }
};

struct Determinant {
  TnLaDblMat A;
  double result = 0.0;

  explicit Determinant(const bench::Case& c) : A(bench::matrix_a(c)) {}
  void step() { result = A.det(); }
  void answer(double* out) const { *out = result; }
};

}  // namespace

std::unique_ptr<bench::Task> bench::make_task(const Case& c) {
  if (c.operation == "inverse") return task<Inverse>(c);
  return task<Determinant>(c);
}
