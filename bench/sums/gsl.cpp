// SPDX-License-Identifier: MIT

#include "common/gsl.h"

namespace {

struct Sum {
  bench::Vector x;
  bench::Vector y;
  double result = 0.0;

  explicit Sum(const bench::Case& c) : x(bench::vector_of(c.a)), y(bench::vector_of(c.b)) {}
  void answer(double* out) const { *out = result; }
};

struct Norm : Sum {
  using Sum::Sum;
  void step() { result = gsl_blas_dnrm2(x.get()); }
};

struct ScalarProduct : Sum {
  using Sum::Sum;
  void step() { gsl_blas_ddot(x.get(), y.get(), &result); }
};

}  // namespace

std::unique_ptr<bench::Task> bench::make_task(const Case& c) {
  if (c.operation == "norm") return task<Norm>(c);
  if (c.operation == "scalar_product") return task<ScalarProduct>(c);
  return nullptr;
}
