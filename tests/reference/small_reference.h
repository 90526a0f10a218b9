// SPDX-License-Identifier: MIT

#pragma once

#include <cmath>
#include <cstddef>
#include <vector>

// What the small matrices and vectors compute, as plain loops: the order of every operation is spelt out.
namespace small_reference {

using Values = std::vector<double>;

inline Values sum(const Values& x, const Values& y) {
  Values out(x.size());
  for (std::size_t i = 0; i < x.size(); ++i) out[i] = x[i] + y[i];
  return out;
}

inline Values difference(const Values& x, const Values& y) {
  Values out(x.size());
  for (std::size_t i = 0; i < x.size(); ++i) out[i] = x[i] - y[i];
  return out;
}

inline Values scaled(const Values& x, double s) {
  Values out(x.size());
  for (std::size_t i = 0; i < x.size(); ++i) out[i] = x[i] * s;
  return out;
}

inline double dot(const Values& x, const Values& y) {
  double s = 0.0;
  for (std::size_t i = 0; i < x.size(); ++i) {
    const double term = x[i] * y[i];
    s = s + term;
  }
  return s;
}

inline double sq_norm(const Values& x) {
  const double s = dot(x, x);
  if (s < 1e-40) return 0.0;
  return s;
}

// The first element counts with its sign; a comparison with NaN is false, so NaN replaces and is replaced.
inline double mx_norm(const Values& x) {
  double m = x[0];
  for (std::size_t i = 1; i < x.size(); ++i) {
    const double t = std::fabs(x[i]);
    if (m > t) continue;
    m = t;
  }
  return m;
}

// By the reciprocal of the length.
inline Values normalized(const Values& x) {
  const double q = sq_norm(x);
  if (q == 0.0) return Values(x.size(), 0.0);
  const double factor = 1.0 / std::sqrt(q);
  return scaled(x, factor);
}

// e_k without its component along x, where x[k] is the first element of smallest magnitude, brought to
// length 1 by one division an element.
inline Values orthogonal(const Values& x) {
  Values out(x.size(), 0.0);
  if (x.size() < 2) return out;
  const double q = sq_norm(x);
  if (q == 0.0) {
    out[0] = 1.0;
    return out;
  }
  std::size_t k = 0;
  for (std::size_t i = 1; i < x.size(); ++i) {
    if (std::fabs(x[k]) > std::fabs(x[i])) k = i;
  }
  const double c = -x[k] / q;
  for (std::size_t i = 0; i < x.size(); ++i) out[i] = c * x[i];
  out[k] = out[k] + 1.0;
  const double rest = sq_norm(out);
  if (rest == 0.0) return Values(x.size(), 0.0);
  const double length = std::sqrt(rest);
  for (double& e : out) e = e / length;
  return out;
}

// M x for n x n elements, column by column.
inline Values product(std::size_t n, const Values& m, const Values& x) {
  Values y(n, 0.0);
  for (std::size_t j = 0; j < n; ++j) {
    for (std::size_t i = 0; i < n; ++i) {
      const double term = x[j] * m[i + j * n];
      y[i] = term + y[i];
    }
  }
  return y;
}

// The n x n elements with those of j == i + offset set.
inline Values with_diagonal(std::size_t n, Values m, double value, long long offset) {
  for (std::size_t i = 0; i < n; ++i) {
    for (std::size_t j = 0; j < n; ++j) {
      if (static_cast<long long>(j) - static_cast<long long>(i) == offset) m[i + j * n] = value;
    }
  }
  return m;
}

}  // namespace small_reference
