// SPDX-License-Identifier: MIT

#include "common/tnla.h"

namespace {

struct Basis {
  TnLaDblMat A;
  TnLaDblMat work;
  TnArray<double> d;
  TnLaDblMat V;

  explicit Basis(const bench::Case& c) : A(bench::matrix_a(c)) {}
  void step() {
    work = A;
    tnla_eigenvector_basis(work, d, V);
  }
  void answer(double* out) const { bench::copy_out(V, std::copy_n(d.data(), d.size(), out)); }
};

}  // namespace

std::unique_ptr<bench::Task> bench::make_task(const Case& c) { return task<Basis>(c); }
