// SPDX-License-Identifier: MIT

// One sum at a time, over x and y in A and B: the answer is one number.
//
//     norm             |x|
//     scalar_product   x . y
//     distance         |x - y|
//     unit_vectors     x . y / (|x| |y|): the scalar product with both unit flags
//
// The peer `floor` has the terms already and only adds them up, one after the other: what no program with
// one accumulator can undercut.  unit_vectors takes two such chains, since its terms need the lengths.

#include "common/problem.h"

#include <cmath>

#include "common/check.h"
#include "common/numbers.h"

std::vector<bench::Case> bench::cases() {
  std::vector<Case> all;
  for (const char* const operation : {"norm", "scalar_product", "distance", "unit_vectors"}) {
    for (const int n : {100, 1000, 10000}) all.push_back({operation, 0, n});
  }
  return all;
}

void bench::fill(Case& c) {
  c.a = matrix(c.n, 1, 1);
  c.b = matrix(c.n, 1, 2);
}

std::size_t bench::answer_size(const Case& /*c*/) { return 1; }

// A sum of n rounded products, against one in more precision: n eps times the sum of the magnitudes, and
// a few more roundings for the root and the quotients.
double bench::error(const Case& c, const double* answer) {
  long double xx = 0.0L;
  long double yy = 0.0L;
  long double xy = 0.0L;
  long double magnitude = 0.0L;
  for (std::size_t i = 0; i < c.a.size(); ++i) {
    const long double x = c.a[i];
    const long double y = c.b[i];
    xx += x * x;
    yy += y * y;
    xy += x * y;
    magnitude += std::fabs(x * y);
  }
  const double limit = (c.n + 8.0) * kEpsilon;
  const auto units = [answer, limit](long double expected, long double size) {
    return static_cast<double>(std::fabs(*answer - expected) / size) / limit;
  };
  if (c.operation == "norm") return units(std::sqrt(xx), std::sqrt(xx));
  if (c.operation == "scalar_product") return units(xy, magnitude);
  if (c.operation == "distance") return units(std::sqrt(xx + yy - 2 * xy), std::sqrt(xx + yy));
  return units(xy / std::sqrt(xx * yy), 2.0L);
}
