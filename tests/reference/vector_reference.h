// SPDX-License-Identifier: MIT

#pragma once

#include <cmath>
#include <cstddef>
#include <vector>

#include "reference/reflection_reference.h"
#include "support/bits.h"
#include "support/values.h"

// What the kernels on plain arrays compute, as plain loops: every operation is rounded on its own, every
// sum has one accumulator, starts from +0.0 and takes its terms in ascending order.

namespace reference {

// x . x, or |x - y|^2 with the relative zero test against x . x.
inline double sq_norm(int n, const double* x, const double* y = nullptr) {
  double squares = 0.0;
  double distance = 0.0;
  for (int i = 0; i < n; ++i) {
    squares = squares + x[i] * x[i];
    const double difference = y == nullptr ? 0.0 : x[i] - y[i];
    distance = distance + difference * difference;
  }
  if (y == nullptr) return squares < 1e-40 ? 0.0 : squares;
  if (squares * 1e-24 > distance) return 0.0;
  return distance < 1e-40 ? 0.0 : distance;
}

inline double norm(int n, const double* x, const double* y = nullptr) {
  return std::sqrt(sq_norm(n, x, y));
}

inline double scalprod(int n, const double* x, const double* y, bool unit_x, bool unit_y) {
  double fx = 1.0;
  if (unit_x && sq_norm(n, x) > 0.0) fx = 1.0 / std::sqrt(sq_norm(n, x));
  double fy = 1.0;
  if (unit_y && sq_norm(n, y) > 0.0) fy = 1.0 / std::sqrt(sq_norm(n, y));
  const double f = fy * fx;
  double s = 0.0;
  for (int i = 0; i < n; ++i) s = s + (f * x[i]) * y[i];
  return std::fabs(s) < 1e-40 ? 0.0 : s;
}

inline double normalize(int n, double* x) {
  const double q = sq_norm(n, x);
  if (q == 0.0) {
    for (int i = 0; i < n; ++i) x[i] = 0.0;
    return 0.0;
  }
  const double length = std::sqrt(q);
  for (int i = 0; i < n; ++i) x[i] = x[i] / length;
  return length;
}

inline void lincomb(int n, const double* x, double a, const double* y, double b, double* res, bool unit_x,
                    bool unit_y, bool unit_res) {
  const double qx = sq_norm(n, x);
  const double qy = sq_norm(n, y);
  if (unit_x && qx > 0.0) a = a / std::sqrt(qx);
  if (unit_y && qy > 0.0) b = b / std::sqrt(qy);
  for (int i = 0; i < n; ++i) {
    const double first = a * x[i];
    const double second = b * y[i];
    res[i] = first + second;
  }
  if (unit_res) normalize(n, res);
}

inline void ortho_vec(int n, const double* x, double* res) {
  if (n < 2) return;
  const double q = sq_norm(n, x);
  if (q == 0.0) {
    for (int i = 0; i < n; ++i) res[i] = i == 0 ? 1.0 : 0.0;
    return;
  }
  int k = 0;
  for (int i = 1; i < n; ++i) k = std::fabs(x[k]) > std::fabs(x[i]) ? i : k;
  const double c = -x[k] / q;
  for (int i = 0; i < n; ++i) res[i] = c * x[i];
  res[k] = res[k] + 1.0;
  normalize(n, res);
}

inline void crossprod_of_many(int n, const double* u, const double* w, double* res) {
  for (int i = 0; i < n; ++i) res[i] = u[i];
  const Reflection h1(0, 1, n, res, 1);
  const double s1 = res[0];
  for (int i = 0; i < n; ++i) res[i] = w[i];
  h1.apply(res, 1);
  const Reflection h2(1, 2, n, res, 1);
  const double s2 = res[1];
  for (int i = 0; i < n; ++i) res[i] = 0.0;
  res[2] = s2 * s1;
  h2.apply(res, 1);
  h1.apply(res, 1);
}

inline void crossprod(int n, const double* u, const double* w, double* res, bool unit_u, bool unit_w,
                      bool unit_res) {
  if (n < 3) return;
  if (n == 3) {
    res[0] = u[1] * w[2] - u[2] * w[1];
    res[1] = w[0] * u[2] - u[0] * w[2];
    res[2] = u[0] * w[1] - u[1] * w[0];
  } else {
    crossprod_of_many(n, u, w, res);
  }
  for (const double* vector : {unit_u ? u : nullptr, unit_w ? w : nullptr}) {
    if (vector == nullptr) continue;
    const double q = sq_norm(n, vector);
    const double factor = q > 0.0 ? 1.0 / std::sqrt(q) : q;
    for (int i = 0; i < n; ++i) res[i] = res[i] * factor;
  }
  if (unit_res) normalize(n, res);
}

// --- What the vector and matrix classes add ------------------------------------------------------------

// Normalisation of a vector object: times the reciprocal of the length, where the raw form divides.
inline void normalize_by_reciprocal(std::vector<double>& x) {
  const double q = scalprod(static_cast<int>(x.size()), x.data(), x.data(), false, false);
  const double factor = 1.0 / std::sqrt(q);
  for (double& element : x) element = q == 0.0 ? 0.0 : element * factor;
}

inline double mx_norm(const std::vector<double>& a) {
  if (a.empty()) return -999999999.0;
  double m = a[0];
  for (std::size_t i = 1; i < a.size(); ++i) {
    const double t = std::fabs(a[i]);
    if (m > t) continue;
    m = t;
  }
  return m;
}

// --- Other ways to add the same terms, which the library must not take ---------------------------------

// Two halves, each summed so.
inline double pairwise_sum(const std::vector<double>& terms, std::size_t first, std::size_t n) {
  if (n == 0) return 0.0;
  if (n == 1) return terms[first];
  return pairwise_sum(terms, first, n / 2) + pairwise_sum(terms, first + n / 2, n - n / 2);
}

// Several accumulators that take the terms in turn.
inline double interleaved_sum(const std::vector<double>& terms, std::size_t n_accumulators) {
  std::vector<double> sums(n_accumulators, 0.0);
  for (std::size_t i = 0; i < terms.size(); ++i) sums[i % n_accumulators] += terms[i];
  return pairwise_sum(sums, 0, sums.size());
}

inline double descending_sum(const std::vector<double>& terms) {
  double sum = 0.0;
  for (std::size_t i = terms.size(); i-- > 0;) sum += terms[i];
  return sum;
}

inline double ascending_sum(const std::vector<double>& terms) {
  double sum = 0.0;
  for (const double term : terms) sum += term;
  return sum;
}

// Whether every other way gives another value than the ascending sum.
inline bool tells_orders_apart(const std::vector<double>& terms) {
  const double sum = ascending_sum(terms);
  return sum != descending_sum(terms) && sum != pairwise_sum(terms, 0, terms.size()) &&
         sum != interleaved_sum(terms, 2) && sum != interleaved_sum(terms, 4) &&
         sum != interleaved_sum(terms, 8);
}

// Ascending, but with x * y added unrounded.
inline double fused_sum(const std::vector<double>& x, const std::vector<double>& y) {
  double sum = 0.0;
  for (std::size_t i = 0; i < x.size(); ++i) sum = std::fma(x[i], y[i], sum);
  return sum;
}

// --- Data that shows a difference ----------------------------------------------------------------------

// `large`, and then n numbers that vanish one by one when they are added to it, but not together.
inline std::vector<double> large_before_small(double large, double small, std::size_t n) {
  std::vector<double> values(n + 1, small);
  values[0] = large;
  return values;
}

// Two numbers whose squares, added, are exactly this.
inline std::vector<double> with_square_sum(double target) {
  double a = std::sqrt(target);
  while (a * a > target) a = ulp_below(a);
  const double b = std::sqrt(target - a * a);
  EXPECT_EQ(a * a + b * b, target);
  return {a, b};
}

// Half the vectors are plain numbers, since one NaN in a vector hides most else.
inline std::vector<double> draw(Random& random, std::size_t n) {
  return random.below(2) == 0 ? random.vector(n) : random.any_vector(n);
}

}  // namespace reference
