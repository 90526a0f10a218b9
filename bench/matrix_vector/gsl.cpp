// SPDX-License-Identifier: MIT

#include "common/gsl.h"

namespace {

struct Product {
  bench::Matrix A;
  bench::Vector x;
  bench::Vector y;

  explicit Product(const bench::Case& c)
      : A(bench::matrix_a(c)), x(bench::vector_of(c.b)), y(bench::new_vector(c.n)) {}
  void step() { gsl_blas_dgemv(CblasNoTrans, 1.0, A.get(), x.get(), 0.0, y.get()); }
  void answer(double* out) const { bench::copy_out(*y, out); }
};

}  // namespace

std::unique_ptr<bench::Task> bench::make_task(const Case& c) { return task<Product>(c); }
