// SPDX-License-Identifier: MIT

// A V = V diag(d) for a symmetric A; the answer is d, in any order, and then V with its columns in that
// order.
//
// Ours and the plain loops are Jacobi's method; the others reduce A to tridiagonal form first, which takes
// fewer operations and finds small eigenvalues less precisely.

#include "common/problem.h"

#include <algorithm>

#include "common/check.h"
#include "common/numbers.h"

std::vector<bench::Case> bench::cases() {
  std::vector<Case> all;
  for (const int n : {3, 8, 16, 32, 64, 100, 200}) {
    all.push_back({"basis", n, n, 1, n <= 100 ? Extent::kQuick : Extent::kFull});
  }
  return all;
}

void bench::fill(Case& c) {
  const auto n = static_cast<std::size_t>(c.n);
  c.a = matrix(c.n, c.n, 1);
  for (std::size_t j = 0; j < n; ++j) {
    for (std::size_t i = 0; i < j; ++i) c.a[i * n + j] = c.a[j * n + i];
  }
}

std::size_t bench::answer_size(const Case& c) { return n_elements(c.n, c.n + 1); }

// V' V = I and A V = V D up to 10 (n + 8) eps, the latter in units of |A|: both are backward stable.
double bench::error(const Case& c, const double* answer) {
  const auto n = static_cast<std::size_t>(c.n);
  const double* const V = answer + n;
  std::vector<double> Vt(n * n);
  std::vector<double> VD(n * n);
  for (std::size_t j = 0; j < n; ++j) {
    for (std::size_t i = 0; i < n; ++i) {
      Vt[i * n + j] = V[j * n + i];
      VD[j * n + i] = V[j * n + i] * answer[j];
    }
  }
  std::vector<double> from_identity = multiply(c.n, c.n, c.n, Vt.data(), V);
  for (std::size_t i = 0; i < n; ++i) from_identity[i * n + i] -= 1.0;
  std::vector<double> rest = multiply(c.n, c.n, c.n, c.a.data(), V);
  for (std::size_t i = 0; i < rest.size(); ++i) rest[i] -= VD[i];
  const double limit = 10.0 * (c.n + 8) * kEpsilon;
  return worse(length(from_identity) / limit, length(rest) / (limit * length(c.a)));
}
