// SPDX-License-Identifier: MIT

// A X = B by the QR decomposition without interchanges, for 2 right sides; the answer is X.
//
//     solve           factor and solve, in one call where a library has one
//     decomposition   the same by an object that keeps the decomposition
//
// Tall cases are solved in the least-squares sense.

#include "common/problem.h"

#include "common/check.h"
#include "common/numbers.h"

std::vector<bench::Case> bench::cases() {
  std::vector<Case> all;
  for (const int n : {3, 4, 6, 8, 12, 32, 64, 128, 256, 512, 1000}) {
    all.push_back({"solve", n, n, 2, n <= 256 ? Extent::kQuick : Extent::kFull});
  }
  all.push_back({"solve", 10000, 20, 2, Extent::kQuick});
  all.push_back({"solve", 2000, 2000, 2, Extent::kLong});
  for (const int n : {3, 12, 64, 256}) all.push_back({"decomposition", n, n, 2});
  return all;
}

// B = A X for a random X, so that the system can be met exactly, whatever its shape.
void bench::fill(Case& c) {
  c.a = matrix(c.m, c.n, 1);
  c.b = multiply(c.m, c.n, c.p, c.a.data(), matrix(c.n, c.p, 2).data());
}

std::size_t bench::answer_size(const Case& c) { return n_elements(c.n, c.p); }

double bench::error(const Case& c, const double* answer) {
  return residual(c.m, c.n, c.p, c.a.data(), answer, c.b.data());
}
