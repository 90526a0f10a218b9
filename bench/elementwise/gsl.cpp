// SPDX-License-Identifier: MIT

#include "common/gsl.h"

namespace {

struct Vectors {
  bench::Vector x;
  bench::Vector y;
  bench::Vector z;

  explicit Vectors(const bench::Case& c)
      : x(bench::vector_of(c.a)), y(bench::vector_of(c.b)), z(bench::vector_of(c.a)) {}
  void answer(double* out) const { bench::copy_out(*z, out); }
};

// In place only, like BLAS.
struct LinComb : Vectors {
  using Vectors::Vectors;
  void step() {
    gsl_vector_memcpy(z.get(), y.get());
    gsl_vector_axpby(0.75, x.get(), 1.25, z.get());
  }
};

struct Scale : Vectors {
  using Vectors::Vectors;
  void step() { gsl_vector_scale(z.get(), -1.0); }
};

}  // namespace

std::unique_ptr<bench::Task> bench::make_task(const Case& c) {
  if (c.operation == "lincomb") return task<LinComb>(c);
  if (c.operation == "scale") return task<Scale>(c);
  return nullptr;
}
