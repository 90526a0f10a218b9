// SPDX-License-Identifier: MIT

#pragma once

#include <cstddef>
#include <optional>
#include <vector>

#include "reference/decomposition_reference.h"
#include "reference/vector_reference.h"

// The adaptation of one jet to another, one stated operation after the other.
namespace reference {

// n elements of a jet from the top of column k on: those of the next columns where this one is shorter,
// and 0.0 where the jet ends.
inline std::vector<double> jet_column(const Matrix& jet, std::size_t k, int n) {
  std::vector<double> column;
  for (std::size_t i = k * jet.m; column.size() < static_cast<std::size_t>(n); ++i) {
    column.push_back(i < jet.a.size() ? jet.a[i] : 0.0);
  }
  return column;
}

// a x + b y
inline std::vector<double> combined(double a, const std::vector<double>& x, double b,
                                    const std::vector<double>& y) {
  std::vector<double> result(x.size());
  lincomb(static_cast<int>(x.size()), x.data(), a, y.data(), b, result.data(), false, false, false);
  return result;
}

inline double along(const std::vector<double>& w, const std::vector<double>& direction) {
  return scalprod(static_cast<int>(w.size()), w.data(), direction.data(), false, false);
}

// `level` is the answer of the behaviour object, if there is one.  Returns how often it has been asked.
inline int adapt_jet(std::optional<int> level, int order, Matrix& jet, const Matrix& ref, bool linear_only,
                     int* orientation) {
  if (order >= static_cast<int>(jet.n)) order = static_cast<int>(jet.n) - 1;
  if (order < 1) return 0;
  const int n = static_cast<int>(jet.m);
  const auto c = [&](std::size_t k) { return jet_column(jet, k, n); };
  const auto r = [&](std::size_t k) { return jet_column(ref, k, n); };
  const auto put = [&](std::size_t k, const std::vector<double>& column) {
    for (std::size_t i = 0; i < jet.m; ++i) jet(i, k) = column[i];
  };

  const double length = norm(n, c(1).data());
  const double ref_length = norm(n, r(1).data());
  if (length <= 1e-20) return 0;
  double lambda = ref_length / length;

  const double sp = along(c(1), r(1));
  if (orientation != nullptr) {
    if (*orientation == 0) *orientation = sp < 0 ? -1 : 1;
    if (*orientation < 0) lambda = -lambda;
  } else if (sp < 0) {
    lambda = -lambda;
  }

  double mu2 = 0.0;
  double mu3 = 0.0;
  if (!linear_only && order >= 2) {
    const double q = sq_norm(n, c(1).data());
    if (q <= 1e-20) return 0;
    double k = (lambda * -1.0) * lambda;
    std::vector<double> w = combined(1.0, r(2), k, c(2));
    mu2 = along(w, c(1)) / q;
    if (order >= 3) {
      k = k * lambda;
      w = combined(1.0, r(3), k, c(3));
      w = combined(1.0, w, (lambda * -3.0) * mu2, c(2));
      mu3 = along(w, c(1)) / q;
    }
  }

  int asked = 0;
  if (order >= 3) {
    std::size_t k2 = 2;
    if (level) {
      asked = 1;
      if (*level < 1) k2 = 1;
    }
    put(3, combined((lambda * lambda) * lambda, c(3), (lambda * 3.0) * mu2, c(k2)));
    put(3, combined(1.0, c(3), mu3, c(1)));
  }
  if (order >= 2) put(2, combined(lambda * lambda, c(2), mu2, c(1)));
  for (std::size_t i = 0; i < jet.m; ++i) jet(i, 1) = jet(i, 1) * lambda;
  return asked;
}

}  // namespace reference
