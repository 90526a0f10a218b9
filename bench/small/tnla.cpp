// SPDX-License-Identifier: MIT

#include "common/tnla.h"

#include "common/fixed_size.h"

namespace {

template <int N>
struct Fixed {
  static constexpr auto kSize = static_cast<std::size_t>(N);
  using Matrix = TnLaTSmallMat<kSize, kSize, double>;
  Matrix A;
  Matrix B;
  Matrix X;
  std::size_t p;
  bool solved = false;

  explicit Fixed(const bench::Case& c) : p(static_cast<std::size_t>(c.p)) {
    for (std::size_t i = 0; i < kSize; ++i) {
      for (std::size_t j = 0; j < kSize; ++j) A(i, j) = c.a[j * kSize + i];
      for (std::size_t j = 0; j < p; ++j) B(i, j) = c.b[j * kSize + i];
    }
  }
  void step() { solved = tnla_linearsolve(A, B, X); }
  void answer(double* out) const {
    for (std::size_t j = 0; j < p; ++j) {
      for (std::size_t i = 0; i < kSize; ++i) out[j * kSize + i] = X(i, j);
    }
  }
};

struct Request {
  TnLaDblMat A;
  TnLaDblMat B;
  TnLaDblMat X;
  bool solved = false;

  explicit Request(const bench::Case& c) : A(bench::matrix_a(c)), B(bench::matrix_b(c)) {}
  void step() { solved = tnla_linearsolve(A, B, X); }
  void answer(double* out) const { bench::copy_out(X, out); }
};

}  // namespace

std::unique_ptr<bench::Task> bench::make_task(const Case& c) {
  if (c.operation == "request") return task<Request>(c);
  return fixed_size_task<Fixed>(c);
}
