// SPDX-License-Identifier: MIT

// The regression problems whose coefficients NIST has certified (examples/data/nist), as the example solves
// them.  Every coefficient has a floor in correct digits, against the exact values to 25 digits in the same
// files, and its bits.
//
// The floors are what was measured, rounded down to a tenth: they show a loss that the bits alone would
// only call a change.

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "linear_regression/data_set.h"
#include "linear_regression/regression.h"
#include "support/bits.h"

namespace {

struct Expected {
  double digits;
  double value;
};

struct Certified {
  const char* name;
  bool by_qr;
  std::vector<Expected> coefficients;
};

const Certified kSets[] = {
    {"Norris", true, {{13.3, -0x1.0c9e6b7b62p-2}, {15.0, 0x1.008aba502b602p+0}}},
    {"NoInt1", true, {{15.0, 0x1.09854a0cb1b81p+1}}},
    {"Pontius",
     false,
     {{12.3, 0x1.6124784cc8ed5p-11}, {15.0, 0x1.890571e3fd7fbp-21}, {13.1, -0x1.c785a0b39f72cp-49}}},
    {"Longley",
     true,
     {{14.3, -0x1.a9149513a6f6ep+21},
      {13.0, 0x1.e1fadb8ec24b8p+3},
      {13.9, -0x1.256e437433181p-5},
      {14.8, -0x1.0296e3e4e61cap+1},
      {15.0, -0x1.08818e53dbeeep+0},
      {13.7, -0x1.a2a513cf26882p-5},
      {14.3, 0x1.c949b198a26bp+10}}},
    {"Wampler1",
     true,
     {{9.5, 0x1.fffffffdb219bp-1},
      {9.4, 0x1.00000001b1d72p+0},
      {9.9, 0x1.ffffffff05d7bp-1},
      {10.8, 0x1.000000000ed77p+0},
      {12.1, 0x1.fffffffffe6e6p-1},
      {13.8, 0x1.000000000003ep+0}}},
    {"Filip",
     true,
     {{7.4, -0x1.6edf56ae2f2e2p+10},
      {7.4, -0x1.5a85c007e2e9ep+11},
      {7.4, -0x1.218be0994cf5ap+11},
      {7.4, -0x1.19fe55bfb8988p+10},
      {7.4, -0x1.627a6e6e5e2aap+8},
      {7.3, -0x1.2c7f2f89122c3p+6},
      {7.3, -0x1.5c029bec0661ap+3},
      {7.3, -0x1.0fed530798767p+0},
      {7.3, -0x1.1282a3a171752p-4},
      {7.3, -0x1.4375fe34b88acp-9},
      {7.3, -0x1.52078c2e80d93p-15}}},
};

// "exact NAME estimate ..." of each coefficient, rounded to double.
std::vector<double> exact_estimates(const std::string& path) {
  std::ifstream file(path);
  std::vector<double> estimates;
  for (std::string line; std::getline(file, line);) {
    std::istringstream words(line);
    std::string key;
    std::string name;
    std::string estimate;
    if (words >> key >> name >> estimate && key == "exact")
      estimates.push_back(std::strtod(estimate.c_str(), nullptr));
  }
  return estimates;
}

TEST(CertifiedData, KeepTheirDigitsAndBits) {
  for (const Certified& set : kSets) {
    SCOPED_TRACE(set.name);
    const std::string path = std::string(NIST_FOLDER) + "/" + set.name + ".txt";
    const Fit result = fit(read_data_set(path));
    const std::vector<double> exact = exact_estimates(path);
    EXPECT_EQ(result.by_qr, set.by_qr);
    ASSERT_EQ(result.coefficients.n_rows(), set.coefficients.size());
    ASSERT_EQ(exact.size(), set.coefficients.size());
    for (std::size_t j = 0; j < exact.size(); ++j) {
      SCOPED_TRACE("coefficient " + std::to_string(j));
      const double digits = correct_digits(result.coefficients(j, 0), exact[j]);
      EXPECT_GE(digits, set.coefficients[j].digits);
      EXPECT_SAME(result.coefficients(j, 0), set.coefficients[j].value);
    }
  }
}

}  // namespace
