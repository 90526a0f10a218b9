// SPDX-License-Identifier: MIT

// The readers of the examples' data files on any bytes.
//
// The first byte of the input is the format, the rest is the file.  What a plain second reader takes must
// be read, with the same bits; anything else must be refused with a message that names the file.  Nothing
// else may come out, and the library's assertion hook must stay silent.

#include <sys/mman.h>
#include <unistd.h>

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "closed_curve/outline.h"
#include "common/text_file.h"
#include "fuzz/second_reader.h"
#include "fuzz/target.h"
#include "linear_regression/data_set.h"
#include "principal_axes/cloud.h"
#include "stiffness/matrix_market.h"
#include "support/assertions.h"
#include "support/bits.h"

namespace {

using Values = std::vector<double>;

// A file in memory.
class MemoryFile {
 public:
  MemoryFile() : number_(memfd_create("input", 0)), path_("/proc/self/fd/" + std::to_string(number_)) {}

  const std::string& path() const { return path_; }

  void hold(const std::string& text) {
    const bool is_empty = ftruncate(number_, 0) == 0;
    const bool is_written =
        pwrite(number_, text.data(), text.size(), 0) == static_cast<ssize_t>(text.size());
    ASSERT_TRUE(is_empty && is_written);
  }

 private:
  int number_;
  std::string path_;
};

// What a reader gives; nothing where it refuses the file.
template <class Read>
auto read_or_refuse(Read read, const std::string& path) -> std::optional<decltype(read(path))> {
  try {
    return read(path);
  } catch (const DataError& error) {
    const std::string text = error.what();
    EXPECT_EQ(text.compare(0, path.size() + 1, path + ":"), 0) << text;
    EXPECT_GT(text.size(), path.size() + 3) << text;
    return std::nullopt;
  }
}

void expect_same(const Values& actual, const Values& expected) {
  ASSERT_EQ(actual.size(), expected.size());
  EXPECT_SAME_ARRAY(expected.size(), actual.data(), expected.data());
}

void expect_same(const second_reader::Rows& actual, const second_reader::Rows& expected) {
  ASSERT_EQ(actual.size(), expected.size());
  for (std::size_t i = 0; i < expected.size(); ++i) expect_same(actual[i], expected[i]);
}

void expect_same(const std::vector<Point>& actual, const second_reader::Rows& expected) {
  second_reader::Rows rows;
  for (const Point& p : actual) rows.push_back({p.x, p.y});
  expect_same(rows, expected);
}

void expect_same(const TnLaDblMat& actual, const second_reader::Rows& expected) {
  second_reader::Rows rows;
  for (std::size_t i = 0; i < actual.n_rows(); ++i) {
    const TnLaDblVec row = actual.row_vec(i);
    rows.emplace_back(row.array().data(), row.array().data() + row.array().size());
  }
  expect_same(rows, expected);
}

void expect_same(const TnLaDblMat& actual, const second_reader::SymmetricMatrix& expected) {
  ASSERT_EQ(actual.n_rows(), expected.n);
  ASSERT_EQ(actual.n_cols(), expected.n);
  Values elements(expected.n * expected.n, 0.0);
  for (const auto& [place, value] : expected.entries) {
    elements[place.first * expected.n + place.second] = value;
    elements[place.second * expected.n + place.first] = value;
  }
  EXPECT_SAME_ARRAY(elements.size(), actual.array().data(), elements.data());
}

void expect_same(const DataSet& actual, const DataSet& expected) {
  EXPECT_EQ(actual.name, expected.name);
  EXPECT_SAME(actual.residual_sd, expected.residual_sd);
  ASSERT_EQ(actual.terms.size(), expected.terms.size());
  for (std::size_t i = 0; i < expected.terms.size(); ++i) {
    EXPECT_EQ(actual.terms[i].predictor, expected.terms[i].predictor);
    EXPECT_EQ(actual.terms[i].degree, expected.terms[i].degree);
  }
  ASSERT_EQ(actual.coefficients.size(), expected.coefficients.size());
  for (std::size_t i = 0; i < expected.coefficients.size(); ++i) {
    EXPECT_EQ(actual.coefficients[i].name, expected.coefficients[i].name);
    EXPECT_SAME(actual.coefficients[i].certified, expected.coefficients[i].certified);
  }
  expect_same(actual.response, expected.response);
  expect_same(actual.predictors, expected.predictors);
}

template <class Read, class Expected>
void expect_read(Read read, const std::string& path, const Expected& expected) {
  const AssertionLog log;
  const auto actual = read_or_refuse(read, path);
  ASSERT_EQ(actual.has_value(), expected.has_value());
  if (actual) expect_same(*actual, *expected);
  EXPECT_EQ(log.count(), 0u);
}

}  // namespace

void run(Bytes& bytes) {
  static MemoryFile file;
  const std::size_t format = bytes.below(5);
  std::string text;
  while (!bytes.empty()) text += static_cast<char>(bytes.byte());
  file.hold(text);
  switch (format) {
    case 0:
      return expect_read([](const std::string& path) { return read_rows(path, 2, 1); }, file.path(),
                         second_reader::rows(text, 2, 1));
    case 1:
      return expect_read(read_outline, file.path(), second_reader::outline(text));
    case 2:
      return expect_read(read_cloud, file.path(), second_reader::cloud(text));
    case 3:
      return expect_read(read_symmetric_matrix, file.path(), second_reader::symmetric_matrix(text));
    default:
      return expect_read(read_data_set, file.path(), second_reader::data_set(text));
  }
}
