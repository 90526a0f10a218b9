// SPDX-License-Identifier: MIT

#include "common/tnla.h"

namespace {

struct Product {
  TnLaDblMat A;
  TnLaDblVec x;
  TnLaDblVec y;

  explicit Product(const bench::Case& c) : A(bench::matrix_a(c)), x(bench::vector_b(c)) {}
  void step() { tnla_mat_vec_prod(A, x, y); }
  void answer(double* out) const { bench::copy_out(y, out); }
};

}  // namespace

std::unique_ptr<bench::Task> bench::make_task(const Case& c) { return task<Product>(c); }
