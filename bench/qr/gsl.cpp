// SPDX-License-Identifier: MIT

#include "common/gsl.h"

namespace {

struct Solve {
  bench::Matrix A;
  bench::Matrix B;
  bench::Matrix QR;
  bench::Matrix X;
  bench::Vector tau;
  bench::Vector rest;

  explicit Solve(const bench::Case& c)
      : A(bench::matrix_a(c)),
        B(bench::matrix_b(c)),
        QR(bench::new_matrix(c.m, c.n)),
        X(bench::new_matrix(c.n, c.p)),
        tau(bench::new_vector(c.n)),
        rest(bench::new_vector(c.m)) {}
  void step() {
    gsl_matrix_memcpy(QR.get(), A.get());
    gsl_linalg_QR_decomp(QR.get(), tau.get());
    for (std::size_t j = 0; j < X->size2; ++j) {
      const gsl_vector_const_view b = gsl_matrix_const_column(B.get(), j);
      gsl_vector_view x = gsl_matrix_column(X.get(), j);
      gsl_linalg_QR_lssolve(QR.get(), tau.get(), &b.vector, &x.vector, rest.get());
    }
  }
  void answer(double* out) const { bench::copy_out(*X, out); }
};

}  // namespace

std::unique_ptr<bench::Task> bench::make_task(const Case& c) {
  if (c.n <= 256) return task<Solve>(c);
  return nullptr;
}
