// SPDX-License-Identifier: MIT

#include "common/twin.h"
#include "reference/jacobi_reference.h"

namespace {

struct Basis {
  reference::Matrix A;
  reference::Jacobi result;

  explicit Basis(const bench::Case& c) : A(bench::matrix_a(c)), result(reference::Matrix(0, 0)) {}
  void step() { result = reference::Jacobi(A); }
  void answer(double* out) const {
    bench::copy_out(result.V, std::copy(result.d.begin(), result.d.end(), out));
  }
};

}  // namespace

std::unique_ptr<bench::Task> bench::make_task(const Case& c) { return task<Basis>(c); }
