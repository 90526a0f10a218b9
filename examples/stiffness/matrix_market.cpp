// SPDX-License-Identifier: MIT

#include "matrix_market.h"

#include <set>
#include <utility>

namespace {

constexpr std::size_t kMostRows = 2000;  // a dense matrix of that size has 32 megabytes

void skip_comments(TextFile& file, Words& words) {
  while (file.next(words)) {
    if (words[0][0] != '%') return;
  }
  file.fail("the file ends before the line of its sizes");
}

}  // namespace

TnLaDblMat read_symmetric_matrix(const std::string& path) {
  // The banner begins like a comment, so that the comments are skipped here and not by TextFile.
  TextFile file(path, std::nullopt);
  Words words;
  file.next(words);
  if (words != Words{"%%MatrixMarket", "matrix", "coordinate", "real", "symmetric"}) {
    file.fail("the line '%%MatrixMarket matrix coordinate real symmetric' is wanted first");
  }

  skip_comments(file, words);
  file.expect_words(words, 3);
  const std::size_t n = file.count(words[0]);
  if (file.count(words[1]) != n) file.fail("a symmetric matrix has as many columns as rows");
  if (n > kMostRows) file.fail("more than " + std::to_string(kMostRows) + " rows");
  const std::size_t n_entries = file.count(words[2]);

  TnLaDblMat A(n, n, 0.0);
  std::set<std::pair<std::size_t, std::size_t>> known;
  while (file.next(words)) {
    file.expect_words(words, 3);
    const std::size_t i = file.count(words[0]);
    const std::size_t j = file.count(words[1]);
    const double value = file.number(words[2]);
    const std::string place = "(" + words[0] + ", " + words[1] + ")";
    if (i > n || j > n) file.fail(place + " is outside the matrix");
    if (i < j) file.fail(place + " is above the diagonal");
    if (!known.emplace(i, j).second) file.fail(place + " is there twice");
    if (known.size() > n_entries) file.fail("more than " + std::to_string(n_entries) + " entries");
    A(i - 1, j - 1) = value;
    A(j - 1, i - 1) = value;
  }
  if (known.size() < n_entries) {
    file.fail("the file ends after " + std::to_string(known.size()) + " of " + std::to_string(n_entries) +
              " entries");
  }
  return A;
}
