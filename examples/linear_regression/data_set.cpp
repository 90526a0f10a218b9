#include "data_set.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <fstream>
#include <optional>
#include <sstream>

namespace {

using Words = std::vector<std::string>;

// No sensible problem has more terms, or a higher power of a predictor.
constexpr std::size_t kMostTerms = 1000;
constexpr int kHighestDegree = 100;

class Reader {
 public:
  explicit Reader(const std::string& path) : path_(path) {}

  DataSet read() {
    std::ifstream file(path_);
    if (!file) throw DataError(path_ + ": cannot be opened");
    std::string line;
    while (std::getline(file, line)) {
      ++line_number_;
      if (file.eof()) fail("the line does not end: the file may have been cut short");
      read_line(line);
    }
    if (file.bad()) throw DataError(path_ + ": cannot be read");
    check();
    return data_;
  }

 private:
  [[noreturn]] void fail(const std::string& text) const {
    throw DataError(path_ + ":" + std::to_string(line_number_) + ": " + text);
  }

  void read_line(const std::string& line) {
    if (!line.empty() && line[0] == '#') return;
    std::istringstream stream(line);
    Words words;
    for (std::string word; stream >> word;) words.push_back(word);
    if (words.empty()) return;
    if (in_data_) {
      read_row(words);
    } else {
      read_key(words);
    }
  }

  void read_key(const Words& words) {
    const std::string& key = words[0];
    if (key == "dataset") {
      expect_words(words, 2);
      data_.name = words[1];
    } else if (key == "observations") {
      expect_words(words, 2);
      n_observations_ = count(words[1]);
    } else if (key == "parameters") {
      expect_words(words, 2);
      n_parameters_ = count(words[1]);
    } else if (key == "design") {
      design_.assign(words.begin() + 1, words.end());
      design_line_ = line_number_;
    } else if (key == "certified") {
      expect_words(words, 4);
      data_.coefficients.push_back({words[1], number(words[2])});
    } else if (key == "residual_sd") {
      expect_words(words, 2);
      data_.residual_sd = number(words[1]);
      has_residual_sd_ = true;
    } else if (key == "data") {
      start_data(words);
    } else if (key != "level" && key != "r_squared" && key != "anova_regression" &&
               key != "anova_residual" && key != "exact" && key != "exact_rss") {
      fail("unknown key '" + key + "'");
    }
  }

  // data y x1 x2 ...: the names are there, so the model can be built.
  void start_data(const Words& words) {
    if (words.size() < 3) fail("'data' names the response and at least one predictor");
    predictor_names_.assign(words.begin() + 2, words.end());
    data_.predictors.resize(predictor_names_.size());
    in_data_ = true;
    build_terms();
  }

  void build_terms() {
    if (design_.size() >= 3 && design_[0] == "polynomial" && design_[1] == "degrees") {
      for (std::size_t i = 2; i < design_.size(); ++i) data_.terms.push_back({0, degree(design_[i])});
    } else if (design_.size() >= 2 && design_[0] == "columns") {
      for (std::size_t i = 1; i < design_.size(); ++i) data_.terms.push_back(column(design_[i]));
    } else {
      line_number_ = design_line_ != 0 ? design_line_ : line_number_;
      fail("'design polynomial degrees ...' or 'design columns ...' is wanted");
    }
    if (data_.terms.size() > kMostTerms) fail("the design has too many terms");
  }

  int degree(const std::string& word) const {
    const std::optional<int> value = whole_number(word);
    if (!value || *value < 0 || *value > kHighestDegree) fail_in_design("'" + word + "' is no degree");
    return *value;
  }

  Term column(const std::string& word) const {
    if (word == "1") return {0, 0};
    const auto found = std::find(predictor_names_.begin(), predictor_names_.end(), word);
    if (found == predictor_names_.end()) fail_in_design("the data have no column '" + word + "'");
    return {static_cast<std::size_t>(found - predictor_names_.begin()), 1};
  }

  [[noreturn]] void fail_in_design(const std::string& text) const {
    throw DataError(path_ + ":" + std::to_string(design_line_) + ": " + text);
  }

  void read_row(const Words& words) {
    expect_words(words, 1 + data_.predictors.size());
    data_.response.push_back(number(words[0]));
    for (std::size_t i = 1; i < words.size(); ++i) data_.predictors[i - 1].push_back(number(words[i]));
  }

  void check() const {
    if (!in_data_) fail("the file ends before its data");
    if (!has_residual_sd_) fail("'residual_sd' is missing");
    if (data_.name.empty()) fail("'dataset' is missing");
    if (data_.terms.size() != n_parameters_ || data_.coefficients.size() != n_parameters_) {
      fail("'parameters' says " + std::to_string(n_parameters_) + ", but the design has " +
           std::to_string(data_.terms.size()) + " terms and " + std::to_string(data_.coefficients.size()) +
           " values are certified");
    }
    if (data_.n_observations() != n_observations_) {
      fail("the file ends after " + std::to_string(data_.n_observations()) + " of " +
           std::to_string(n_observations_) + " observations");
    }
    if (n_observations_ <= n_parameters_) fail("more observations than parameters are wanted");
  }

  void expect_words(const Words& words, std::size_t n) const {
    if (words.size() != n) {
      fail("the line has " + std::to_string(words.size()) + " words where " + std::to_string(n) +
           " belong");
    }
  }

  double number(const std::string& word) const {
    const char* first = word.data();
    const char* const last = first + word.size();
    if (first != last && *first == '+') ++first;
    double value = 0.0;
    const std::from_chars_result end = std::from_chars(first, last, value);
    if (end.ec != std::errc() || end.ptr != last || !std::isfinite(value)) {
      fail("'" + word + "' stands where a number belongs");
    }
    return value;
  }

  static std::optional<int> whole_number(const std::string& word) {
    int value = 0;
    const std::from_chars_result end = std::from_chars(word.data(), word.data() + word.size(), value);
    if (end.ec != std::errc() || end.ptr != word.data() + word.size()) return std::nullopt;
    return value;
  }

  std::size_t count(const std::string& word) const {
    const std::optional<int> value = whole_number(word);
    if (!value || *value < 1) fail("'" + word + "' stands where a count belongs");
    return static_cast<std::size_t>(*value);
  }

  std::string path_;
  std::size_t line_number_ = 0;
  DataSet data_;
  std::size_t n_observations_ = 0;
  std::size_t n_parameters_ = 0;
  Words design_;
  std::size_t design_line_ = 0;
  Words predictor_names_;
  bool has_residual_sd_ = false;
  bool in_data_ = false;
};

}  // namespace

DataSet read_data_set(const std::string& path) { return Reader(path).read(); }
