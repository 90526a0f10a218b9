// SPDX-License-Identifier: MIT

#include "common/gsl.h"

namespace {

struct Product {
  CBLAS_TRANSPOSE_t form_a;
  CBLAS_TRANSPOSE_t form_b;
  bench::Matrix A;
  bench::Matrix B;
  bench::Matrix C;

  explicit Product(const bench::Case& c)
      : form_a(c.operation == "transposed_a" ? CblasTrans : CblasNoTrans),
        form_b(c.operation == "transposed_b" ? CblasTrans : CblasNoTrans),
        A(bench::matrix_a(c)),
        B(bench::matrix_b(c)),
        C(bench::new_matrix(c.n, c.n)) {}
  void step() { gsl_blas_dgemm(form_a, form_b, 1.0, A.get(), B.get(), 0.0, C.get()); }
  void answer(double* out) const { bench::copy_out(*C, out); }
};

}  // namespace

std::unique_ptr<bench::Task> bench::make_task(const Case& c) {
  if (c.n <= 256) return task<Product>(c);
  return nullptr;
}
