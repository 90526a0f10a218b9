// SPDX-License-Identifier: MIT

#include "common/gsl.h"

namespace {

struct Solve {
  bench::Matrix A;
  bench::Matrix B;
  bench::Matrix QR;
  bench::Matrix X;
  bench::Vector tau_q;
  bench::Vector tau_z;
  bench::Vector work;
  bench::Vector rest;
  bench::Permutation order;

  explicit Solve(const bench::Case& c)
      : A(bench::matrix_a(c)),
        B(bench::matrix_b(c)),
        QR(bench::new_matrix(c.n, c.n)),
        X(bench::new_matrix(c.n, c.p)),
        tau_q(bench::new_vector(c.n)),
        tau_z(bench::new_vector(c.n)),
        work(bench::new_vector(c.n)),
        rest(bench::new_vector(c.n)),
        order(bench::new_permutation(c.n)) {}
  void step() {
    std::size_t rank = 0;
    gsl_matrix_memcpy(QR.get(), A.get());
    gsl_linalg_COD_decomp_e(QR.get(), tau_q.get(), tau_z.get(), order.get(), 1e-10, &rank, work.get());
    for (std::size_t j = 0; j < X->size2; ++j) {
      const gsl_vector_const_view b = gsl_matrix_const_column(B.get(), j);
      gsl_vector_view x = gsl_matrix_column(X.get(), j);
      gsl_linalg_COD_lssolve(QR.get(), tau_q.get(), tau_z.get(), order.get(), rank, &b.vector, &x.vector,
                             rest.get());
    }
  }
  void answer(double* out) const { bench::copy_out(*X, out); }
};

}  // namespace

std::unique_ptr<bench::Task> bench::make_task(const Case& c) {
  if (c.n <= 256) return task<Solve>(c);
  return nullptr;
}
