// SPDX-License-Identifier: MIT

#pragma once

#include <cmath>
#include <cstddef>
#include <cstdlib>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "closed_curve/outline.h"
#include "linear_regression/data_set.h"

// The file formats of the examples once more, read as plainly as they are described: all lines first, then
// all words, and nothing at all where the file is not right.
namespace second_reader {

using Line = std::vector<std::string>;
using Rows = std::vector<std::vector<double>>;

inline bool is_blank(char c) { return c == ' ' || ('\t' <= c && c <= '\r'); }

// The lines that hold words and do not begin with `comment`.  Every line ends with a line end.
inline std::optional<std::vector<Line>> lines(const std::string& text, std::optional<char> comment) {
  std::vector<Line> result;
  Line line;
  std::string word;
  bool is_comment = false;
  bool begins = true;
  for (const char c : text) {
    is_comment = is_comment || (begins && comment && c == *comment);
    begins = c == '\n';
    if (!is_blank(c)) {
      word += c;
      continue;
    }
    if (!word.empty()) line.push_back(std::exchange(word, {}));
    if (c != '\n') continue;
    if (!line.empty() && !is_comment) result.push_back(line);
    line.clear();
    is_comment = false;
  }
  if (!begins) return std::nullopt;
  return result;
}

inline std::size_t digits(const std::string& word, std::size_t& at) {
  const std::size_t first = at;
  while (at < word.size() && '0' <= word[at] && word[at] <= '9') ++at;
  return at - first;
}

// [+-] digits [. digits] [e [+-] digits], with a digit before or after the point; no over- or underflow.
inline std::optional<double> number(const std::string& word) {
  std::size_t at = 0;
  if (!word.empty() && (word[0] == '+' || word[0] == '-')) at = 1;
  const std::size_t mantissa = at;
  std::size_t n_digits = digits(word, at);
  if (at < word.size() && word[at] == '.') n_digits += digits(word, ++at);
  if (n_digits == 0) return std::nullopt;
  const bool is_zero = word.substr(mantissa, at - mantissa).find_first_of("123456789") == std::string::npos;
  if (at < word.size() && (word[at] == 'e' || word[at] == 'E')) {
    ++at;
    if (at < word.size() && (word[at] == '+' || word[at] == '-')) ++at;
    if (digits(word, at) == 0) return std::nullopt;
  }
  if (at != word.size()) return std::nullopt;
  const double value = std::strtod(word.c_str(), nullptr);
  if (std::isinf(value) || (value == 0.0 && !is_zero)) return std::nullopt;
  return value;
}

// Digits, with a minus sign or none, within low ... high.
inline std::optional<int> integer(const std::string& word, int low, int high) {
  const bool is_negative = !word.empty() && word[0] == '-';
  long value = 0;
  const std::size_t first = is_negative ? 1 : 0;
  if (first == word.size()) return std::nullopt;
  for (std::size_t i = first; i < word.size(); ++i) {
    if (word[i] < '0' || word[i] > '9' || value > 1L << 40) return std::nullopt;
    value = 10 * value + (word[i] - '0');
  }
  if (is_negative) value = -value;
  if (value < low || value > high) return std::nullopt;
  return static_cast<int>(value);
}
inline std::optional<std::size_t> count(const std::string& word) {
  const std::optional<int> value = integer(word, 1, 2147483647);
  return value ? std::optional<std::size_t>(*value) : std::nullopt;
}

inline std::optional<std::vector<double>> numbers(const Line& line) {
  std::vector<double> row;
  for (const std::string& word : line) {
    const std::optional<double> value = number(word);
    if (!value) return std::nullopt;
    row.push_back(*value);
  }
  return row;
}

inline std::optional<Rows> rows(const std::string& text, std::size_t n_columns, std::size_t fewest) {
  const auto all = lines(text, '#');
  if (!all) return std::nullopt;
  Rows result;
  for (const Line& line : *all) {
    const auto row = numbers(line);
    if (!row || row->size() != n_columns) return std::nullopt;
    result.push_back(*row);
  }
  if (result.size() < fewest) return std::nullopt;
  return result;
}

inline std::optional<Rows> outline(const std::string& text) {
  std::optional<Rows> points = rows(text, 2, 72);
  if (!points || points->size() > 20000) return std::nullopt;
  double length = 0.0;
  for (std::size_t i = 0; i < points->size(); ++i) {
    const std::vector<double>& from = (*points)[i];
    const std::vector<double>& to = (*points)[i + 1 == points->size() ? 0 : i + 1];
    length += std::hypot(to[0] - from[0], to[1] - from[1]);
  }
  if (length < 1.0 || length > 1e9) return std::nullopt;
  return points;
}

inline std::optional<Rows> cloud(const std::string& text) {
  std::optional<Rows> points = rows(text, 3, 3);
  if (!points) return std::nullopt;
  for (const std::vector<double>& point : *points) {
    for (const double x : point) {
      if (std::fabs(x) > 1e9) return std::nullopt;
    }
  }
  return points;
}

struct SymmetricMatrix {
  std::size_t n = 0;
  std::map<std::pair<std::size_t, std::size_t>, double> entries;  // of the lower triangle, from (0, 0) on
};

inline std::optional<SymmetricMatrix> symmetric_matrix(const std::string& text) {
  const auto all = lines(text, std::nullopt);
  if (!all || all->empty()) return std::nullopt;
  if ((*all)[0] != Line{"%%MatrixMarket", "matrix", "coordinate", "real", "symmetric"}) return std::nullopt;
  std::size_t at = 1;
  while (at < all->size() && (*all)[at][0][0] == '%') ++at;
  if (at == all->size() || (*all)[at].size() != 3) return std::nullopt;
  const auto n = count((*all)[at][0]);
  const auto n_cols = count((*all)[at][1]);
  const auto n_entries = count((*all)[at][2]);
  if (!n || !n_entries || n != n_cols || *n > 2000) return std::nullopt;
  if (all->size() - at - 1 != *n_entries) return std::nullopt;
  SymmetricMatrix result{*n, {}};
  for (++at; at < all->size(); ++at) {
    const Line& line = (*all)[at];
    if (line.size() != 3) return std::nullopt;
    const auto i = count(line[0]);
    const auto j = count(line[1]);
    const auto value = number(line[2]);
    if (!i || !j || !value || *i > *n || *j > *i) return std::nullopt;
    if (!result.entries.emplace(std::pair(*i - 1, *j - 1), *value).second) return std::nullopt;
  }
  return result;
}

// The terms of 'polynomial degrees 0 1 ...' or 'columns 1 x ...' for data with these predictors.
inline std::optional<std::vector<Term>> terms(const Line& design, const Line& predictors) {
  const bool is_polynomial = design.size() >= 3 && design[0] == "polynomial" && design[1] == "degrees";
  const bool is_columns = design.size() >= 2 && design[0] == "columns";
  if (!is_polynomial && !is_columns) return std::nullopt;
  std::vector<Term> result;
  for (std::size_t i = is_polynomial ? 2 : 1; i < design.size(); ++i) {
    std::optional<Term> term;
    if (is_polynomial) {
      const auto degree = integer(design[i], 0, 100);
      if (degree) term = Term{0, *degree};
    } else if (design[i] == "1") {
      term = Term{0, 0};
    } else {
      for (std::size_t k = predictors.size(); k-- > 0;) {
        if (predictors[k] == design[i]) term = Term{k, 1};
      }
    }
    if (!term) return std::nullopt;
    result.push_back(*term);
  }
  if (result.size() > 1000) return std::nullopt;
  return result;
}

inline std::optional<DataSet> data_set(const std::string& text) {
  const auto all = lines(text, '#');
  if (!all) return std::nullopt;
  const std::vector<std::string> ignored = {"level",          "r_squared", "anova_regression",
                                            "anova_residual", "exact",     "exact_rss"};
  DataSet data;
  std::map<std::string, std::string> values;  // of the keys with one
  Line design;
  std::size_t at = 0;
  for (; at < all->size() && (*all)[at][0] != "data"; ++at) {
    const Line& line = (*all)[at];
    const std::string& key = line[0];
    if (key == "dataset" || key == "observations" || key == "parameters" || key == "residual_sd") {
      if (line.size() != 2) return std::nullopt;
      if (key == "residual_sd" && !number(line[1])) return std::nullopt;
      if ((key == "observations" || key == "parameters") && !count(line[1])) return std::nullopt;
      values[key] = line[1];
    } else if (key == "certified") {
      if (line.size() != 4 || !number(line[2])) return std::nullopt;
      data.coefficients.push_back({line[1], *number(line[2])});
    } else if (key == "design") {
      design.assign(line.begin() + 1, line.end());
    } else {
      bool is_ignored = false;
      for (const std::string& word : ignored) is_ignored = is_ignored || word == key;
      if (!is_ignored) return std::nullopt;
    }
  }
  if (at == all->size() || (*all)[at].size() < 3 || values.size() != 4) return std::nullopt;
  const Line predictors((*all)[at].begin() + 2, (*all)[at].end());
  const auto model = terms(design, predictors);
  if (!model) return std::nullopt;
  data.name = values["dataset"];
  data.residual_sd = *number(values["residual_sd"]);
  data.terms = *model;
  data.predictors.resize(predictors.size());
  for (++at; at < all->size(); ++at) {
    const auto row = numbers((*all)[at]);
    if (!row || row->size() != 1 + predictors.size()) return std::nullopt;
    data.response.push_back((*row)[0]);
    for (std::size_t i = 0; i < predictors.size(); ++i) data.predictors[i].push_back((*row)[i + 1]);
  }
  const std::size_t n_parameters = *count(values["parameters"]);
  if (data.terms.size() != n_parameters || data.coefficients.size() != n_parameters) return std::nullopt;
  if (data.response.size() != *count(values["observations"])) return std::nullopt;
  if (data.response.size() <= n_parameters) return std::nullopt;
  return data;
}

}  // namespace second_reader
