// SPDX-License-Identifier: MIT

#include "data_set.h"

#include <algorithm>
#include <charconv>

namespace {

// No sensible problem has more terms, or a higher power of a predictor.
constexpr std::size_t kMostTerms = 1000;
constexpr int kHighestDegree = 100;

class Reader {
 public:
  explicit Reader(const std::string& path) : file_(path, '#') {}

  DataSet read() {
    for (Words words; file_.next(words);) {
      if (in_data_) {
        read_row(words);
      } else {
        read_key(words);
      }
    }
    check();
    return data_;
  }

 private:
  void read_key(const Words& words) {
    const std::string& key = words[0];
    if (key == "dataset") {
      file_.expect_words(words, 2);
      data_.name = words[1];
    } else if (key == "observations") {
      file_.expect_words(words, 2);
      n_observations_ = file_.count(words[1]);
    } else if (key == "parameters") {
      file_.expect_words(words, 2);
      n_parameters_ = file_.count(words[1]);
    } else if (key == "design") {
      design_.assign(words.begin() + 1, words.end());
      design_line_ = file_.line();
    } else if (key == "certified") {
      file_.expect_words(words, 4);
      data_.coefficients.push_back({words[1], file_.number(words[2])});
    } else if (key == "residual_sd") {
      file_.expect_words(words, 2);
      data_.residual_sd = file_.number(words[1]);
      has_residual_sd_ = true;
    } else if (key == "data") {
      start_data(words);
    } else if (key != "level" && key != "r_squared" && key != "anova_regression" &&
               key != "anova_residual" && key != "exact" && key != "exact_rss") {
      file_.fail("unknown key '" + key + "'");
    }
  }

  // data y x1 x2 ...: the names are there, so the model can be built.
  void start_data(const Words& words) {
    if (words.size() < 3) file_.fail("'data' names the response and at least one predictor");
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
      file_.fail_at(design_line_ != 0 ? design_line_ : file_.line(),
                    "'design polynomial degrees ...' or 'design columns ...' is wanted");
    }
    if (data_.terms.size() > kMostTerms) file_.fail("the design has too many terms");
  }

  int degree(const std::string& word) const {
    int value = -1;
    const char* const last = word.data() + word.size();
    const std::from_chars_result end = std::from_chars(word.data(), last, value);
    if (end.ec != std::errc() || end.ptr != last || value < 0 || value > kHighestDegree) {
      file_.fail_at(design_line_, "'" + word + "' is no degree");
    }
    return value;
  }

  Term column(const std::string& word) const {
    if (word == "1") return {0, 0};
    const auto found = std::find(predictor_names_.begin(), predictor_names_.end(), word);
    if (found == predictor_names_.end()) {
      file_.fail_at(design_line_, "the data have no column '" + word + "'");
    }
    return {static_cast<std::size_t>(found - predictor_names_.begin()), 1};
  }

  void read_row(const Words& words) {
    file_.expect_words(words, 1 + data_.predictors.size());
    data_.response.push_back(file_.number(words[0]));
    for (std::size_t i = 1; i < words.size(); ++i)
      data_.predictors[i - 1].push_back(file_.number(words[i]));
  }

  void check() const {
    if (!in_data_) file_.fail("the file ends before its data");
    if (!has_residual_sd_) file_.fail("'residual_sd' is missing");
    if (data_.name.empty()) file_.fail("'dataset' is missing");
    if (data_.terms.size() != n_parameters_ || data_.coefficients.size() != n_parameters_) {
      file_.fail("'parameters' says " + std::to_string(n_parameters_) + ", but the design has " +
                 std::to_string(data_.terms.size()) + " terms and " +
                 std::to_string(data_.coefficients.size()) + " values are certified");
    }
    if (data_.n_observations() != n_observations_) {
      file_.fail("the file ends after " + std::to_string(data_.n_observations()) + " of " +
                 std::to_string(n_observations_) + " observations");
    }
    if (n_observations_ <= n_parameters_) file_.fail("more observations than parameters are wanted");
  }

  TextFile file_;
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
