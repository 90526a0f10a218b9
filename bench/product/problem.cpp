// SPDX-License-Identifier: MIT

// C = A B: as it stands, and with the transpose of a stored A or B.
//
// A is n x n, in `transposed_a` stored as its transpose, B likewise in `transposed_b`; the answer is C.

#include "common/problem.h"

#include <cmath>

#include "common/check.h"
#include "common/numbers.h"

namespace {

std::vector<double> magnitudes(std::vector<double> x) {
  for (double& value : x) value = std::fabs(value);
  return x;
}

}  // namespace

std::vector<bench::Case> bench::cases() {
  std::vector<Case> all;
  for (const int n : {8, 12, 32, 64, 128, 256, 512, 1000}) {
    all.push_back({"plain", n, n, n, n <= 256 ? Extent::kQuick : Extent::kFull});
  }
  for (const char* const form : {"transposed_a", "transposed_b"}) {
    for (const int n : {12, 64, 256}) all.push_back({form, n, n, n});
  }
  return all;
}

void bench::fill(Case& c) {
  c.a = matrix(c.m, c.n, 1);
  c.b = matrix(c.n, c.p, 2);
}

std::size_t bench::answer_size(const Case& c) { return c.a.size(); }

// C v against A (B v), for one vector v: the products round n terms each, so every element of the
// difference is at most about 3 n eps |A| |B| |v|.
double bench::error(const Case& c, const double* answer) {
  const int n = c.n;
  const std::vector<double> a = c.operation == "transposed_a" ? transposed(n, n, c.a) : c.a;
  const std::vector<double> b = c.operation == "transposed_b" ? transposed(n, n, c.b) : c.b;
  const std::vector<double> v = matrix(n, 1, 3);
  const auto a_b_v = [n](const std::vector<double>& A, const std::vector<double>& B,
                         const std::vector<double>& V) {
    return multiply(n, n, 1, A.data(), multiply(n, n, 1, B.data(), V.data()).data());
  };
  const std::vector<double> expected = a_b_v(a, b, v);
  const std::vector<double> limit = a_b_v(magnitudes(a), magnitudes(b), magnitudes(v));
  const std::vector<double> actual = multiply(n, n, 1, answer, v.data());
  double worst = 0.0;
  for (std::size_t i = 0; i < actual.size(); ++i) {
    worst = worse(worst, std::fabs(actual[i] - expected[i]) / (3.0 * n * kEpsilon * limit[i]));
  }
  return worst;
}
