// SPDX-License-Identifier: MIT

#include "common/check.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace bench {

double worse(double a, double b) { return a > b || std::isnan(a) ? a : b; }

double length(const std::vector<double>& x) {
  double sum = 0.0;
  for (const double value : x) sum += value * value;
  return std::sqrt(sum);
}

std::vector<double> transposed(int m, int n, const std::vector<double>& a) {
  const auto rows = static_cast<std::size_t>(m);
  const auto cols = static_cast<std::size_t>(n);
  std::vector<double> result;
  for (std::size_t i = 0; i < rows; ++i) {
    for (std::size_t j = 0; j < cols; ++j) result.push_back(a[j * rows + i]);
  }
  return result;
}

std::vector<double> multiply(int m, int n, int p, const double* a, const double* b) {
  const auto rows = static_cast<std::size_t>(m);
  const auto inner = static_cast<std::size_t>(n);
  const auto cols = static_cast<std::size_t>(p);
  std::vector<double> c(rows * cols, 0.0);
  for (std::size_t j = 0; j < cols; ++j) {
    for (std::size_t l = 0; l < inner; ++l) {
      for (std::size_t i = 0; i < rows; ++i) c[j * rows + i] += a[l * rows + i] * b[j * inner + l];
    }
  }
  return c;
}

double residual(int m, int n, int p, const double* a, const double* x, const double* b) {
  const auto rows = static_cast<std::size_t>(m);
  const auto inner = static_cast<std::size_t>(n);
  const double length_a = length(std::vector<double>(a, a + rows * inner));
  const std::vector<double> product = multiply(m, n, p, a, x);
  double worst = 0.0;
  for (std::size_t j = 0; j < static_cast<std::size_t>(p); ++j) {
    std::vector<double> rest(rows);
    for (std::size_t i = 0; i < rows; ++i) rest[i] = product[j * rows + i] - b[j * rows + i];
    const double length_x = length(std::vector<double>(x + j * inner, x + (j + 1) * inner));
    const double length_b = length(std::vector<double>(b + j * rows, b + (j + 1) * rows));
    const double explained = 10.0 * std::max(m, n) * kEpsilon * (length_a * length_x + length_b);
    worst = worse(worst, length(rest) / explained);
  }
  return worst;
}

double distance(std::size_t n, const double* x, const double* y, double limit) {
  double largest = 0.0;
  double difference = 0.0;
  for (std::size_t i = 0; i < n; ++i) {
    largest = worse(largest, std::fabs(y[i]));
    difference = worse(difference, std::fabs(x[i] - y[i]));
  }
  return difference / (limit * largest);
}

}  // namespace bench
