// SPDX-License-Identifier: MIT

#include "text_file.h"

#include <charconv>
#include <cmath>
#include <sstream>

TextFile::TextFile(const std::string& path, std::optional<char> comment)
    : path_(path), comment_(comment), file_(path) {
  if (!file_) throw DataError(path_ + ": cannot be opened");
}

bool TextFile::next(Words& words) {
  words.clear();
  std::string text;
  while (words.empty() && std::getline(file_, text)) {
    ++line_;
    if (file_.eof()) fail("the line does not end: the file may have been cut short");
    if (comment_ && !text.empty() && text[0] == *comment_) continue;
    std::istringstream stream(text);
    for (std::string word; stream >> word;) words.push_back(word);
  }
  if (file_.bad()) throw DataError(path_ + ": cannot be read");
  return !words.empty();
}

void TextFile::fail_at(std::size_t line, const std::string& text) const {
  throw DataError(path_ + ":" + std::to_string(line) + ": " + text);
}

void TextFile::expect_words(const Words& words, std::size_t n) const {
  if (words.size() != n) {
    fail("the line has " + std::to_string(words.size()) + " words where " + std::to_string(n) + " belong");
  }
}

double TextFile::number(const std::string& word) const {
  const char* first = word.data();
  const char* const last = first + word.size();
  if (word.size() > 1 && word[0] == '+' && word[1] != '-') ++first;
  double value = 0.0;
  const std::from_chars_result end = std::from_chars(first, last, value);
  if (end.ec != std::errc() || end.ptr != last || !std::isfinite(value)) {
    fail("'" + word + "' stands where a number belongs");
  }
  return value;
}

std::size_t TextFile::count(const std::string& word) const {
  int value = 0;
  const char* const last = word.data() + word.size();
  const std::from_chars_result end = std::from_chars(word.data(), last, value);
  if (end.ec != std::errc() || end.ptr != last || value < 1) {
    fail("'" + word + "' stands where a count belongs");
  }
  return static_cast<std::size_t>(value);
}

std::vector<std::vector<double>> read_rows(const std::string& path, std::size_t n_columns,
                                           std::size_t n_rows) {
  TextFile file(path, '#');
  std::vector<std::vector<double>> rows;
  for (Words words; file.next(words);) {
    file.expect_words(words, n_columns);
    std::vector<double> row;
    for (const std::string& word : words) row.push_back(file.number(word));
    rows.push_back(row);
  }
  if (rows.size() < n_rows) {
    file.fail("the file has " + std::to_string(rows.size()) + " rows where at least " +
              std::to_string(n_rows) + " are wanted");
  }
  return rows;
}
