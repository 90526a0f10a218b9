// SPDX-License-Identifier: MIT

#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdio>
#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

#include "accuracy/wide.h"

// The ratios that are measured, the limits that they are held to, and the worst of each type of matrix.
//
// A ratio is a residual in units of n * norm * u with u = 2^-53, as LAPACK's own tests take them; LAPACK
// accepts 30.  Eigenvectors are counted in 2u, also as there.

enum Ratio {
  kFactor,      // |A - Q R| / (max(m, n) |A| u)
  kOrthogonal,  // |I - Q'Q| / (m u)
  kSolve,       // |B - A X| / (max(m, n) |A| |X| u)
  kForward,     // |X - X0| / (|X0| condition u), where B = A X0
  kInverse,     // |I - A A^-1| / (n |A| |A^-1| u)
  kNormal,      // |A'(B - A X)| / (max(m, n, p) |A| max(|B|, |A| |X|) u)
  kNull,        // |A Z| / (n |A| u), Z the basis of the null space
  kBasis,       // |I - Z'Z| / (n u)
  kMinimal,     // |Z'X| / (n |X| u)
  kEigen,       // |A - V D V'| / (n |A| 2u)
  kVectors,     // |I - V'V| / (n 2u)
  kValues,      // |D - D0| / (n |A| 2u), D0 the true eigenvalues
  kRatios
};

// The n of a ratio of an m x n matrix: the one that its unit counts, but for the right-hand sides.
enum class Order { rows, columns, larger };

struct RatioLimit {
  const char* name;
  Order order;
  double small;  // for an n of up to 4
  double large;  // from 5 on
};

constexpr RatioLimit kLimits[kRatios] = {
    {"factor", Order::larger, 15, 8},   {"orthog.", Order::rows, 15, 8},
    {"solve", Order::larger, 15, 8},    {"forward", Order::columns, 15, 8},
    {"inverse", Order::columns, 15, 8}, {"normal", Order::larger, 15, 8},
    {"null", Order::columns, 15, 8},    {"basis", Order::columns, 15, 8},
    {"minimal", Order::columns, 15, 8}, {"eigen", Order::columns, 5, 5},
    {"vectors", Order::columns, 6, 6},  {"values", Order::columns, 5, 5},
};

constexpr std::size_t kFirstLarge = 5;

// Of one matrix.  Negative: not measured.
class Ratios {
 public:
  Ratios() { values_.fill(-1.0); }
  double& operator[](Ratio r) { return values_[r]; }
  double operator[](Ratio r) const { return values_[r]; }

  // Keeps the worse; a NaN is the worst.
  void worsen(Ratio r, double other) {
    if (!std::isnan(values_[r]) && !(other <= values_[r])) values_[r] = other;
  }

 private:
  std::array<double, kRatios> values_;
};

// One row a type, in the order of their first matrices, and in it the worst of the small sizes and that of
// the large ones.  A matrix counts where its larger side belongs, and each ratio where its own n does: the
// Q of a 3 x 50 matrix is small.
class Tally {
 public:
  explicit Tally(std::string title) : title_(std::move(title)) {}

  // `measured`: what both parts of the type's row must have in the end.
  void add(const std::string& type, const Matrix& A, const Ratios& ratios,
           std::initializer_list<Ratio> measured) {
    if (rows_.empty() || rows_.back().type != type) rows_.push_back({type, {}, {}, measured});
    Row& row = rows_.back();
    ++part_of(row, A, Order::larger).n_matrices;
    for (std::size_t r = 0; r < kRatios; ++r) {
      const Ratio which = static_cast<Ratio>(r);
      part_of(row, A, kLimits[r].order).worst.worsen(which, ratios[which]);
      all_.worsen(which, ratios[which]);
    }
  }

  // Prints the table, holds it to the limits, and returns the number of matrices.
  std::size_t close() const {
    print_head();
    std::size_t n = 0;
    for (const Row& row : rows_) {
      print(row.type, "n < 5", row.small);
      print(row.type, "n >= 5", row.large);
      for (std::size_t r = 0; r < kRatios; ++r) {
        const Ratio which = static_cast<Ratio>(r);
        EXPECT_TRUE(row.small.worst[which] <= kLimits[r].small)
            << kLimits[r].name << " of " << row.type << ", n < 5: " << row.small.worst[which];
        EXPECT_TRUE(row.large.worst[which] <= kLimits[r].large)
            << kLimits[r].name << " of " << row.type << ", n >= 5: " << row.large.worst[which];
      }
      for (const Ratio which : row.measured) {
        EXPECT_TRUE(row.small.worst[which] != -1.0 && row.large.worst[which] != -1.0)
            << kLimits[which].name << " of " << row.type << " was never measured";
      }
      n += row.small.n_matrices + row.large.n_matrices;
    }
    std::printf("%zu matrices\n", n);
    return n;
  }

 private:
  struct Part {
    std::size_t n_matrices = 0;
    Ratios worst;
  };
  struct Row {
    std::string type;
    Part small;
    Part large;
    std::vector<Ratio> measured;
  };

  static Part& part_of(Row& row, const Matrix& A, Order order) {
    const std::size_t n = order == Order::rows ? A.m : order == Order::columns ? A.n : std::max(A.m, A.n);
    return n < kFirstLarge ? row.small : row.large;
  }

  bool is_measured(std::size_t r) const { return all_[static_cast<Ratio>(r)] != -1.0; }

  void print_head() const {
    std::printf("\n%-46s%8s%9s", title_.c_str(), "size", "matrices");
    for (std::size_t r = 0; r < kRatios; ++r) {
      if (is_measured(r)) std::printf("%9s", kLimits[r].name);
    }
    std::printf("\n");
  }

  void print(const std::string& type, const char* sizes, const Part& part) const {
    std::printf("%-46s%8s%9zu", type.c_str(), sizes, part.n_matrices);
    for (std::size_t r = 0; r < kRatios; ++r) {
      const double worst = part.worst[static_cast<Ratio>(r)];
      if (!is_measured(r)) continue;
      if (worst == -1.0) {
        std::printf("%9s", "-");
      } else {
        std::printf("%9.2f", worst);
      }
    }
    std::printf("\n");
  }

  std::string title_;
  std::vector<Row> rows_;
  Ratios all_;
};
