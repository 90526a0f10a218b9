// SPDX-License-Identifier: MIT

#pragma once

#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <iomanip>
#include <limits>
#include <sstream>
#include <string>

#include "tnarray_i.h"

// Comparison of results bit for bit: signs of zeros count, and any NaN equals any other.

inline bool same_bits(double a, double b) {
  if (std::isnan(a) || std::isnan(b)) return std::isnan(a) && std::isnan(b);
  return std::memcmp(&a, &b, sizeof(double)) == 0;
}

inline std::string in_full(double x) {
  std::ostringstream text;
  text << std::setprecision(17) << x << " (" << std::hexfloat << x << ")";
  return text.str();
}

inline testing::AssertionResult is_same(const char* actual_text, const char* expected_text, double actual,
                                        double expected) {
  if (same_bits(actual, expected)) return testing::AssertionSuccess();
  return testing::AssertionFailure() << actual_text << " is " << in_full(actual) << ", expected "
                                     << expected_text << " = " << in_full(expected);
}

inline testing::AssertionResult are_same(const char*, const char* actual_text, const char*, std::size_t n,
                                         const double* actual, const double* expected) {
  for (std::size_t i = 0; i < n; ++i) {
    if (!same_bits(actual[i], expected[i])) {
      return testing::AssertionFailure()
             << "element " << i << " of " << n << " of " << actual_text << " is " << in_full(actual[i])
             << ", expected " << in_full(expected[i]);
    }
  }
  return testing::AssertionSuccess();
}

// EXPECT_SAME(actual, expected) compares two doubles, EXPECT_SAME_ARRAY(n, actual, expected) n of them.
#define EXPECT_SAME(actual, expected) EXPECT_PRED_FORMAT2(is_same, actual, expected)
#define EXPECT_SAME_ARRAY(n, actual, expected) \
  EXPECT_TRUE(are_same("", #actual, #expected, static_cast<std::size_t>(n), actual, expected))

inline double ulp_above(double x) { return std::nextafter(x, std::numeric_limits<double>::infinity()); }
inline double ulp_below(double x) { return std::nextafter(x, -std::numeric_limits<double>::infinity()); }
