// SPDX-License-Identifier: MIT

#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <vector>

#include "reference/dense_model.h"
#include "support/bits.h"
#include "tnla_matrix_vector_i.h"

// Dense matrices and vectors from lists of elements, and what they are expected to hold.

inline TnLaDblMat mat(std::size_t rows, std::size_t cols, const std::vector<double>& by_columns) {
  EXPECT_EQ(by_columns.size(), rows * cols);
  return TnLaDblMat(by_columns.data(), rows, cols);
}

inline TnLaDblVec vec(const std::vector<double>& elements) {
  return TnLaDblVec(elements.data(), static_cast<int>(elements.size()));
}

// Filled with ones, so that an element lost or gained shows.
inline TnLaDblMat ones(std::size_t rows, std::size_t cols) {
  return mat(rows, cols, std::vector<double>(rows * cols, 1.0));
}
inline TnLaDblVec ones(std::size_t n) { return vec(std::vector<double>(n, 1.0)); }

template <class T>
std::vector<double> elements(const T& object) {
  const TnArray<double>& a = object.array();
  return std::vector<double>(a.data(), a.data() + a.size());
}

inline void expect_elements(const TnArray<double>& actual, const std::vector<double>& expected) {
  ASSERT_EQ(actual.size(), expected.size());
  EXPECT_SAME_ARRAY(expected.size(), actual.data(), expected.data());
  EXPECT_TRUE(reference::rest_is_zero(actual));
}

inline void expect_is(const TnLaDblMat& actual, std::size_t rows, std::size_t cols,
                      const std::vector<double>& by_columns) {
  EXPECT_EQ(actual.n_rows(), rows);
  EXPECT_EQ(actual.n_cols(), cols);
  expect_elements(actual.array(), by_columns);
}

inline void expect_is(const TnLaDblVec& actual, const std::vector<double>& expected) {
  expect_elements(actual.array(), expected);
}

// What a failed operation must have left as it was.
inline void expect_unchanged(const TnLaDblMat& actual, const TnLaDblMat& old) {
  expect_is(actual, old.n_rows(), old.n_cols(), elements(old));
}
inline void expect_unchanged(const TnLaDblVec& actual, const TnLaDblVec& old) {
  expect_is(actual, elements(old));
}
