// SPDX-License-Identifier: MIT

#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace bench {

// How many elements a matrix has.
constexpr std::size_t n_elements(int rows, int cols) {
  return static_cast<std::size_t>(rows) * static_cast<std::size_t>(cols);
}

// Which runs a case takes part in: all of them, all but the quick ones, or the full run alone and there a
// few times only, because one step takes long.
enum class Extent { kQuick, kFull, kLong };

// One row of a problem's table: an operation at one size, with its numbers.
//
// A is m x n and B has p columns, both column by column.  How many rows B has, and what the operation makes
// of A and B, is said in the problem's file.
struct Case {
  std::string operation;
  int m = 0;
  int n = 0;
  int p = 1;
  Extent extent = Extent::kQuick;
  std::vector<double> a = {};
  std::vector<double> b = {};

  int b_rows() const { return static_cast<int>(b.size()) / p; }
};

}  // namespace bench
