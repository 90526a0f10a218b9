// SPDX-License-Identifier: MIT

#pragma once

#include <cstddef>
#include <fstream>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

// What is wrong with a file, as "FILE: text" or "FILE:LINE: text".
struct DataError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

using Words = std::vector<std::string>;

// A text file, line by line.  Whatever is wrong with it is a DataError that names the line.
class TextFile {
 public:
  // Lines that begin with `comment`, if there is one, are skipped, as are empty ones.
  TextFile(const std::string& path, std::optional<char> comment);

  // The words of the next line; false at the end of the file.
  bool next(Words& words);

  // The number of the line that `next` gave.
  std::size_t line() const { return line_; }

  [[noreturn]] void fail(const std::string& text) const { fail_at(line_, text); }
  [[noreturn]] void fail_at(std::size_t line, const std::string& text) const;

  void expect_words(const Words& words, std::size_t n) const;
  double number(const std::string& word) const;      // finite
  std::size_t count(const std::string& word) const;  // 1 or more

 private:
  std::string path_;
  std::optional<char> comment_;
  std::ifstream file_;
  std::size_t line_ = 0;
};

// Rows of n_columns numbers each, one a line; '#' begins a comment.  At least n_rows of them.
std::vector<std::vector<double>> read_rows(const std::string& path, std::size_t n_columns,
                                           std::size_t n_rows);
