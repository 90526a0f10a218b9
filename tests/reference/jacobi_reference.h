// SPDX-License-Identifier: MIT

#pragma once

#include <cmath>
#include <cstddef>
#include <utility>
#include <vector>

#include "reference/decomposition_reference.h"

// The cyclic Jacobi method with a threshold, one stated operation after the other.
namespace reference {

// What depends on the number of a sweep.  The defaults are the rule; others tell whether a test's data can
// see it.
struct JacobiRule {
  int most_sweeps = 50;
  int threshold_sweeps = 3;
  int first_zeroing_sweep = 4;
  bool sorts = true;
};

struct Jacobi {
  std::size_t n;
  Matrix a;
  std::vector<double> d;
  Matrix V;
  bool converged = false;
  int n_sweeps = 0;

  // n x n, or with more columns, which are kept.
  explicit Jacobi(const Matrix& matrix, JacobiRule rule = {})
      : n(matrix.m), a(matrix), d(n), V(identity(n)), b(n), z(n, 0.0) {
    for (std::size_t i = 0; i < n; ++i) b[i] = d[i] = a(i, i);
    iterate(rule);
    if (converged && rule.sorts) sort();
  }

 private:
  std::vector<double> b;
  std::vector<double> z;

  double sum_above_diagonal() const {
    double sm = 0.0;
    for (std::size_t p = 0; p < n; ++p) {
      for (std::size_t q = p + 1; q < n; ++q) sm = sm + std::fabs(a(p, q));
    }
    return sm;
  }

  void iterate(JacobiRule rule) {
    do {
      const double sm = sum_above_diagonal();
      if (sm == 0.0) {
        converged = true;
        return;
      }
      double threshold = 0.0;
      if (n_sweeps < rule.threshold_sweeps) threshold = (sm * 0.2) / static_cast<double>(n * n);
      sweep(threshold, n_sweeps >= rule.first_zeroing_sweep);
      for (std::size_t i = 0; i < n; ++i) {
        b[i] = b[i] + z[i];
        d[i] = b[i];
        z[i] = 0.0;
      }
      n_sweeps = n_sweeps + 1;
    } while (n_sweeps < rule.most_sweeps);
  }

  void sweep(double threshold, bool zeroes_negligible) {
    for (std::size_t p = 0; p < n; ++p) {
      for (std::size_t q = p + 1; q < n; ++q) {
        const double g = 100.0 * std::fabs(a(p, q));
        const bool negligible =
            std::fabs(d[p]) + g == std::fabs(d[p]) && std::fabs(d[q]) + g == std::fabs(d[q]);
        if (zeroes_negligible && negligible) {
          a(p, q) = 0.0;
        } else if (std::fabs(a(p, q)) > threshold) {
          rotate(p, q, g);
        }
      }
    }
  }

  void rotate(std::size_t p, std::size_t q, double g) {
    double h = d[q] - d[p];
    double t;
    if (std::fabs(h) + g == std::fabs(h)) {
      t = a(p, q) / h;
    } else {
      const double theta = 0.5 * h / a(p, q);
      t = 1.0 / (std::fabs(theta) + std::sqrt(theta * theta + 1.0));
      if (theta < 0.0) t = -t;
    }
    const double c = 1.0 / std::sqrt(t * t + 1.0);
    const double s = t * c;
    const double tau = s / (1.0 + c);
    h = t * a(p, q);
    z[p] = z[p] - h;
    z[q] = z[q] + h;
    d[p] = d[p] - h;
    d[q] = d[q] + h;
    a(p, q) = 0.0;
    const auto turn = [s, tau](double& x, double& y) {
      const double old_x = x;
      const double old_y = y;
      x = old_x - s * (old_y + old_x * tau);
      y = old_y + s * (old_x - old_y * tau);
    };
    for (std::size_t j = 0; j < p; ++j) turn(a(j, p), a(j, q));
    for (std::size_t j = p + 1; j < q; ++j) turn(a(p, j), a(j, q));
    for (std::size_t j = q + 1; j < n; ++j) turn(a(p, j), a(q, j));
    for (std::size_t j = 0; j < n; ++j) turn(V(j, p), V(j, q));
  }

  // Of equal values the first one wins.
  void sort() {
    for (std::size_t i = 0; i < n; ++i) {
      std::size_t k = i;
      for (std::size_t j = i + 1; j < n; ++j) {
        if (d[j] > d[k]) k = j;
      }
      if (k == i) continue;
      std::swap(d[i], d[k]);
      swap_cols(V, i, k);
    }
  }
};

}  // namespace reference
