// SPDX-License-Identifier: MIT

// The inverse and the determinant of an n x n matrix; the answer is one or the other.
//
// Ours come from the QR decomposition; the others' from LU, with half the operations, or from closed forms.

#include "common/problem.h"

#include <cmath>
#include <utility>

#include "common/check.h"
#include "common/numbers.h"

namespace {

struct Wide {
  long double determinant = 1.0L;
  long double condition = 0.0L;  // |A| |inverse of A|, which bounds that of the determinant
};

// By Gauss and Jordan with interchanges of rows, in place.
Wide eliminate(int order, const std::vector<double>& a) {
  const auto n = static_cast<std::size_t>(order);
  std::vector<long double> w(a.begin(), a.end());
  const auto at = [&w, n](std::size_t i, std::size_t j) -> long double& { return w[j * n + i]; };
  Wide result;
  for (std::size_t k = 0; k < n; ++k) {
    std::size_t pivot = k;
    for (std::size_t i = k + 1; i < n; ++i) {
      if (std::fabs(at(i, k)) > std::fabs(at(pivot, k))) pivot = i;
    }
    for (std::size_t j = 0; pivot != k && j < n; ++j) std::swap(at(k, j), at(pivot, j));
    if (pivot != k) result.determinant = -result.determinant;
    result.determinant *= at(k, k);
    const long double factor = 1.0L / at(k, k);
    at(k, k) = 1.0L;
    for (std::size_t j = 0; j < n; ++j) at(k, j) *= factor;
    for (std::size_t j = 0; j < n; ++j) {
      if (j == k) continue;
      for (std::size_t i = 0; i < n; ++i) {
        if (i != k) at(i, j) -= at(i, k) * at(k, j);
      }
    }
    for (std::size_t i = 0; i < n; ++i) {
      if (i != k) at(i, k) *= -at(k, k);
    }
  }
  long double sum = 0.0L;  // the columns are still in the order of the pivots, which the length ignores
  for (const long double value : w) sum += value * value;
  result.condition = std::sqrt(sum) * bench::length(a);
  return result;
}

}  // namespace

std::vector<bench::Case> bench::cases() {
  std::vector<Case> all;
  for (const char* const operation : {"inverse", "determinant"}) {
    for (const int n : {3, 6, 12, 32, 64, 128, 256}) all.push_back({operation, n, n});
  }
  return all;
}

void bench::fill(Case& c) { c.a = matrix(c.n, c.n, 1); }

std::size_t bench::answer_size(const Case& c) { return c.operation == "inverse" ? c.a.size() : 1; }

// A backward error of 10 n eps |A| moves the determinant by 10 n eps times its condition.
double bench::error(const Case& c, const double* answer) {
  if (c.operation == "determinant") {
    const Wide wide = eliminate(c.n, c.a);
    const long double relative = std::fabs((*answer - wide.determinant) / wide.determinant);
    return static_cast<double>(relative / (10.0L * c.n * kEpsilon * wide.condition));
  }
  std::vector<double> identity(c.a.size(), 0.0);
  for (std::size_t i = 0; i < identity.size(); i += static_cast<std::size_t>(c.n) + 1) identity[i] = 1.0;
  return residual(c.n, c.n, c.n, c.a.data(), answer, identity.data());
}
