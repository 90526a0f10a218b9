// SPDX-License-Identifier: MIT

#include <algorithm>

#include "common/peer.h"

namespace {

struct Vectors {
  std::vector<double> x;
  std::vector<double> y;
  std::vector<double> z;

  explicit Vectors(const bench::Case& c) : x(c.a), y(c.b), z(c.a) {}
  void answer(double* out) const { std::copy(z.begin(), z.end(), out); }
};

struct LinComb : Vectors {
  using Vectors::Vectors;
  double a = 0.75;
  double b = 1.25;
  void step() {
    for (std::size_t i = 0; i < z.size(); ++i) z[i] = a * x[i] + b * y[i];
  }
};

struct Add : Vectors {
  using Vectors::Vectors;
  void step() {
    std::vector<double> sum(x.size());
    for (std::size_t i = 0; i < sum.size(); ++i) sum[i] = x[i] + y[i];
    z.swap(sum);
  }
};

struct Scale : Vectors {
  using Vectors::Vectors;
  double factor = -1.0;
  void step() {
    for (double& value : z) value *= factor;
  }
};

}  // namespace

std::unique_ptr<bench::Task> bench::make_task(const Case& c) {
  if (c.operation == "lincomb") return task<LinComb>(c);
  if (c.operation == "add") return task<Add>(c);
  return task<Scale>(c);
}
