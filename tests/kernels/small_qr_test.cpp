// SPDX-License-Identifier: MIT

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <optional>
#include <vector>

#include "reference/decomposition_reference.h"
#include "support/bits.h"
#include "support/kernel_sets.h"
#include "support/values.h"

namespace {

using reference::Matrix;
using reference::Qr;
using tnla_kernels::Index;
using tnla_kernels::KernelSet;
using tnla_kernels::kLargestSmall;

constexpr double kUntouched = 7.25;
constexpr std::size_t kGuard = 5;  // places behind an output that must stay as they are

template <class Check>
void for_every_order(const Check& check) {
  for_every_kernel_set([&](const KernelSet& set) {
    for (std::size_t n = 1; n <= static_cast<std::size_t>(kLargestSmall); ++n) check(set, n);
  });
}

bool solve(const KernelSet& set, std::size_t n, const double* a, std::size_t p, const double* b,
           std::size_t ldb, double* x, double* diagonal) {
  return set.small_qr.solve[n - 1](static_cast<Index>(n), a, static_cast<Index>(p), b,
                                   static_cast<Index>(ldb), x, diagonal);
}

// What the twin makes of the first n rows of B: x and the diagonal of R, with what lies behind them.
struct Expected {
  bool full_rank;
  std::vector<double> x;
  std::vector<double> diagonal;
};

Expected expected_of(const Matrix& A, const Matrix& B) {
  const Qr qr(A);
  const std::optional<Matrix> X = qr.solve(reference::resized(B, A.n, B.n));
  Expected expected{X.has_value(), X ? X->a : std::vector<double>(A.n * B.n, kUntouched), {}};
  expected.x.resize(A.n * B.n + kGuard, kUntouched);
  for (std::size_t i = 0; i < A.n; ++i) expected.diagonal.push_back(qr.R(i, i));
  expected.diagonal.resize(A.n + kGuard, kUntouched);
  return expected;
}

void expect_solve(const KernelSet& set, const Matrix& A, const Matrix& B) {
  const Expected expected = expected_of(A, B);
  std::vector<double> x(expected.x.size(), kUntouched);
  std::vector<double> diagonal(expected.diagonal.size(), kUntouched);
  ASSERT_EQ(solve(set, A.n, A.a.data(), B.n, B.a.data(), B.m, x.data(), diagonal.data()),
            expected.full_rank)
      << "order " << A.n;
  ASSERT_TRUE(are_same("", "x", "", x.size(), x.data(), expected.x.data()))
      << "order " << A.n << ", " << B.n << " right sides, leading dimension " << B.m;
  ASSERT_TRUE(are_same("", "diagonal", "", diagonal.size(), diagonal.data(), expected.diagonal.data()))
      << "order " << A.n;
}

Matrix random_matrix(Random& random, std::size_t m, std::size_t n) { return {m, n, random.vector(m * n)}; }
Matrix any_matrix(Random& random, std::size_t m, std::size_t n) { return {m, n, random.any_vector(m * n)}; }

// Half of the entries become zeros of either sign.
Matrix sparse(Random& random, Matrix A) {
  for (double& x : A.a) {
    if (random.below(2) == 0) x = random.below(2) == 0 ? 0.0 : -0.0;
  }
  return A;
}

// From none to more than the room beside any A, twice over.
TEST(SmallQr, SolvesForAnyNumberOfRightSides) {
  for_every_order([](const KernelSet& set, std::size_t n) {
    Random random(n);
    const Matrix A = random_matrix(random, n, n);
    for (std::size_t p = 0; p <= 60; ++p) expect_solve(set, A, random_matrix(random, n, p));
  });
}

TEST(SmallQr, ReadsRightSidesOfMoreRows) {
  for_every_order([](const KernelSet& set, std::size_t n) {
    Random random(n);
    for (std::size_t ldb = n; ldb <= n + 9; ++ldb) {
      for (const std::size_t p : {1u, 2u, 3u, 12u, 31u}) {
        expect_solve(set, random_matrix(random, n, n), random_matrix(random, ldb, p));
      }
    }
  });
}

TEST(SmallQr, TakesSpecialValues) {
  for_every_order([](const KernelSet& set, std::size_t n) {
    Random random(n);
    for (int trial = 0; trial < 200; ++trial) {
      const std::size_t p = random.below(2 * n + 2);
      expect_solve(set, any_matrix(random, n, n), any_matrix(random, n, p));
      expect_solve(set, random_matrix(random, n, n), any_matrix(random, n, p));
      expect_solve(set, sparse(random, any_matrix(random, n, n)),
                   sparse(random, random_matrix(random, n, p)));
      expect_solve(set, sparse(random, random_matrix(random, n, n)),
                   sparse(random, any_matrix(random, n, p)));
    }
  });
}

// A NaN, an infinity or another special value in each single place of A, and of B.
TEST(SmallQr, TakesASpecialValueAnywhere) {
  for_every_order([](const KernelSet& set, std::size_t n) {
    Random random(n);
    const Matrix A = random_matrix(random, n, n);
    const Matrix B = random_matrix(random, n, 3);
    for (const double special : special_values()) {
      for (std::size_t k = 0; k < n * n; ++k) {
        Matrix with = A;
        with.a[k] = special;
        expect_solve(set, with, B);
      }
      for (std::size_t k = 0; k < n * 3; ++k) {
        Matrix with = B;
        with.a[k] = special;
        expect_solve(set, A, with);
      }
    }
  });
}

// The pivot column stays what it is where it is tiny, and is reduced without a reflection of the others
// where the product of s and up is.
TEST(SmallQr, TakesTinyColumns) {
  for_every_order([](const KernelSet& set, std::size_t n) {
    Random random(n);
    for (const double size : {0.0, 1e-310, 1e-21, 1e-20, 3e-20, 1e-11, 7e-11, 1e-10, 3e-10, 1e-9}) {
      for (std::size_t j = 0; j < n; ++j) {
        Matrix A = random_matrix(random, n, n);
        for (std::size_t i = 0; i < n; ++i) A(i, j) *= size;
        expect_solve(set, A, random_matrix(random, n, 4));
      }
      Matrix A = random_matrix(random, n, n);
      for (double& x : A.a) x *= size;
      expect_solve(set, A, random_matrix(random, n, 4));
    }
  });
}

TEST(SmallQr, TakesTheThresholdOfATinyColumn) {
  for_every_order([](const KernelSet& set, std::size_t n) {
    for (const double entry : {1e-20, ulp_below(1e-20), -1e-20, -ulp_below(1e-20)}) {
      Matrix A = reference::identity(n);
      A(n - 1, 0) = entry;
      A(0, 0) = entry;
      expect_solve(set, A, reference::identity(n));
    }
  });
}

// The product of s and up is exactly the bound, or next to it.  The other columns are short enough for full
// rank.
TEST(SmallQr, TakesTheThresholdOfTheScale) {
  for_every_order([](const KernelSet& set, std::size_t n) {
    Random random(n);
    for (const auto& entries : reference::columns_at_the_thresholds()) {
      for (std::size_t j = 0; j + 1 < n; ++j) {
        Matrix A = random_matrix(random, n, n);
        for (double& x : A.a) x *= 1e-5;
        for (std::size_t k = 0; k <= j; ++k) std::fill_n(A.column(k), n, 0.0);
        for (std::size_t k = 0; k < j; ++k) A(k, k) = 1e-5;
        std::copy(entries.begin(), entries.end(), A.column(j) + j);
        expect_solve(set, A, random_matrix(random, n, 4));
      }
    }
  });
}

// A column that is orthogonal to the reflection is left alone while others in its vector are not: adding 0
// times u would turn a -0.0 of it.
TEST(SmallQr, LeavesOrthogonalColumnsAlone) {
  for_every_order([](const KernelSet& set, std::size_t n) {
    Random random(n);
    for (std::size_t orthogonal = 0; orthogonal < 6; ++orthogonal) {
      Matrix A = reference::identity(n);
      for (std::size_t j = 1; j < n; ++j) A(0, j) = random.uniform();
      if (orthogonal < n) A(0, orthogonal) = orthogonal == 0 ? 1.0 : -0.0;
      Matrix B = random_matrix(random, n, 5);
      B(0, orthogonal % 5) = -0.0;
      expect_solve(set, A, B);
      Matrix zeros(n, 3);
      for (double& x : zeros.a) x = -0.0;
      expect_solve(set, A, zeros);
    }
  });
}

TEST(SmallQr, JudgesTheSpreadOfTheDiagonal) {
  for_every_order([](const KernelSet& set, std::size_t n) {
    if (n < 2) return;
    for (const double entry : {1e10, ulp_above(1e10), 1e-10, ulp_below(1e-10), 1e30, 1e-20, kInf, kNaN}) {
      for (std::size_t j = 0; j < n; ++j) {
        Matrix A = reference::identity(n);
        A(j, j) = entry;
        expect_solve(set, A, reference::identity(n));
      }
    }
  });
}

TEST(SmallQr, JudgesASingleElement) {
  for_every_kernel_set([](const KernelSet& set) {
    for (const double entry : {1e-20, ulp_below(1e-20), 1e20, 1e30, ulp_above(1e30), 1e31, kInf}) {
      expect_solve(set, {1, 1, {entry}}, {1, 2, {1.0, -0.0}});
      expect_solve(set, {1, 1, {-entry}}, {1, 2, {1.0, -0.0}});
    }
  });
}

TEST(SmallQr, TakesEqualAndDependentColumns) {
  for_every_order([](const KernelSet& set, std::size_t n) {
    Random random(n);
    for (std::size_t j = 1; j < n; ++j) {
      Matrix A = random_matrix(random, n, n);
      for (std::size_t i = 0; i < n; ++i) A(i, j) = A(i, j - 1);
      expect_solve(set, A, random_matrix(random, n, 2));
    }
  });
}

// (With p <= n; b in any case.)
TEST(SmallQr, MayWriteWhereItReads) {
  for_every_order([](const KernelSet& set, std::size_t n) {
    Random random(n);
    for (std::size_t p = 1; p <= 40; ++p) {
      const Matrix A = random_matrix(random, n, n);
      const Matrix B = random_matrix(random, n, p);
      const Expected expected = expected_of(A, B);
      double diagonal[kLargestSmall];
      if (p <= n) {
        std::vector<double> x = A.a;
        ASSERT_TRUE(solve(set, n, x.data(), p, B.a.data(), n, x.data(), diagonal));
        ASSERT_TRUE(are_same("", "x in a", "", n * p, x.data(), expected.x.data())) << n << ", " << p;
      }
      std::vector<double> x = B.a;
      ASSERT_TRUE(solve(set, n, A.a.data(), p, x.data(), n, x.data(), diagonal));
      ASSERT_TRUE(are_same("", "x in b", "", n * p, x.data(), expected.x.data())) << n << ", " << p;
    }
  });
}

TEST(SmallQr, GivesTheDiagonalAlone) {
  for_every_order([](const KernelSet& set, std::size_t n) {
    Random random(n);
    const Matrix A = random_matrix(random, n, n);
    const Expected expected = expected_of(A, Matrix(n, 0));
    double diagonal[kLargestSmall];
    ASSERT_TRUE(solve(set, n, A.a.data(), 0, nullptr, 0, nullptr, diagonal));
    ASSERT_TRUE(are_same("", "diagonal", "", n, diagonal, expected.diagonal.data()));
  });
}

}  // namespace
