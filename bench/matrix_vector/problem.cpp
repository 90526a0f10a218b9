// SPDX-License-Identifier: MIT

// y = A x for an n x n matrix A; the answer is y.

#include "common/problem.h"

#include "common/check.h"
#include "common/numbers.h"

std::vector<bench::Case> bench::cases() {
  std::vector<Case> all;
  for (const int n : {3, 12, 64, 128, 256, 512, 1000, 2000}) {
    all.push_back({"product", n, n, 1, n <= 512 ? Extent::kQuick : Extent::kFull});
  }
  return all;
}

void bench::fill(Case& c) {
  c.a = matrix(c.m, c.n, 1);
  c.b = matrix(c.n, 1, 2);
}

std::size_t bench::answer_size(const Case& c) { return c.b.size(); }

// The check multiplies too; the difference of two such products is what their residual's bound allows.
double bench::error(const Case& c, const double* answer) {
  return residual(c.m, c.n, 1, c.a.data(), c.b.data(), answer);
}
