// SPDX-License-Identifier: MIT

#include "common/gsl.h"

namespace {

struct Lu {
  bench::Matrix A;
  bench::Matrix factors;
  bench::Permutation order;
  int sign = 1;

  explicit Lu(const bench::Case& c)
      : A(bench::matrix_a(c)), factors(bench::new_matrix(c.n, c.n)), order(bench::new_permutation(c.n)) {}
  void factor() {
    gsl_matrix_memcpy(factors.get(), A.get());
    gsl_linalg_LU_decomp(factors.get(), order.get(), &sign);
  }
};

struct Inverse : Lu {
  bench::Matrix X;

  explicit Inverse(const bench::Case& c) : Lu(c), X(bench::new_matrix(c.n, c.n)) {}
  void step() {
    factor();
    gsl_linalg_LU_invert(factors.get(), order.get(), X.get());
  }
  void answer(double* out) const { bench::copy_out(*X, out); }
};

struct Determinant : Lu {
  using Lu::Lu;
  double result = 0.0;

  void step() {
    factor();
    result = gsl_linalg_LU_det(factors.get(), sign);
  }
  void answer(double* out) const { *out = result; }
};

}  // namespace

std::unique_ptr<bench::Task> bench::make_task(const Case& c) {
  if (c.operation == "inverse") return task<Inverse>(c);
  return task<Determinant>(c);
}
