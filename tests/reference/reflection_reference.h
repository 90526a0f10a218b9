// SPDX-License-Identifier: MIT

#pragma once

#include <array>
#include <cmath>
#include <cstddef>
#include <vector>

// Householder reflections, one stated operation after the other: what the tests compare with.
//
// Entry i of a vector v with the increment incr is v[i * incr].  Violated preconditions are carried
// through, as far as the loops below give them a meaning.
namespace reference {

inline double square(double x) { return x * x; }

inline void h1(int j_pivot, int j_zero, int n, double* v, int incr, double& up) {
  if (j_zero == n) return;
  double cl = std::fabs(v[j_pivot * incr]);
  for (int i = j_zero; i < n; ++i) {
    if (std::fabs(v[i * incr]) > cl) cl = std::fabs(v[i * incr]);
  }
  if (cl < 1e-20) return;
  const double clinv = 1.0 / cl;
  double sm = square(v[j_pivot * incr] * clinv);
  for (int i = j_zero; i < n; ++i) sm = sm + square(v[i * incr] * clinv);
  double s = cl * std::sqrt(sm);
  if (v[j_pivot * incr] > 0.0) s = -s;
  up = v[j_pivot * incr] - s;
  v[j_pivot * incr] = s;
}

inline void h2(int j_pivot, int j_zero, int n, const double* u, int incr_u, double up, double* c,
               int incr_c, int stride_vec, int n_vec) {
  if (n_vec < 1 || j_zero == n) return;
  double b = u[j_pivot * incr_u] * up;
  if (1e-20 > -b) return;
  b = 1.0 / b;
  for (int k = 0; k < n_vec; ++k) {
    double* const w = c + k * stride_vec;
    double sm = w[j_pivot * incr_c] * up;
    for (int i = j_zero; i < n; ++i) sm = sm + w[i * incr_c] * u[i * incr_u];
    if (sm == 0.0) continue;
    sm = sm * b;
    w[j_pivot * incr_c] = w[j_pivot * incr_c] + sm * up;
    for (int i = j_zero; i < n; ++i) w[i * incr_c] = w[i * incr_c] + sm * u[i * incr_u];
  }
}

struct Reflection {
  int j_pivot;
  int j_zero;
  std::vector<double> u;
  double scale = 0.0;

  Reflection(int pivot, int zero, int n, double* v, int incr)
      : j_pivot(pivot), j_zero(zero), u(static_cast<std::size_t>(n), 0.0) {
    double& up = u[static_cast<std::size_t>(j_pivot)];
    h1(j_pivot, j_zero, n, v, incr, up);
    const double p = v[j_pivot * incr] * up;
    if (!(1e-20 > -p)) scale = 1.0 / p;
    for (int i = j_zero; i < n; ++i) {
      u[static_cast<std::size_t>(i)] = v[i * incr];
      v[i * incr] = 0.0;
    }
  }

  void apply(double* w, int incr) const {
    const int n = static_cast<int>(u.size());
    if (j_zero == n || scale == 0.0) return;
    const double up = u[static_cast<std::size_t>(j_pivot)];
    double sm = w[j_pivot * incr] * up;
    for (int i = j_zero; i < n; ++i) sm = sm + u[static_cast<std::size_t>(i)] * w[i * incr];
    if (sm == 0.0) return;
    const double factor = sm * scale;
    w[j_pivot * incr] = w[j_pivot * incr] + factor * up;
    for (int i = j_zero; i < n; ++i) {
      w[i * incr] = w[i * incr] + factor * u[static_cast<std::size_t>(i)];
    }
  }
};

// A pivot and one entry below it, where the decisions about a reflection fall: the larger of both is 1e-20
// or next to it, or s * up is -1e-20 or next to it.
inline std::vector<std::array<double, 2>> columns_at_the_thresholds() {
  std::vector<std::array<double, 2>> columns;
  for (const double size : {1e-20, std::nextafter(1e-20, 0.0), -1e-20, std::nextafter(-1e-20, 0.0)}) {
    columns.push_back({size, 0.0});
    columns.push_back({0.0, size});
    columns.push_back({size / 2, size});
  }
  for (int step = -40; step <= 40; ++step) {
    for (int pivot = 0; pivot < 8; ++pivot) {
      const double unit = 0x1p-86;  // the last digit of 1e-10
      const std::array<double, 2> column = {-pivot * unit, 1e-10 + step * unit};
      std::array<double, 2> v = column;
      double up = 0.0;
      h1(0, 1, 2, v.data(), 1, up);
      if (v[0] * up == -1e-20 || v[0] * up == std::nextafter(-1e-20, 0.0)) columns.push_back(column);
    }
  }
  return columns;
}

}  // namespace reference
