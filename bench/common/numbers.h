// SPDX-License-Identifier: MIT

#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "common/case.h"

namespace bench {

// n numbers in [-1, 1), the same ones for the same seed (splitmix64).
inline std::vector<double> numbers(std::size_t n, std::uint64_t seed) {
  std::vector<double> values(n);
  for (double& value : values) {
    std::uint64_t z = (seed += 0x9e3779b97f4a7c15u);
    z = (z ^ (z >> 30)) * 0xbf58476d1ce4e5b9u;
    z = (z ^ (z >> 27)) * 0x94d049bb133111ebu;
    value = static_cast<double>((z ^ (z >> 31)) >> 11) * 0x1p-52 - 1.0;
  }
  return values;
}

inline std::vector<double> matrix(int rows, int cols, std::uint64_t seed) {
  return numbers(n_elements(rows, cols), seed);
}

}  // namespace bench
