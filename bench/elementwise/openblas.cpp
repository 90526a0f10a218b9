// SPDX-License-Identifier: MIT

#include "common/openblas.h"

namespace {

struct Vectors {
  std::vector<double> x;
  std::vector<double> y;
  std::vector<double> z;

  explicit Vectors(const bench::Case& c) : x(c.a), y(c.b), z(c.a) {}
  void answer(double* out) const { std::copy(z.begin(), z.end(), out); }
};

// BLAS has it in place only; the copy is one that a caller who keeps y needs too.
struct LinComb : Vectors {
  using Vectors::Vectors;
  void step() {
    cblas_dcopy(bench::length(y), y.data(), 1, z.data(), 1);
    cblas_daxpby(bench::length(x), 0.75, x.data(), 1, 1.25, z.data(), 1);
  }
};

struct Add : Vectors {
  using Vectors::Vectors;
  void step() {
    std::vector<double> sum(y);
    cblas_daxpy(bench::length(x), 1.0, x.data(), 1, sum.data(), 1);
    z.swap(sum);
  }
};

struct Scale : Vectors {
  using Vectors::Vectors;
  void step() { cblas_dscal(bench::length(z), -1.0, z.data(), 1); }
};

}  // namespace

std::unique_ptr<bench::Task> bench::make_task(const Case& c) {
  if (c.operation == "lincomb") return task<LinComb>(c);
  if (c.operation == "add") return task<Add>(c);
  return task<Scale>(c);
}
