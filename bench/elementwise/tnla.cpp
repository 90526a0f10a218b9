// SPDX-License-Identifier: MIT

#include "common/tnla.h"

namespace {

struct Vectors {
  TnLaDblVec x;
  TnLaDblVec y;
  TnLaDblVec z;

  explicit Vectors(const bench::Case& c) : x(bench::vector_a(c)), y(bench::vector_b(c)), z(x) {}
  void answer(double* out) const { bench::copy_out(z, out); }
};

struct LinComb : Vectors {
  using Vectors::Vectors;
  void step() { tnla_lincomb(x, 0.75, y, 1.25, z); }
};

struct Add : Vectors {
  using Vectors::Vectors;
  void step() {
    const TnLaDblVec sum = x + y;
    last = sum(0);
  }
  void answer(double* out) const { bench::copy_out(x + y, out); }  // that of the last step is gone
  double last = 0.0;
};

struct Scale : Vectors {
  using Vectors::Vectors;
  void step() { z *= -1.0; }
};

}  // namespace

std::unique_ptr<bench::Task> bench::make_task(const Case& c) {
  if (c.operation == "lincomb") return task<LinComb>(c);
  if (c.operation == "add") return task<Add>(c);
  return task<Scale>(c);
}
