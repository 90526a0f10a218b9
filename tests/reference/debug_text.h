// SPDX-License-Identifier: MIT

#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <string>
#include <vector>

// What the array printers write, restated with printf.
namespace reference {

inline std::string blanks(int n) { return std::string(static_cast<std::size_t>(std::max(n, 0)), ' '); }

inline std::string printed(double x, int width, int digits) {
  char text[256];
  std::snprintf(text, sizeof(text), "%*.*e", std::max(width, 0), std::max(digits, 0), x);
  return text;
}

inline std::string printed(const std::vector<double>& values, int per_line, int width, int digits,
                           int indent) {
  const std::size_t line_length = per_line < 1 ? 1 : static_cast<std::size_t>(per_line);
  std::string text;
  for (std::size_t i = 0; i < values.size(); ++i) {
    if (i % line_length == 0) text += blanks(indent);
    text += printed(values[i], width, digits);
    if ((i + 1) % line_length == 0 || i + 1 == values.size()) text += "\n";
  }
  return text;
}

// `values` is column-major.
inline std::string printed_matrix(bool flag, std::size_t n_rows, const std::vector<double>& values,
                                  int per_line, int width, int digits, int indent) {
  const std::size_t n_cols = values.size() / n_rows;
  std::string text;
  for (std::size_t i = 0; i < n_rows; ++i) {
    if (flag) text += blanks(indent) + "row " + std::to_string(i) + "\n";
    std::vector<double> row;
    for (std::size_t j = 0; j < n_cols; ++j) row.push_back(values[j * n_rows + i]);
    text += printed(row, per_line, width, digits, indent);
  }
  return text;
}

}  // namespace reference
