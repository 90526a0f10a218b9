// SPDX-License-Identifier: MIT

// What counts as zero or singular is absolute.  These tests hold both edges of the range in which the
// solvers can be used: inside it they are accurate; outside, they fail in the way that is documented.

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "reference/decomposition_reference.h"
#include "support/bits.h"
#include "support/decomposition_types.h"
#include "support/values.h"
#include "tarntnla.h"

namespace {

using reference::diagonal;
using reference::identity;

// --- Single reflections ---------------------------------------------------------------------------------

// Whether the reflection of a column (at the pivot, below it) is applied to others.  The column itself is
// reduced in any case.
bool is_applied(double at_pivot, double below) {
  std::vector<double> v = {at_pivot, below};
  const TnLaHouseholder reflection(0, 1, 2, v.data(), 1);
  EXPECT_EQ(v[1], 0.0);
  EXPECT_NE(v[0], at_pivot);
  std::vector<double> w = {1, 2};
  reflection.apply(w.data(), 1);
  return w[0] != 1.0;
}

// |s * up| = s^2 + |s * pivot|, which must reach 1e-20: a length of 1e-10 always does, one below
// 1e-10 / sqrt(2) = 7.07e-11 never, and in between it depends on how much of the column is at the pivot.
TEST(ShortColumns, AreReflectedFromSevenTimesTenToTheMinusElevenOnIfAllIsAtThePivot) {
  EXPECT_TRUE(is_applied(7.08e-11, 1e-14));
  EXPECT_TRUE(is_applied(-7.08e-11, 1e-14));
  EXPECT_FALSE(is_applied(7.06e-11, 1e-14));
  EXPECT_FALSE(is_applied(-7.06e-11, 1e-14));
}

TEST(ShortColumns, AreReflectedFromTenToTheMinusTenOnIfNothingIsAtThePivot) {
  EXPECT_TRUE(is_applied(0, 1.001e-10));
  EXPECT_FALSE(is_applied(0, 0.999e-10));
}

TEST(ShortColumns, AreReflectedByTheirLengthWhateverTheirDirection) {
  for (int degrees = 1; degrees < 180; ++degrees) {
    const double c = std::cos(degrees * 3.14159 / 180);
    const double s = std::sin(degrees * 3.14159 / 180);
    EXPECT_TRUE(is_applied(1.001e-10 * c, 1.001e-10 * s)) << degrees;
    EXPECT_FALSE(is_applied(7.06e-11 * c, 7.06e-11 * s)) << degrees;
  }
}

// --- Systems of small columns ---------------------------------------------------------------------------

constexpr std::size_t kN = 10;
constexpr std::uint64_t kSeeds = 60;

Matrix system_matrix(std::uint64_t seed) {
  Random random(seed);
  return random_matrix(random, kN, kN);
}

Matrix right_side() { return {kN, 1, {1, -2, 3, -4, 5, -6, 7, -8, 9, -10}}; }

// max |B - A X| against max |A| * max |X|.
double relative_residual(const Matrix& A, const Matrix& X) {
  const Matrix zero(kN, kN);
  return largest_difference(product(A, X), right_side()) /
         (largest_difference(A, zero) * largest_difference(X, zero));
}

// n reflections, each with a sum and an update of n terms, and the back substitution.
constexpr double kAccurate = 8.0 * kN * kN * 0x1p-53;

struct Answer {
  bool full_rank;
  Matrix X;
};

Answer answer(const Matrix& A) {
  TnLaDblMat X;
  const bool full_rank = tnla_linearsolve(dense(A), dense(right_side()), X);
  return {full_rank, plain(X)};
}

// Whether all columns that were eliminated stayed as long as a reflection needs (the last one needs none).
bool stays_in_range(const Matrix& A) {
  const reference::Qr qr(A);
  for (std::size_t j = 0; j + 1 < kN; ++j) {
    if (std::fabs(qr.R(j, j)) < 1e-10) return false;
  }
  return true;
}

TEST(SmallSystems, AreSolvedAccuratelyFromTenToTheMinusNineOn) {
  for (const double scale : {1e9, 1.0, 1e-5, 1e-9}) {
    std::uint64_t n_in_range = 0;
    for (std::uint64_t seed = 0; seed < kSeeds; ++seed) {
      const Matrix A = scaled(system_matrix(seed), scale);
      if (!stays_in_range(A)) continue;
      ++n_in_range;
      const Answer given = answer(A);
      EXPECT_TRUE(given.full_rank) << "seed " << seed << ", scale " << scale;
      EXPECT_LT(relative_residual(A, given.X), kAccurate) << "seed " << seed << ", scale " << scale;
    }
    EXPECT_GE(n_in_range, kSeeds * 9 / 10) << "scale " << scale;
  }
}

TEST(SmallSystems, CanGiveAWrongSolutionAndTrueBelow) {
  for (const double scale : {1e-11, 1e-12, 1e-13, 1e-14, 1e-15}) {
    std::uint64_t n_wrong = 0;
    for (std::uint64_t seed = 0; seed < kSeeds; ++seed) {
      const Matrix A = scaled(system_matrix(seed), scale);
      const Answer given = answer(A);
      if (given.full_rank && relative_residual(A, given.X) > 0.01) ++n_wrong;
    }
    EXPECT_GT(n_wrong, kSeeds / 2) << "scale " << scale;
  }
}

// Multiplying by a power of two and dividing by it later changes no digit.
TEST(SmallSystems, AreMendedByAPowerOfTwo) {
  for (const double scale : {1e-11, 1e-13, 1e-15}) {
    for (std::uint64_t seed = 0; seed < kSeeds; ++seed) {
      const Matrix A = scaled(system_matrix(seed), scale);
      const Matrix larger = scaled(A, 0x1p44);
      EXPECT_SAME_MATRIX(scaled(larger, 0x1p-44), A);
      const Answer given = answer(larger);
      EXPECT_TRUE(given.full_rank) << "seed " << seed << ", scale " << scale;
      EXPECT_LT(relative_residual(A, scaled(given.X, 0x1p44)), kAccurate)
          << "seed " << seed << ", scale " << scale;
    }
  }
}

// Inside the range the scale by a power of two does not show at all but in the exponent.
TEST(SmallSystems, GiveTheSameDigitsAtEveryScaleInRange) {
  for (std::uint64_t seed = 0; seed < kSeeds; ++seed) {
    const Matrix A = system_matrix(seed);
    const Answer given = answer(A);
    EXPECT_SAME_MATRIX(scaled(answer(scaled(A, 0x1p-20)).X, 0x1p-20), given.X);
    EXPECT_SAME_MATRIX(scaled(answer(scaled(A, 0x1p60)).X, 0x1p60), given.X);
  }
}

// The rank-revealing solve has the same edge, and its rank does not tell either.
TEST(SmallSystems, CanGiveAWrongSolutionAndFullRankAlsoByTheTolerance) {
  std::uint64_t n_wrong = 0;
  for (std::uint64_t seed = 0; seed < kSeeds; ++seed) {
    const Matrix A = scaled(system_matrix(seed), 1e-12);
    TnLaDblMat X;
    int rank = 0;
    tnla_linearsolve(dense(A), dense(right_side()), X, 1e-20, &rank, nullptr);
    if (rank == kN && relative_residual(A, plain(X)) > 0.01) ++n_wrong;
    tnla_linearsolve(dense(scaled(A, 0x1p40)), dense(right_side()), X, 1e-13, &rank, nullptr);
    EXPECT_LT(relative_residual(A, scaled(plain(X), 0x1p40)), kAccurate) << "seed " << seed;
  }
  EXPECT_GT(n_wrong, kSeeds / 2);
}

// --- Large and unevenly scaled systems ------------------------------------------------------------------

bool is_solved(const std::vector<double>& entries) {
  TnLaDblMat X;
  return tnla_linearsolve(dense(diagonal(entries)), TnLaDblMat(entries.size(), 1, 1.0), X);
}

TEST(LargeSystems, FailTheFullRankTestFromTenToTheThirtyOn) {
  EXPECT_TRUE(is_solved({0.999e30, 0.999e30}));
  EXPECT_FALSE(is_solved({1.001e30, 1.001e30}));
  EXPECT_FALSE(is_solved({-1.001e30, 1e40, 1e35}));
  EXPECT_SAME(dense(diagonal({1.001e30, 1.001e30})).det(), 0.0);
}

TEST(LargeSystems, AreMendedByAPowerOfTwo) {
  EXPECT_TRUE(is_solved({1.001e30 * 0x1p-40, 1.001e30 * 0x1p-40}));
}

// One entry of ordinary size is enough for the minimum, but then the spread is too large.
TEST(LargeSystems, FailByTheirSpreadIfOneEntryIsSmall) { EXPECT_FALSE(is_solved({1e31, 1})); }

TEST(UnevenSystems, AreRefusedThoughHarmless) {
  EXPECT_FALSE(is_solved({1e11, 1}));
  EXPECT_FALSE(is_solved({1, 1e11}));
  EXPECT_TRUE(is_solved({1e9, 1}));
  EXPECT_SAME(dense(diagonal({1e11, 1})).det(), 0.0);
}

TEST(UnevenSystems, AreSolvedByTheToleranceOrAfterScalingAColumn) {
  TnLaDblMat X;
  int rank = 0;
  tnla_linearsolve(dense(diagonal({0x1p36, 1})), dense({2, 1, {0x1p36, 3}}), X, 1e-13, &rank, nullptr);
  EXPECT_EQ(rank, 2);
  EXPECT_SAME_MATRIX(X, Matrix(2, 1, {1, 3}));
  EXPECT_FALSE(is_solved({0x1p36, 1}));
  EXPECT_TRUE(is_solved({0x1p36 * 0x1p-36, 1}));
}

// The verdict sees the scale of the columns, not that they are nearly parallel.
TEST(UnevenSystems, NearlyParallelColumnsPass) {
  TnLaDblMat X;
  EXPECT_TRUE(tnla_linearsolve(dense({2, 2, {1, 0, 1, 1e-9}}), dense(identity(2)), X));
  EXPECT_FALSE(tnla_linearsolve(dense({2, 2, {1, 0, 1, 1e-11}}), dense(identity(2)), X));
}

}  // namespace
