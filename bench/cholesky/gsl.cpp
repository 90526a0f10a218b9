// SPDX-License-Identifier: MIT

#include "common/gsl.h"

namespace {

struct Solve {
  bench::Matrix A;
  bench::Vector b;
  bench::Matrix L;
  bench::Vector x;
  bool keeps_factor;

  explicit Solve(const bench::Case& c)
      : A(bench::matrix_a(c)),
        b(bench::vector_of(c.b)),
        L(bench::new_matrix(c.n, c.n)),
        x(bench::new_vector(c.n)),
        keeps_factor(c.operation == "solve") {
    factor();
  }
  void factor() {
    gsl_matrix_memcpy(L.get(), A.get());
    gsl_linalg_cholesky_decomp1(L.get());
  }
  void step() {
    if (!keeps_factor) factor();
    gsl_linalg_cholesky_solve(L.get(), b.get(), x.get());
  }
  void answer(double* out) const { bench::copy_out(*x, out); }
};

}  // namespace

std::unique_ptr<bench::Task> bench::make_task(const Case& c) {
  if (c.n <= 256) return task<Solve>(c);
  return nullptr;
}
