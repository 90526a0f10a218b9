// SPDX-License-Identifier: MIT

#include "common/openblas.h"

namespace {

struct Product {
  int n;
  CBLAS_TRANSPOSE form_a;
  CBLAS_TRANSPOSE form_b;
  std::vector<double> A;
  std::vector<double> B;
  std::vector<double> C;

  explicit Product(const bench::Case& c)
      : n(c.n),
        form_a(c.operation == "transposed_a" ? CblasTrans : CblasNoTrans),
        form_b(c.operation == "transposed_b" ? CblasTrans : CblasNoTrans),
        A(c.a),
        B(c.b),
        C(c.a.size()) {}
  void step() {
    cblas_dgemm(CblasColMajor, form_a, form_b, n, n, n, 1.0, A.data(), n, B.data(), n, 0.0, C.data(), n);
  }
  void answer(double* out) const { std::copy(C.begin(), C.end(), out); }
};

}  // namespace

std::unique_ptr<bench::Task> bench::make_task(const Case& c) { return task<Product>(c); }
