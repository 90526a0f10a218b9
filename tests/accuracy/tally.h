#pragma once

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstddef>
#include <cstdio>
#include <string>
#include <vector>

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

struct RatioLimit {
  const char* name;
  double small;  // for matrices of up to 4 rows, which Q has, too
  double large;  // from 5 on
};

constexpr RatioLimit kLimits[kRatios] = {
    {"factor", 15, 8},  {"orthog.", 15, 8}, {"solve", 15, 8},  {"forward", 15, 8},
    {"inverse", 15, 8}, {"normal", 15, 8},  {"null", 15, 8},   {"basis", 15, 8},
    {"minimal", 15, 8}, {"eigen", 5, 5},    {"vectors", 6, 6}, {"values", 5, 5},
};

constexpr std::size_t kFirstLarge = 5;

// Of one matrix.  Negative: not measured.
class Ratios {
 public:
  Ratios() { values_.fill(-1.0); }
  double& operator[](Ratio r) { return values_[r]; }
  double operator[](Ratio r) const { return values_[r]; }

  // Keeps the worse of each; a NaN is the worst.
  void worsen(const Ratios& other) {
    for (std::size_t r = 0; r < kRatios; ++r) {
      if (std::isnan(values_[r])) continue;
      if (!(other.values_[r] <= values_[r])) values_[r] = other.values_[r];
    }
  }

 private:
  std::array<double, kRatios> values_;
};

// One row a type, in the order of their first matrices, and in it the worst of the small sizes and that of
// the large ones.
class Tally {
 public:
  explicit Tally(std::string title) : title_(std::move(title)) {}

  void add(const std::string& type, std::size_t size, const Ratios& ratios) {
    if (rows_.empty() || rows_.back().type != type) rows_.push_back({type, {}, {}});
    Part& part = size < kFirstLarge ? rows_.back().small : rows_.back().large;
    ++part.n_matrices;
    part.worst.worsen(ratios);
    all_.worsen(ratios);
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
  };

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
