// SPDX-License-Identifier: MIT

#pragma once

#include <cstddef>
#include <vector>

// Matrix products as the three loops that define them: every element is a sum with one accumulator, from
// +0.0, with l ascending, and every product is rounded before it is added.

namespace reference {

// Where element (i, j) lies: at i * row + j * col.
struct Steps {
  std::ptrdiff_t row;
  std::ptrdiff_t col;

  std::ptrdiff_t at(std::size_t i, std::size_t j) const {
    return static_cast<std::ptrdiff_t>(i) * row + static_cast<std::ptrdiff_t>(j) * col;
  }
};

inline void strided_product(std::size_t m, std::size_t k, std::size_t n, const double* a, Steps sa,
                            const double* b, Steps sb, double* c, Steps sc) {
  for (std::size_t i = 0; i < m; ++i) {
    for (std::size_t j = 0; j < n; ++j) c[sc.at(i, j)] = 0.0;
  }
  for (std::size_t i = 0; i < m; ++i) {
    for (std::size_t j = 0; j < n; ++j) {
      for (std::size_t l = 0; l < k; ++l) {
        const double term = a[sa.at(i, l)] * b[sb.at(l, j)];
        c[sc.at(i, j)] = c[sc.at(i, j)] + term;
      }
    }
  }
}

// Column-major blocks without gaps.
inline void product(std::size_t m, std::size_t k, std::size_t n, const double* a, const double* b,
                    double* c) {
  const auto leading = [](std::size_t rows) { return Steps{1, static_cast<std::ptrdiff_t>(rows)}; };
  strided_product(m, k, n, a, leading(m), b, leading(k), c, leading(m));
}

inline std::vector<double> product(std::size_t m, std::size_t k, std::size_t n,
                                   const std::vector<double>& a, const std::vector<double>& b) {
  std::vector<double> c(m * n);
  product(m, k, n, a.data(), b.data(), c.data());
  return c;
}

}  // namespace reference
