// SPDX-License-Identifier: MIT

// Vectors, element by element, x and y in A and B.
//
//     lincomb   z = 0.75 x + 1.25 y into a vector that is there
//     add       a new vector z = x + y
//     scale     x = -x by a product with -1, in place; the answer is x

#include "common/problem.h"

#include <cmath>

#include "common/check.h"
#include "common/numbers.h"

std::vector<bench::Case> bench::cases() {
  std::vector<Case> all;
  for (const char* const operation : {"lincomb", "add", "scale"}) {
    for (const int n : {100, 1000, 10000, 100000}) {
      all.push_back({operation, 0, n, 1, n <= 10000 ? Extent::kQuick : Extent::kFull});
    }
  }
  return all;
}

void bench::fill(Case& c) {
  c.a = matrix(c.n, 1, 1);
  c.b = matrix(c.n, 1, 2);
}

std::size_t bench::answer_size(const Case& c) { return c.a.size(); }

// Two roundings of a number that is at most the sum of the magnitudes, here and in the check.
double bench::error(const Case& c, const double* answer) {
  double worst = 0.0;
  for (std::size_t i = 0; i < c.a.size(); ++i) {
    const double a = c.operation == "lincomb" ? 0.75 : c.operation == "add" ? 1.0 : -1.0;
    const double b = c.operation == "lincomb" ? 1.25 : c.operation == "add" ? 1.0 : 0.0;
    const double limit = 4.0 * kEpsilon * (std::fabs(a * c.a[i]) + std::fabs(b * c.b[i]));
    worst = worse(worst, std::fabs(answer[i] - (a * c.a[i] + b * c.b[i])) / limit);
  }
  return worst;
}
