// SPDX-License-Identifier: MIT

#include "common/twin.h"
#include "reference/cholesky_reference.h"

namespace {

struct FactorSolve {
  reference::Matrix A;
  std::vector<double> b;
  std::vector<double> x;

  explicit FactorSolve(const bench::Case& c) : A(bench::matrix_a(c)), b(c.b) {}
  void step() { x = reference::Cholesky(A).solve(b); }
  void answer(double* out) const { std::copy(x.begin(), x.end(), out); }
};

struct Solve {
  reference::Cholesky factor;
  std::vector<double> b;
  std::vector<double> x;

  explicit Solve(const bench::Case& c) : factor(bench::matrix_a(c)), b(c.b) {}
  void step() { x = factor.solve(b); }
  void answer(double* out) const { std::copy(x.begin(), x.end(), out); }
};

}  // namespace

std::unique_ptr<bench::Task> bench::make_task(const Case& c) {
  if (c.n > 512) return nullptr;
  if (c.operation == "solve") return task<Solve>(c);
  return task<FactorSolve>(c);
}
