// SPDX-License-Identifier: MIT

#include "tnarraydebug.h"

#include <algorithm>
#include <charconv>
#include <string>

namespace {

// Sign, first digit, point, exponent and some room to spare: what scientific form needs beside the
// digits after the point.
constexpr std::size_t kOtherCharacters = 16;

// Appends `value` to `line`, right-aligned.  Independent of any locale.
void append(std::string& line, double value, int width, int digits) {
  std::string text(static_cast<std::size_t>(digits) + kOtherCharacters, '\0');
  const std::to_chars_result end =
      std::to_chars(text.data(), text.data() + text.size(), value, std::chars_format::scientific, digits);
  text.resize(static_cast<std::size_t>(end.ptr - text.data()));
  const std::size_t columns = width < 0 ? 0 : static_cast<std::size_t>(width);
  if (text.size() < columns) line.append(columns - text.size(), ' ');
  line += text;
}

// n values of a vector with the increment `step`.
void print_strided(TnJournal& journal, std::size_t n, const double* values, std::size_t step, int per_line,
                   int width, int digits, int indent) {
  const std::size_t line_length = static_cast<std::size_t>(std::max(per_line, 1));
  const std::string blanks(static_cast<std::size_t>(std::max(indent, 0)), ' ');
  std::string line;
  for (std::size_t i = 0; i < n;) {
    line = blanks;
    const std::size_t line_end = n - i < line_length ? n : i + line_length;
    for (; i < line_end; ++i) append(line, values[i * step], width, std::max(digits, 0));
    journal << line.c_str() << tnEndExpr;
  }
}

}  // namespace

void tn_print_values(TnJournal& journal, std::size_t n, const double* values, int per_line, int width,
                     int digits, int indent) {
  print_strided(journal, n, values, 1, per_line, width, digits, indent);
}

void tn_print_matrix(TnJournal& journal, bool name_rows, std::size_t n_rows, std::size_t n_cols,
                     const double* values, int per_line, int width, int digits, int indent) {
  for (std::size_t i = 0; i < n_rows; ++i) {
    if (name_rows) journal << tn_blankstring(indent) << "row " << i << tnEndExpr;
    print_strided(journal, n_cols, n_cols == 0 ? nullptr : values + i, n_rows, per_line, width, digits,
                  indent);
  }
}
