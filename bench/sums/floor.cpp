// SPDX-License-Identifier: MIT

#include <cmath>

#include "common/peer.h"

namespace {

// The terms are there already: what is left is one addition after the other.
struct Chain {
  bool is_root;
  std::vector<double> terms;
  double result = 0.0;

  explicit Chain(const bench::Case& c) : is_root(c.operation != "scalar_product") {
    for (std::size_t i = 0; i < c.a.size(); ++i) {
      const double difference = c.a[i] - c.b[i];
      terms.push_back(c.operation == "norm"             ? c.a[i] * c.a[i]
                      : c.operation == "scalar_product" ? c.a[i] * c.b[i]
                                                        : difference * difference);
    }
  }
  void step() {
    double s = 0.0;
    for (const double term : terms) s += term;
    result = is_root ? std::sqrt(s) : s;
  }
  void answer(double* out) const { *out = result; }
};

// Both lengths side by side, and then the sum whose terms need them.
struct TwoChains {
  std::vector<double> xx;
  std::vector<double> yy;
  std::vector<double> xy;
  double result = 0.0;

  explicit TwoChains(const bench::Case& c) {
    for (std::size_t i = 0; i < c.a.size(); ++i) {
      xx.push_back(c.a[i] * c.a[i]);
      yy.push_back(c.b[i] * c.b[i]);
      xy.push_back(c.a[i] * c.b[i]);
    }
  }
  void step() {
    double s = 0.0;
    double t = 0.0;
    for (std::size_t i = 0; i < xx.size(); ++i) {
      s += xx[i];
      t += yy[i];
    }
    const double factor = (1.0 / std::sqrt(s)) * (1.0 / std::sqrt(t));
    double sum = 0.0;
    for (const double term : xy) sum += factor * term;
    result = sum;
  }
  void answer(double* out) const { *out = result; }
};

}  // namespace

std::unique_ptr<bench::Task> bench::make_task(const Case& c) {
  if (c.operation == "unit_vectors") return task<TwoChains>(c);
  return task<Chain>(c);
}
