// SPDX-License-Identifier: MIT

// The numbers: what x() computes.  When it computes what is in cholesky_life_test.cpp, and
// what it holds meanwhile in cholesky_memory_test.cpp.

#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <vector>

#include "reference/cholesky_reference.h"
#include "support/assertions.h"
#include "support/bits.h"
#include "support/decomposition_types.h"
#include "support/dense_objects.h"
#include "support/values.h"
#include "tnla_linearsolve_i.h"
#include "tnlacholesky_i.h"

namespace {

using reference::Cholesky;
using reference::cholesky_solution;
using reference::diagonal;
using reference::identity;

constexpr double kBound = 1e-10;  // of the pivots

std::vector<double> solve(const Matrix& A, const std::vector<double>& b) {
  TnLaCholesky cholesky(static_cast<int>(A.n));
  cholesky.a(dense(A).array());
  cholesky.b(vec(b).array());
  const TnArray<double>& x = cholesky.x();
  return {x.data(), x.data() + x.size()};
}

// By the definition, and without an assertion.
void expect_solves(const Matrix& A, const std::vector<double>& b) {
  SCOPED_TRACE(testing::Message() << A.n << " unknowns");
  const AssertionLog log;
  const std::vector<double> expected = cholesky_solution(A, b);
  const std::vector<double> x = solve(A, b);
  ASSERT_EQ(x.size(), A.n);
  EXPECT_SAME_ARRAY(A.n, x.data(), expected.data());
  EXPECT_EQ(log.count(), 0u);
}

bool is_factorised(const Matrix& A) { return Cholesky(A).complete; }

// Symmetric and positive definite.
Matrix random_definite(Random& random, std::size_t n) {
  const Matrix G = random_matrix(random, n, n);
  Matrix A = product(G, transposed(G));
  for (std::size_t i = 0; i < n; ++i) A(i, i) += 1.0;
  return A;
}

// Row and column i times 2^e, with e in -k ... k.
Matrix badly_scaled(Random& random, Matrix A, std::size_t k) {
  for (std::size_t i = 0; i < A.n; ++i) {
    const int e = static_cast<int>(random.below(2 * k + 1)) - static_cast<int>(k);
    for (std::size_t j = 0; j < A.n; ++j) A(i, j) = std::ldexp(A(i, j), e);
    for (std::size_t j = 0; j < A.n; ++j) A(j, i) = std::ldexp(A(j, i), e);
  }
  return A;
}

Matrix with_lower(Matrix A, double value) {
  for (std::size_t j = 0; j < A.n; ++j) {
    for (std::size_t i = j + 1; i < A.n; ++i) A(i, j) = value;
  }
  return A;
}

// --- By the factor --------------------------------------------------------------------------------------

TEST(Cholesky, FollowsItsDefinition) {
  Random random(1);
  for (std::size_t n = 0; n <= 40; ++n) {
    const Matrix A = random_definite(random, n);
    EXPECT_TRUE(is_factorised(A));
    expect_solves(A, random.vector(n));
    expect_solves(A, random.any_vector(n));
  }
  for (const std::size_t n : {64u, 101u}) expect_solves(random_definite(random, n), random.vector(n));
}

TEST(Cholesky, FollowsItsDefinitionForBadlyScaledSystems) {
  Random random(2);
  for (std::size_t n = 1; n <= 24; ++n) {
    for (const std::size_t k : {2u, 8u, 15u}) {
      const Matrix A = badly_scaled(random, random_definite(random, n), k);
      EXPECT_TRUE(is_factorised(A));
      expect_solves(A, random.vector(n));
    }
    expect_solves(badly_scaled(random, random_definite(random, n), 500), random.vector(n));
  }
}

// One element of the upper triangle, or of the right side, is replaced.
TEST(Cholesky, FollowsItsDefinitionForSpecialValues) {
  Random random(3);
  int n_factorised = 0;
  for (const std::size_t n : {1u, 2u, 3u, 5u, 9u}) {
    const Matrix definite = random_definite(random, n);
    const std::vector<double> b = random.vector(n);
    for (const double special : special_values()) {
      for (int i = 0; i < 8; ++i) {
        const std::size_t row = random.below(n);
        Matrix A = definite;
        A(row, row + random.below(n - row)) = special;
        std::vector<double> special_b = b;
        special_b[row] = special;
        expect_solves(A, b);
        expect_solves(A, special_b);
        expect_solves(definite, special_b);
        n_factorised += is_factorised(A) ? 1 : 0;
      }
    }
  }
  EXPECT_GT(n_factorised, 100);
}

TEST(Cholesky, FollowsItsDefinitionForAnyMatrix) {
  Random random(4);
  for (std::size_t n = 1; n <= 12; ++n) {
    for (int i = 0; i < 20; ++i) expect_solves(any_matrix(random, n, n), random.any_vector(n));
  }
}

// The last pivot is 2 - tiny^2 - 1, where tiny^2 is lost beside 2 and not beside 1.
TEST(Cholesky, SubtractsTheLatestColumnFirst) {
  const double tiny = 1.25 * 0x1p-27;
  const Matrix A(3, 3, {1, 0, 1, 0, 1, tiny, 1, tiny, 2});
  EXPECT_SAME(solve(A, {0, 0, 1})[2], 1.0);
  EXPECT_NE(1.0 / std::sqrt(1.0 - tiny * tiny), 1.0);
}

TEST(Cholesky, OfOneUnknownDividesTwiceByTheRoot) {
  EXPECT_EQ(solve({1, 1, {4}}, {2}), std::vector<double>{0.5});
  EXPECT_EQ(solve({1, 1, {3}}, {1}), std::vector<double>{1.0 / std::sqrt(3.0) / std::sqrt(3.0)});
}

// The factor of [4 2; 2 10] is [2 0; 1 3]: forward (4, 5), backward (3/2 1/3, 5/3).
TEST(Cholesky, SolvesASystemByHand) {
  const std::vector<double> x = solve({2, 2, {4, 2, 2, 10}}, {8, 19});
  EXPECT_SAME(x[1], 5.0 / 3.0);
  EXPECT_SAME(x[0], (4.0 - 1.0 * (5.0 / 3.0)) / 2.0);
}

TEST(Cholesky, KeepsTheSignOfAZeroSolution) {
  const std::vector<double> x = solve(identity(2), {-0.0, 0.0});
  EXPECT_SAME(x[0], -0.0);
  EXPECT_SAME(x[1], 0.0);
}

// (A + E) x = b with |E| <= (3 n + 1) u |L| |L'| (Higham, Accuracy and Stability of Numerical Algorithms,
// theorem 10.4), where no element of |L| |L'| exceeds the largest of A.  The residual itself adds n + 1,
// and one more covers the terms of higher order.
TEST(Cholesky, LeavesASmallResidual) {
  Random random(5);
  for (std::size_t n = 1; n <= 40; n += 3) {
    const Matrix A = random_definite(random, n);
    const std::vector<double> b = random.vector(n);
    const std::vector<double> x = solve(A, b);
    double sum_x = 0.0;
    for (const double value : x) sum_x += std::fabs(value);
    const double unit = 0x1p-53 * largest_difference(A, Matrix(n, n)) * sum_x;
    const Matrix residual = product(A, {n, 1, x});
    EXPECT_LE(largest_difference(residual, {n, 1, b}), static_cast<double>(4 * n + 3) * unit);
  }
}

TEST(Cholesky, ReadsOnlyTheUpperTriangle) {
  Random random(6);
  for (std::size_t n = 1; n <= 20; ++n) {
    const Matrix A = random_definite(random, n);
    const std::vector<double> b = random.vector(n);
    const std::vector<double> expected = solve(A, b);
    for (const double value : {0.0, 1e300, kNaN}) {
      const std::vector<double> x = solve(with_lower(A, value), b);
      EXPECT_SAME_ARRAY(n, x.data(), expected.data());
    }
  }
}

// --- The test of the pivots -----------------------------------------------------------------------------

TEST(Cholesky, APivotEqualToTheBoundPasses) {
  expect_solves({1, 1, {kBound}}, {1});
  EXPECT_SAME(solve({1, 1, {kBound}}, {3})[0], 3.0 / 1e-5 / 1e-5);  // the root is 1e-5
  EXPECT_SAME(solve({1, 1, {ulp_above(kBound)}}, {3})[0],
              3.0 / std::sqrt(ulp_above(kBound)) / std::sqrt(ulp_above(kBound)));
}

// A single element below the bound counts as zero for the other solve too.
TEST(Cholesky, APivotBelowTheBoundFails) {
  for (const double pivot : {ulp_below(kBound), kTiny, 0.0, -0.0, -kTiny, -1.0e-11}) {
    EXPECT_SAME(solve({1, 1, {pivot}}, {3})[0], 0.0);
  }
}

// The bound is the same whatever the size of the matrix, and it is the reduced pivot that is tested.
// NaN below the diagonal tells which way was taken.
TEST(Cholesky, TheBoundIsAbsolute) {
  const double x = 0x1p-34;  // whose square is a multiple of the last digit of the bound
  const double largest[] = {1.0, 0x1p40, 0x1p200};
  for (const double first : largest) {
    const double root = std::sqrt(first);
    const auto is_factorised_with = [&](double pivot) {
      const Matrix A(2, 2, {first, kNaN, x * root, pivot + x * x});
      expect_solves(A, {1, 1});
      return !std::isnan(solve(A, {1, 1})[0]);
    };
    EXPECT_TRUE(is_factorised_with(ulp_above(kBound)));
    EXPECT_TRUE(is_factorised_with(kBound));
    EXPECT_FALSE(is_factorised_with(ulp_below(kBound)));
    EXPECT_FALSE(is_factorised_with(-1.0));
  }
}

TEST(Cholesky, EveryPivotIsTested) {
  Random random(7);
  for (std::size_t n = 1; n <= 9; ++n) {
    const Matrix A = random_definite(random, n);
    for (std::size_t i = 0; i < n; ++i) {
      Matrix failing = A;
      failing(i, i) = -1.0;
      EXPECT_FALSE(is_factorised(failing));
      expect_solves(failing, random.vector(n));
    }
  }
}

// Storage for exactly 3 elements is the substitution's; the other way leaves room for 4.
bool is_solved_by_factor(const Matrix& A) {
  TnLaCholesky cholesky(3);
  cholesky.a(dense(A).array());
  cholesky.b(vec({1, 2, 3}).array());
  return cholesky.x().capacity() == 3;
}

TEST(Cholesky, APivotThatIsNoNumberPasses) {
  EXPECT_SAME(solve({1, 1, {kNaN}}, {3})[0], kNaN);
  EXPECT_FALSE(is_solved_by_factor(diagonal({1, 1, -1})));
  for (std::size_t i = 0; i < 3; ++i) {
    std::vector<double> entries = {4, 9, 16};
    entries[i] = kNaN;
    EXPECT_TRUE(is_solved_by_factor(diagonal(entries))) << i;
    expect_solves(diagonal(entries), {1, 2, 3});
  }
  EXPECT_TRUE(is_solved_by_factor({3, 3, {1, 0, 0, kNaN, 1, 0, 0, 0, 1}}));
  EXPECT_TRUE(is_solved_by_factor({3, 3, {1, 0, 0, kInf, kInf, 0, 0, 0, 1}}));  // inf - inf
  EXPECT_FALSE(is_solved_by_factor(diagonal({-1, kNaN, 1})));
}

TEST(Cholesky, AnInfinitePivotPasses) {
  EXPECT_SAME(solve({1, 1, {kInf}}, {3})[0], 0.0);
  EXPECT_EQ(solve(diagonal({kInf, 4}), {1, 2}), (std::vector<double>{0.0, 0.5}));
}

// --- Without the factor ---------------------------------------------------------------------------------

// The same bits as the general solve gives.
void expect_solved_in_general(const Matrix& A, const std::vector<double>& b) {
  ASSERT_FALSE(is_factorised(A));
  expect_solves(A, b);
  TnLaDblMat X;
  tnla_linearsolve(dense(A), mat(A.n, 1, b), X, 1e-10);
  const std::vector<double> x = solve(A, b);
  ASSERT_EQ(x.size(), X.array().size());
  EXPECT_SAME_ARRAY(x.size(), x.data(), X.array().data());
}

TEST(CholeskyFallback, IsTheGeneralSolve) {
  Random random(8);
  for (std::size_t n = 1; n <= 24; ++n) {
    Matrix A = random_matrix(random, n, n);  // not even symmetric
    A(n / 2, n / 2) = -1.0;
    expect_solved_in_general(A, random.vector(n));
    expect_solved_in_general(A, random.any_vector(n));
    Matrix singular = random_of_rank(random, n, n, n / 2);
    singular(0, 0) = 0.0;
    expect_solved_in_general(singular, random.vector(n));
    expect_solved_in_general(scaled(random_definite(random, n), -1.0), random.vector(n));
    expect_solved_in_general(Matrix(n, n), random.vector(n));
  }
}

TEST(CholeskyFallback, SolvesARegularIndefiniteSystem) {
  const std::vector<double> x = solve({2, 2, {0, 1, 1, 0}}, {1, 2});
  EXPECT_EQ(x, (std::vector<double>{2, 1}));
}

TEST(CholeskyFallback, GivesTheShortestSolutionOfASingularSystem) {
  EXPECT_EQ(solve(diagonal({0, 2, 0}), {5, 3, 0}), (std::vector<double>{0, 1.5, 0}));
  EXPECT_EQ(solve(Matrix(3, 3), {5, 3, 1}), (std::vector<double>{0, 0, 0}));
  const Matrix ones(2, 2, {1, 1, 1, 1});  // x + y = 2
  expect_solved_in_general(ones, {2, 2});
  const std::vector<double> x = solve(ones, {2, 2});
  const double rounding = 32 * 0x1p-53;  // about ten operations on numbers up to 2
  EXPECT_NEAR(x[0], 1.0, rounding);
  EXPECT_NEAR(x[1], 1.0, rounding);
}

TEST(CholeskyFallback, TakesItsOwnTolerance) {
  EXPECT_SAME(solve(diagonal({4, -kBound}), {0, kBound})[1], -1.0);
  EXPECT_SAME(solve(diagonal({4, -ulp_below(kBound)}), {0, kBound})[1], 0.0);
}

TEST(CholeskyFallback, ReadsTheLowerTriangleToo) {
  // x + 2 y = 1, 4 x = 2, by rows; the transposed system has the solution (1, -0.25).
  const std::vector<double> x = solve({2, 2, {1, 4, 2, 0}}, {1, 2});
  const double rounding = 32 * 0x1p-53;
  EXPECT_NEAR(x[0], 0.5, rounding);
  EXPECT_NEAR(x[1], 0.25, rounding);
}

}  // namespace
