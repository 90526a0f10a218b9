// SPDX-License-Identifier: MIT

// A x = b for a symmetric positive definite A; the answer is x.
//
//     factor_solve   a new matrix every time
//     solve          a new right side every time, the factor is kept

#include "common/problem.h"

#include <cmath>

#include "common/check.h"
#include "common/numbers.h"

std::vector<bench::Case> bench::cases() {
  std::vector<Case> all;
  for (const char* const operation : {"factor_solve", "solve"}) {
    for (const int n : {3, 12, 32, 64, 128, 256, 512, 1000}) {
      all.push_back({operation, n, n, 1, n <= 256 ? Extent::kQuick : Extent::kFull});
    }
  }
  return all;
}

// The identity and, beside the diagonal, uniform numbers in +-1/(2 sqrt n): for large n the eigenvalues are
// within 1 +- 1/sqrt 3, by the semicircle law.
void bench::fill(Case& c) {
  const auto n = static_cast<std::size_t>(c.n);
  c.a = matrix(c.n, c.n, 1);
  for (std::size_t j = 0; j < n; ++j) {
    c.a[j * n + j] = 1.0;
    for (std::size_t i = 0; i < j; ++i) {
      c.a[j * n + i] /= 2.0 * std::sqrt(c.n);
      c.a[i * n + j] = c.a[j * n + i];
    }
  }
  c.b = matrix(c.n, 1, 2);
}

std::size_t bench::answer_size(const Case& c) { return c.b.size(); }

double bench::error(const Case& c, const double* answer) {
  return residual(c.n, c.n, 1, c.a.data(), answer, c.b.data());
}
