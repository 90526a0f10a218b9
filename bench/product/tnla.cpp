// SPDX-License-Identifier: MIT

#include "common/tnla.h"

namespace {

struct Product {
  TnLaDblMat A;
  TnLaDblMat B;
  TnLaDblMat C;

  explicit Product(const bench::Case& c) : A(bench::matrix_a(c)), B(bench::matrix_b(c)) {}
  void step() { tnla_mat_mat_prod(A, B, C); }
  void answer(double* out) const { bench::copy_out(C, out); }
};

// The raw form, whose steps say how an operand is stored.
struct Transposed {
  int n;
  int a_row_step;
  int b_row_step;
  std::vector<double> A;
  std::vector<double> B;
  std::vector<double> C;

  explicit Transposed(const bench::Case& c)
      : n(c.n),
        a_row_step(c.operation == "transposed_a" ? n : 1),
        b_row_step(c.operation == "transposed_b" ? n : 1),
        A(c.a),
        B(c.b),
        C(c.a.size()) {}
  void step() {
    const auto size = static_cast<std::size_t>(n);
    tnla_mat_mat_prod(size, size, size, A.data(), B.data(), C.data(), a_row_step, n + 1 - a_row_step,
                      b_row_step, n + 1 - b_row_step, 1, n);
  }
  void answer(double* out) const { std::copy(C.begin(), C.end(), out); }
};

}  // namespace

std::unique_ptr<bench::Task> bench::make_task(const Case& c) {
  if (c.operation == "plain") return task<Product>(c);
  return task<Transposed>(c);
}
