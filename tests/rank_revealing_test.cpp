// SPDX-License-Identifier: MIT

// The rank-revealing decomposition is not exported.  The solve with a tolerance shows all of it: the
// rank, the solution and the basis of the null space.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <vector>

#include "reference/decomposition_reference.h"
#include "support/allocation.h"
#include "support/assertions.h"
#include "support/bits.h"
#include "support/decomposition_types.h"
#include "support/values.h"
#include "tnla_linearsolve_i.h"

namespace {

using reference::diagonal;
using reference::DowndateRule;
using reference::identity;
using reference::RankRevealing;

constexpr char kSmallMat[] = "src/tnlatsmallmat.cpp";
constexpr int kNotWritten = -77;

// --- Against the definition -----------------------------------------------------------------------------

void expect_solves(const Matrix& A, const Matrix& B, double tol) {
  SCOPED_TRACE(testing::Message() << A.m << " x " << A.n << ", " << B.n << " right sides, tol " << tol);
  const AssertionLog log;
  const RankRevealing expected(A, tol);
  const TnLaDblMat matrix = dense(A);
  const TnLaDblMat right_side = dense(B);
  TnLaDblMat X = dense({2, 3, {1, 2, 3, kNaN, 5, 6}});  // nothing of it may stay
  TnLaDblMat Z;
  int rank = kNotWritten;
  tnla_linearsolve(matrix, right_side, X, tol, &rank, &Z);
  EXPECT_EQ(rank, static_cast<int>(expected.rank));
  EXPECT_SAME_MATRIX(X, expected.solve(B));
  EXPECT_SAME_MATRIX(Z, expected.null_space());
  EXPECT_SAME_MATRIX(matrix, A);
  EXPECT_SAME_MATRIX(right_side, B);
  EXPECT_EQ(log.count(), 0u);
}

void expect_solves(Random& random, const Matrix& A, double tol) {
  expect_solves(A, random_matrix(random, A.m, 1), tol);
  expect_solves(A, any_matrix(random, A.m, 3), tol);
}

// Calls f(m, n) for all shapes up to 12 x 12 and a few larger ones.
void for_all_shapes(const std::function<void(std::size_t, std::size_t)>& f) {
  for (std::size_t m = 1; m <= 12; ++m) {
    for (std::size_t n = 1; n <= 12; ++n) f(m, n);
  }
  f(40, 17);
  f(17, 40);
  f(25, 25);
}

TEST(RankRevealing, FollowsItsDefinitionForAllShapes) {
  Random random(1);
  for_all_shapes([&random](std::size_t m, std::size_t n) {
    expect_solves(random, random_matrix(random, m, n), 1e-13);
    expect_solves(random, any_matrix(random, m, n), 1e-3);
  });
}

TEST(RankRevealing, FollowsItsDefinitionForAllRanks) {
  Random random(2);
  for_all_shapes([&random](std::size_t m, std::size_t n) {
    for (std::size_t rank = 0; rank <= std::min(m, n); ++rank) {
      const Matrix A = random_of_rank(random, m, n, rank);
      EXPECT_EQ(RankRevealing(A, 1e-10).rank, rank) << m << " x " << n;
      expect_solves(random, A, 1e-10);
    }
  });
}

// From what the object holds within itself to what takes the heap, and more right sides than one group.
TEST(RankRevealing, FollowsItsDefinitionForLargerSystems) {
  Random random(8);
  for (const auto& [m, n] : {std::pair<std::size_t, std::size_t>{20, 20},
                             {21, 22},
                             {22, 23},
                             {64, 64},
                             {100, 37},
                             {37, 100},
                             {129, 130}}) {
    for (const std::size_t rank : {std::min(m, n), std::min(m, n) * 3 / 4}) {
      const Matrix A = random_of_rank(random, m, n, rank);
      for (const std::size_t p : {1u, 2u, 16u, 17u, 40u}) {
        expect_solves(A, random_matrix(random, m, p), 1e-10);
      }
      expect_solves(random, A, 1e-10);
    }
  }
}

// Small integers: many columns of equal length, and differences that cancel to zero.
TEST(RankRevealing, FollowsItsDefinitionWhereLengthsAreEqual) {
  Random random(3);
  for (int round = 0; round < 8; ++round) {
    for_all_shapes([&random](std::size_t m, std::size_t n) {
      Matrix A(m, n);
      for (double& x : A.a) x = static_cast<double>(random.below(3)) - 1.0;
      expect_solves(random, A, 1e-10);
    });
  }
}

// --- The pivot choice -----------------------------------------------------------------------------------

// How often the rule trusted its lengths and how often it recomputed, and how often other rules would have
// eliminated the columns in another order.
struct Seen {
  int trusted = 0;
  int recomputed = 0;
  int smaller_fraction = 0;
  int larger_fraction = 0;
  int other_reference = 0;
};

void look_at(const Matrix& A, Seen& seen) {
  const RankRevealing by_rule(A, 1e-13);
  seen.trusted += by_rule.n_trusted;
  seen.recomputed += by_rule.n_recomputed;
  const auto differs = [&](DowndateRule rule) {
    return RankRevealing(A, 1e-13, rule).perm != by_rule.perm;
  };
  seen.smaller_fraction += differs({0.00098, false}) ? 1 : 0;
  seen.larger_fraction += differs({0.00102, false}) ? 1 : 0;
  seen.other_reference += differs({0.001, true}) ? 1 : 0;
}

// One column (2, 0, ..., 0) somewhere, and others that have a shorter first entry and are of the squared
// length `rest` below it, but for a ten-thousandth.  Eliminating the first row leaves them about equal,
// and which is the longest is, by their downdated lengths, mostly a matter of rounding errors.
Matrix one_long_column(Random& random, std::size_t m, std::size_t n, double rest) {
  Matrix A(m, n);
  const double size = std::sqrt(rest / static_cast<double>(m - 1));
  for (std::size_t j = 0; j < n; ++j) {
    A(0, j) = 1.0 + 0.5 * random.uniform();
    for (std::size_t i = 1; i < m; ++i) {
      A(i, j) = size * ((random.below(2) == 0 ? 1.0 : -1.0) + 1e-4 * random.uniform());
    }
  }
  const std::size_t longest = random.below(n);
  std::fill_n(A.column(longest), m, 0.0);
  A(0, longest) = 2.0;
  return A;
}

// 0.001 * h is lost against a reference of 4 where h is at most 2^-51 / 0.001, and at most a half, a
// quarter or an eighth of that against the smaller references that an interchange leaves.
TEST(RankRevealing, TrustsOrRecomputesTheLengthsByTheRule) {
  Seen seen;
  for (std::uint64_t seed = 0; seed < 3000; ++seed) {
    SCOPED_TRACE(seed);
    Random random(seed);
    const double limit = 0x1p-51 / 0.001 / static_cast<double>(1 << random.below(4));
    const double rest = limit * (1.0 + 0.1 * random.uniform());
    const std::size_t m = 3 + random.below(5);
    const std::size_t n = 3 + random.below(4);
    const Matrix A = one_long_column(random, m, n, rest);
    look_at(A, seen);
    expect_solves(A, random_matrix(random, A.m, 1), 1e-13);
  }
  EXPECT_GT(seen.trusted, 300);
  EXPECT_GT(seen.recomputed, 300);
  EXPECT_GT(seen.smaller_fraction, 10);
  EXPECT_GT(seen.larger_fraction, 10);
  EXPECT_GT(seen.other_reference, 10);
}

// Columns whose lengths fall by `ratio` from one to the next, in random order.
Matrix graded(Random& random, std::size_t m, std::size_t n, double ratio) {
  Matrix A = random_matrix(random, m, n);
  for (std::size_t j = 0; j < n; ++j) {
    for (std::size_t i = 0; i < m; ++i) A(i, j) *= std::pow(ratio, static_cast<double>(j));
  }
  for (std::size_t j = n; j > 1; --j) reference::swap_cols(A, j - 1, random.below(j));
  return A;
}

TEST(RankRevealing, RecomputesAgainAndAgainWhereLengthsFallSteeply) {
  Seen seen;
  for (std::uint64_t seed = 0; seed < 200; ++seed) {
    SCOPED_TRACE(seed);
    Random random(seed);
    const Matrix A = graded(random, 8, 6, seed % 2 == 0 ? 0.1 : 1e-8);
    look_at(A, seen);
    expect_solves(A, random_matrix(random, A.m, 2), 1e-30);
  }
  EXPECT_GT(seen.recomputed, 100);
  EXPECT_GT(seen.trusted, 200);
}

// The column lengths are 2, 2, 1: columns are taken in the order 0, 1, 2, and the third unknown is free.
TEST(RankRevealing, TakesTheFirstOfEqualColumns) {
  const RankRevealing qr({2, 3, {2, 0, 0, 2, 1, 0}}, 1e-13);
  EXPECT_EQ(qr.perm, (std::vector<std::size_t>{0, 1}));
  expect_solves({2, 3, {2, 0, 0, 2, 1, 0}}, {2, 1, {1, 1}}, 1e-13);
}

// --- Rank decisions -------------------------------------------------------------------------------------

int rank_of(const Matrix& A, double tol) {
  TnLaDblMat X;
  int rank = kNotWritten;
  tnla_linearsolve(dense(A), TnLaDblMat(A.m, 1, 1.0), X, tol, &rank, nullptr);
  return rank;
}

TEST(Rank, AnEntryOfExactlyTheToleranceCounts) {
  for (const double tol : {1e-13, 1e-20, 0.3, 1e5}) {
    EXPECT_EQ(rank_of(diagonal({tol}), tol), 1);
    EXPECT_EQ(rank_of(diagonal({-tol}), tol), 1);
    EXPECT_EQ(rank_of(diagonal({ulp_below(tol)}), tol), 0);
    EXPECT_EQ(rank_of(diagonal({-ulp_below(tol)}), tol), 0);
    EXPECT_EQ(rank_of(diagonal({ulp_above(tol)}), tol), 1);
  }
}

// Every diagonal entry of R in turn is the tolerance, or one unit in the last place beside it.
TEST(Rank, IsDecidedAtEveryEntry) {
  Random random(4);
  for (const auto& [m, n] : {std::pair<std::size_t, std::size_t>{5, 5}, {7, 4}, {4, 7}}) {
    const Matrix A = random_matrix(random, m, n);
    const Matrix R = RankRevealing(A, kInf).A;  // of rank 0, and so without reflections from the right
    for (std::size_t i = 0; i < std::min(m, n); ++i) {
      const double entry = std::fabs(R(i, i));
      EXPECT_EQ(rank_of(A, entry), static_cast<int>(i) + 1);
      EXPECT_EQ(rank_of(A, ulp_below(entry)), static_cast<int>(i) + 1);
      EXPECT_EQ(rank_of(A, ulp_above(entry)), static_cast<int>(i));
      expect_solves(random, A, entry);
      expect_solves(random, A, ulp_above(entry));
    }
  }
}

TEST(Rank, ANaNToleranceFindsFullRankAndAnInfiniteOneNone) {
  Random random(5);
  const Matrix A = random_of_rank(random, 4, 4, 2);
  EXPECT_EQ(rank_of(A, kNaN), 4);
  EXPECT_EQ(rank_of(A, kInf), 0);
  EXPECT_EQ(rank_of(Matrix(3, 2), kNaN), 2);
  EXPECT_EQ(rank_of(diagonal({kInf}), kInf), 1);
  EXPECT_EQ(rank_of(diagonal({kNaN}), 1.0), 1);
  expect_solves(random, A, kNaN);
  expect_solves(random, A, kInf);
}

TEST(Rank, AZeroColumnIsTakenLast) {
  for (std::size_t zero = 0; zero < 3; ++zero) {
    Matrix A = identity(3);
    A(zero, zero) = 0.0;
    EXPECT_EQ(rank_of(A, 1e-13), 2);
    expect_solves(A, {3, 1, {5, 6, 7}}, 1e-13);
    TnLaDblMat X;
    TnLaDblMat Z;
    tnla_linearsolve(dense(A), dense({3, 1, {5, 6, 7}}), X, 1e-13, nullptr, &Z);
    Matrix expected(3, 1, {5, 6, 7});
    expected(zero, 0) = 0.0;
    for (std::size_t i = 0; i < 3; ++i) EXPECT_EQ(X(i, 0), expected(i, 0));
    for (std::size_t i = 0; i < 3; ++i) EXPECT_EQ(std::fabs(Z(i, 0)), i == zero ? 1.0 : 0.0);
  }
}

// --- What the results mean ------------------------------------------------------------------------------

TEST(RankZero, GivesTheZeroSolutionAndTheWholeSpace) {
  TnLaDblMat X;
  TnLaDblMat Z;
  int rank = kNotWritten;
  tnla_linearsolve(TnLaDblMat(2, 3, 0.0), dense({2, 2, {1, 2, kNaN, 4}}), X, 1e-13, &rank, &Z);
  EXPECT_EQ(rank, 0);
  EXPECT_SAME_MATRIX(X, Matrix(3, 2));
  EXPECT_SAME_MATRIX(Z, identity(3));
}

// The columns 0.25, 0.5, 1 of one row are exchanged once: the rows 0 and 2 of the identity with them.
TEST(RankZero, GivesTheIdentityWithItsRowsExchangedBack) {
  TnLaDblMat X;
  TnLaDblMat Z;
  tnla_linearsolve(dense({1, 3, {0.25, 0.5, 1}}), dense({1, 1, {1}}), X, 2.0, nullptr, &Z);
  EXPECT_SAME_MATRIX(X, Matrix(3, 1));
  EXPECT_SAME_MATRIX(Z, Matrix(3, 3, {0, 0, 1, 0, 1, 0, 1, 0, 0}));
}

// Two equal columns: the solution is shared between them, and (1, -1) / sqrt(2) spans the null space.
// Each number comes from about ten operations.
TEST(RankRevealing, SharesTheSolutionBetweenEqualColumns) {
  TnLaDblMat X;
  TnLaDblMat Z;
  int rank = kNotWritten;
  tnla_linearsolve(dense({3, 2, {1, 2, 2, 1, 2, 2}}), dense({3, 1, {2, 4, 4}}), X, 1e-13, &rank, &Z);
  EXPECT_EQ(rank, 1);
  EXPECT_NEAR(X(0, 0), 1.0, 16 * 0x1p-53);
  EXPECT_NEAR(X(1, 0), 1.0, 16 * 0x1p-53);
  ASSERT_EQ(Z.n_cols(), 1u);
  EXPECT_NEAR(std::fabs(Z(0, 0)), std::sqrt(0.5), 16 * 0x1p-53);
  EXPECT_NEAR(Z(0, 0) + Z(1, 0), 0.0, 16 * 0x1p-53);
}

// A has entries below n in magnitude, and each of the at most m + n reflections that a number passes
// adds up to max(m, n) roundings to it.
TEST(RankRevealing, TheBasisIsOrthonormalAndTheSolutionOrthogonalToIt) {
  Random random(6);
  for (const auto& [m, n] : {std::pair<std::size_t, std::size_t>{9, 9}, {15, 8}, {5, 12}}) {
    for (std::size_t rank = 1; rank < std::min(m, n); ++rank) {
      SCOPED_TRACE(testing::Message() << m << " x " << n << ", rank " << rank);
      const Matrix A = random_of_rank(random, m, n, rank);
      const Matrix B = product(A, random_matrix(random, n, 2));  // so that the system can be solved
      TnLaDblMat X;
      TnLaDblMat Z;
      tnla_linearsolve(dense(A), dense(B), X, 1e-10, nullptr, &Z);
      const double tolerance = static_cast<double>((m + n) * std::max(m, n) * n) * 0x1p-53;
      const Matrix Zt = transposed(plain(Z));
      const std::size_t free = n - rank;
      EXPECT_LT(largest_difference(product(Zt, plain(Z)), identity(free)), tolerance);
      EXPECT_LT(largest_difference(product(A, plain(Z)), Matrix(m, free)), tolerance);
      const double size = std::max(1.0, largest_difference(plain(X), Matrix(n, 2)));
      EXPECT_LT(largest_difference(product(Zt, plain(X)), Matrix(free, 2)), tolerance * size);
      EXPECT_LT(largest_difference(product(A, plain(X)), B), tolerance * size);
    }
  }
}

// --- What null_space finds ------------------------------------------------------------------------------

// Only the ones of the start basis are written; what else overlaps is turned along.
TEST(NullSpace, AMatrixThatIsNotEmptyKeepsItsEntriesInTheStartBasis) {
  Random random(7);
  for (const auto& [m, n] : {std::pair<std::size_t, std::size_t>{6, 4}, {3, 7}, {5, 5}}) {
    for (std::size_t rank = 0; rank <= std::min(m, n); ++rank) {
      for (const auto& [rows, cols] : {std::pair<std::size_t, std::size_t>{n, 2}, {2, 3}, {n + 1, n}}) {
        const Matrix A = random_of_rank(random, m, n, rank);
        const Matrix before = random_matrix(random, rows, cols);
        TnLaDblMat X;
        TnLaDblMat Z = dense(before);
        tnla_linearsolve(dense(A), TnLaDblMat(m, 1, 1.0), X, 1e-10, nullptr, &Z);
        EXPECT_SAME_MATRIX(Z, RankRevealing(A, 1e-10).null_space(before));
      }
    }
  }
}

// --- Memory ---------------------------------------------------------------------------------------------

// The result may take the place of the matrix, and even that of the right sides.
TEST(RankRevealing, TheSolutionMayReplaceWhatItComesFrom) {
  Random random(9);
  for (const auto& [m, n] :
       {std::pair<std::size_t, std::size_t>{3, 3}, {9, 5}, {5, 9}, {60, 60}, {40, 70}}) {
    for (const std::size_t rank : {std::min(m, n), std::min(m, n) / 2}) {
      const Matrix A = random_of_rank(random, m, n, rank);
      const Matrix B = random_matrix(random, m, 3);
      const Matrix expected = RankRevealing(A, 1e-10).solve(B);
      TnLaDblMat in_place_of_A = dense(A);
      tnla_linearsolve(in_place_of_A, dense(B), in_place_of_A, 1e-10, nullptr, nullptr);
      EXPECT_SAME_MATRIX(in_place_of_A, expected);
      TnLaDblMat in_place_of_B = dense(B);
      tnla_linearsolve(dense(A), in_place_of_B, in_place_of_B, 1e-10, nullptr, nullptr);
      EXPECT_SAME_MATRIX(in_place_of_B, expected);
    }
  }
}

// A dense system of order 12 or less takes no memory if X has a block that is large enough.
TEST(RankRevealing, ASmallDenseSystemAllocatesNothingButItsResult) {
  Random random(10);
  for (std::size_t n = 1; n <= 12; ++n) {
    for (const std::size_t rank : {n, n / 2}) {
      const TnLaDblMat A = dense(random_of_rank(random, n, n, rank));
      const TnLaDblMat B = dense(random_matrix(random, n, 2));
      TnLaDblMat X(n, 2, 0.0);
      int found = kNotWritten;
      const std::size_t before = allocation::made();
      tnla_linearsolve<TnLaDblMat>(A, B, X, 1e-10, &found, nullptr);
      EXPECT_EQ(allocation::made(), before) << n;
      EXPECT_EQ(found, static_cast<int>(rank));
      TnLaDblMat fresh;
      tnla_linearsolve<TnLaDblMat>(A, B, fresh, 1e-10, nullptr, nullptr);
      EXPECT_EQ(allocation::made(), before + 1) << n;
    }
  }
}

// --- Small types ----------------------------------------------------------------------------------------

// A small null space keeps its shape: all its columns are turned, of which the first become the basis.
template <std::size_t N>
Matrix small_null_space(const RankRevealing& expected, const Matrix& before) {
  Matrix result = before;
  if (expected.rank < N) expected.basis(result);
  return result;
}

// Its resize asserts each extent that is not N: none of n x n, the columns of n x (n - rank), both of 0 x
// 0.
template <std::size_t N>
Files null_space_assertions(std::size_t rank) {
  if (rank == 0) return {};
  return rank == N ? Files({kSmallMat, kSmallMat}) : Files({kSmallMat});
}

template <std::size_t N>
void expect_small_solves(const Matrix& A, const Matrix& B, double tol, const Matrix& before) {
  SCOPED_TRACE(testing::Message() << "size " << N << ", tol " << tol);
  const RankRevealing expected(A, tol);
  for (const bool logged : {true, false}) {
    const AssertionLog log;
    if (!logged) kit_assertion_handler = nullptr;
    Small<N> X = as<Small<N>>(before);
    Small<N> Z = as<Small<N>>(before);
    int rank = kNotWritten;
    tnla_linearsolve(as<Small<N>>(A), as<Small<N>>(B), X, tol, &rank, nullptr);
    EXPECT_EQ(log.count(), 0u);
    EXPECT_EQ(rank, static_cast<int>(expected.rank));
    EXPECT_SAME_MATRIX(X, expected.solve(B));
    tnla_linearsolve(as<Small<N>>(A), as<Small<N>>(B), X, tol, nullptr, &Z);
    EXPECT_EQ(log.files(), logged ? null_space_assertions<N>(expected.rank) : Files());
    EXPECT_SAME_MATRIX(Z, small_null_space<N>(expected, before));
  }
}

TEST(RankRevealingSmall, IsThatOfTheDenseMatrixForAllSizesAndRanks) {
  for_all_small_sizes([](auto size) {
    constexpr std::size_t n = size;
    Random random(n);
    for (std::size_t rank = 0; rank <= n; ++rank) {
      const Matrix A = random_of_rank(random, n, n, rank);
      const Matrix B = random_matrix(random, n, n);
      expect_small_solves<n>(A, B, 1e-10, random_matrix(random, n, n));
      expect_small_solves<n>(A, B, 1e-10, Matrix(n, n));
      expect_solves(A, B, 1e-10);
    }
    for (int round = 0; round < 4; ++round) {
      const Matrix A = any_matrix(random, n, n);
      const Matrix B = any_matrix(random, n, n);
      expect_small_solves<n>(A, B, 1e-3, random_matrix(random, n, n));
      expect_solves(random, A, 1e-3);
    }
    expect_small_solves<n>(Matrix(n, n), random_matrix(random, n, n), kNaN, identity(n));
  });
}

TEST(RankRevealingSmall, AllocatesNothing) {
  for_all_small_sizes([](auto size) {
    constexpr std::size_t n = size;
    Random random(n);
    for (std::size_t rank = 0; rank <= n; ++rank) {
      const Small<n> A = as<Small<n>>(random_of_rank(random, n, n, rank));
      const Small<n> B = as<Small<n>>(random_matrix(random, n, n));
      Small<n> X;
      Small<n> Z;
      int found = kNotWritten;
      const AssertionLog log;
      kit_assertion_handler = nullptr;  // the null space has another shape
      const std::size_t before = allocation::made();
      tnla_linearsolve(A, B, X, 1e-10, &found, &Z);
      EXPECT_EQ(allocation::made(), before) << "size " << n << ", rank " << rank;
      EXPECT_EQ(found, static_cast<int>(rank));
    }
  });
}

TEST(RankRevealingSmall, DecidesTheRankAtEquality) {
  for_all_small_sizes([](auto size) {
    const Matrix A =
        scaled(identity(size), 0.3);  // every diagonal entry of R is 0.3 in magnitude, or beside
    Random random(size);
    const Matrix B = random_matrix(random, size, size);
    const double last = std::fabs(RankRevealing(A, 1e-10).A(size - 1, size - 1));
    EXPECT_SAME(last, 0.3);
    for (const double tol : {ulp_below(0.3), 0.3, ulp_above(0.3)}) {
      expect_small_solves<size>(A, B, tol, Matrix(size, size));
    }
  });
}

}  // namespace
