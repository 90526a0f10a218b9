// SPDX-License-Identifier: MIT

#include <gtest/gtest.h>

#include <cmath>
#include <optional>
#include <tuple>
#include <utility>
#include <vector>

#include "reference/decomposition_reference.h"
#include "support/assertions.h"
#include "support/bits.h"
#include "support/decomposition_types.h"
#include "support/expect_asserts.h"
#include "support/values.h"
#include "tnla_linearsolve_i.h"

namespace {

using reference::diagonal;
using reference::identity;
using reference::Qr;
using reference::RankRevealing;
using reference::resized;

constexpr char kSource[] = "src/tnla_linearsolve.cpp";
constexpr char kQr[] = "src/tnlaqrdecompo.cpp";
constexpr char kSmallMat[] = "src/tnlatsmallmat.cpp";
constexpr int kNotWritten = -77;

// What X and null_space hold before a call.
const Matrix& something() {
  static const Matrix matrix(2, 3, {1, 2, 3, 4, 5, 6});
  return matrix;
}

// --- The default solve ----------------------------------------------------------------------------------

// Which decomposition it takes, what it answers and what X becomes, where nothing is asserted.
struct Solution {
  bool full_rank;
  Matrix X;
  Matrix null_space;
};

Solution solution(const Matrix& A, const Matrix& B, const Matrix& before) {
  if (A.m < A.n) {
    const RankRevealing decomposition(A, 1e-13);
    return {decomposition.rank == A.m, decomposition.solve(B), decomposition.null_space()};
  }
  const std::optional<Matrix> X = Qr(A).solve(B);
  return {X.has_value(), X.value_or(resized(before, A.n, B.n)), Matrix()};
}

void expect_default_solve(const Matrix& A, const Matrix& B) {
  SCOPED_TRACE(testing::Message() << A.m << " x " << A.n << ", " << B.n << " right sides");
  const AssertionLog log;
  const Solution expected = solution(A, B, something());
  const TnLaDblMat matrix = dense(A);
  const TnLaDblMat right_side = dense(B);
  TnLaDblMat X = dense(something());
  EXPECT_EQ(tnla_linearsolve(matrix, right_side, X), expected.full_rank);
  EXPECT_SAME_MATRIX(X, expected.X);

  X = dense(something());
  TnLaDblMat Z;
  EXPECT_EQ(tnla_linearsolve<TnLaDblMat>(matrix, right_side, X, &Z), expected.full_rank);
  EXPECT_SAME_MATRIX(X, expected.X);
  EXPECT_SAME_MATRIX(Z, expected.null_space);
  EXPECT_SAME_MATRIX(matrix, A);
  EXPECT_SAME_MATRIX(right_side, B);
  EXPECT_EQ(log.count(), 0u);
}

void expect_default_solves(Random& random, const Matrix& A) {
  expect_default_solve(A, random_matrix(random, A.m, 1));
  expect_default_solve(A, any_matrix(random, A.m, 5));
}

TEST(DefaultSolve, FollowsItsDefinitionForAllShapes) {
  Random random(1);
  for (std::size_t m = 1; m <= 9; ++m) {
    for (std::size_t n = 1; n <= 9; ++n) {
      expect_default_solves(random, random_matrix(random, m, n));
      expect_default_solves(random, any_matrix(random, m, n));
      expect_default_solves(random, random_of_rank(random, m, n, 1));
    }
  }
  expect_default_solves(random, random_matrix(random, 40, 17));
  expect_default_solves(random, random_matrix(random, 17, 40));
}

// Small orders are solved on the stack, larger ones are not; few right sides go with A, others follow.
TEST(DefaultSolve, FollowsItsDefinitionForAllOrders) {
  Random random(8);
  for (std::size_t n = 1; n <= 15; ++n) {
    for (const std::size_t p : {1u, 2u, 3u, 12u, 50u}) {
      expect_default_solve(random_matrix(random, n, n), random_matrix(random, n, p));
      expect_default_solve(any_matrix(random, n, n), any_matrix(random, n, p));
      expect_default_solve(random_of_rank(random, n, n, n - n / 2), random_matrix(random, n, p));
    }
  }
}

TEST(DefaultSolve, XMayBeAOfAnyOrder) {
  Random random(9);
  for (std::size_t n = 1; n <= 15; ++n) {
    for (const std::size_t p : {1u, 2u, 3u, 12u, 50u}) {
      for (const Matrix& A : {random_matrix(random, n, n), Matrix(n, n), any_matrix(random, n, n)}) {
        const Matrix B = random_matrix(random, n, p);
        const Solution expected = solution(A, B, A);
        TnLaDblMat X = dense(A);
        EXPECT_EQ(tnla_linearsolve(X, dense(B), X), expected.full_rank);
        EXPECT_SAME_MATRIX(X, expected.X);
      }
    }
  }
}

TEST(DefaultSolve, BMayBeA) {
  Random random(10);
  for (std::size_t n = 1; n <= 15; ++n) {
    const Matrix A = random_matrix(random, n, n);
    const TnLaDblMat matrix = dense(A);
    TnLaDblMat X;
    EXPECT_TRUE(tnla_linearsolve(matrix, matrix, X));
    EXPECT_SAME_MATRIX(X, solution(A, A, {}).X);
  }
}

// One assertion, and then the first rows of B, or nothing but the shape.
TEST(DefaultSolve, OfAnyOrderAssertsTheRowsOfB) {
  Random random(11);
  for (std::size_t n = 1; n <= 15; ++n) {
    const Matrix A = random_matrix(random, n, n);
    const Matrix B = random_matrix(random, n + 2, 3);
    expect_asserts({kQr}, [&] {
      TnLaDblMat X = dense(something());
      EXPECT_TRUE(tnla_linearsolve(dense(A), dense(B), X));
      EXPECT_SAME_MATRIX(X, solution(A, resized(B, n, 3), something()).X);
    });
    expect_asserts({kQr}, [&] {
      TnLaDblMat X = dense(something());
      EXPECT_FALSE(tnla_linearsolve(dense(A), TnLaDblMat(n - 1, 3, 1.0), X));
      EXPECT_SAME_MATRIX(X, resized(something(), n, 3));
    });
    expect_asserts({kQr}, [&] {  // no column is too short
      TnLaDblMat X = dense(something());
      EXPECT_TRUE(tnla_linearsolve(dense(A), TnLaDblMat(n - 1, 0, 1.0), X));
      EXPECT_SAME_MATRIX(X, Matrix(n, 0));
    });
  }
}

// The columns of a square matrix are exchanged by one decomposition and not by the other, which shows in
// the last digits.
TEST(DefaultSolve, OfASquareSystemExchangesNoColumns) {
  Random random(2);
  const Matrix A = random_matrix(random, 8, 8);
  const Matrix B = random_matrix(random, 8, 1);
  EXPECT_NE(Qr(A).solve(B).value().a, RankRevealing(A, 1e-13).solve(B).a);
  expect_default_solve(A, B);
}

TEST(DefaultSolve, EmptiesTheNullSpaceUnlessTheSystemIsWide) {
  for (const Matrix& A : {identity(3), Matrix(3, 3), Matrix(4, 3)}) {
    TnLaDblMat X;
    TnLaDblMat Z = dense(something());
    tnla_linearsolve(dense(A), TnLaDblMat(A.m, 1, 1.0), X, &Z);
    EXPECT_SAME_MATRIX(Z, Matrix());
  }
}

TEST(DefaultSolve, OfAWideSystemGivesTheShortestSolutionAndAUnitVector) {
  TnLaDblMat X;
  TnLaDblMat Z;
  EXPECT_TRUE(tnla_linearsolve(dense({2, 3, {1, 0, 0, 1, 1, 0}}), dense({2, 1, {2, 3}}), X, &Z));
  // x + z = 2 and y = 3; (1, 0, -1) / sqrt(2) spans the null space.
  const double rounding = 32 * 0x1p-53;  // about ten operations on numbers up to 3
  EXPECT_NEAR(X(0, 0), 1.0, rounding);
  EXPECT_NEAR(X(1, 0), 3.0, rounding);
  EXPECT_NEAR(X(2, 0), 1.0, rounding);
  ASSERT_EQ(Z.n_cols(), 1u);
  EXPECT_NEAR(std::fabs(Z(0, 0)), std::sqrt(0.5), rounding);
  EXPECT_NEAR(Z(1, 0), 0.0, rounding);
  EXPECT_NEAR(Z(0, 0) + Z(2, 0), 0.0, rounding);
}

TEST(DefaultSolve, OfAWideSystemStillSolvesWhereTheRankIsTooSmall) {
  const Matrix A(2, 3, {1, 2, 1, 2, 1, 2});
  TnLaDblMat X;
  EXPECT_FALSE(tnla_linearsolve(dense(A), dense({2, 1, {3, 6}}), X));
  for (std::size_t i = 0; i < 3; ++i) EXPECT_NEAR(X(i, 0), 1.0, 32 * 0x1p-53);
  expect_default_solve(A, {2, 1, {3, 6}});
}

TEST(DefaultSolve, OfAWideSystemTakesTheTolerance) {
  const auto solves = [](double entry) {
    TnLaDblMat X;
    return tnla_linearsolve(dense({1, 2, {entry, 0}}), dense({1, 1, {1}}), X);
  };
  EXPECT_TRUE(solves(1e-13));
  EXPECT_TRUE(solves(-1e-13));
  EXPECT_FALSE(solves(ulp_below(1e-13)));
  EXPECT_FALSE(solves(0.0));
}

TEST(DefaultSolve, FailureOfATallSystemOnlyResizes) {
  TnLaDblMat X = dense(something());
  EXPECT_FALSE(tnla_linearsolve(TnLaDblMat(4, 3, 0.0), TnLaDblMat(4, 2, 1.0), X));
  EXPECT_SAME_MATRIX(X, Matrix(3, 2, {1, 2, 0, 3, 4, 0}));
}

TEST(DefaultSolve, XMayBeA) {
  Random random(3);
  for (const auto& [m, n] : {std::pair<std::size_t, std::size_t>{4, 4}, {5, 3}, {2, 3}}) {
    const Matrix A = random_matrix(random, m, n);
    const Matrix B = random_matrix(random, m, 2);
    TnLaDblMat X = dense(A);
    EXPECT_TRUE(tnla_linearsolve(X, dense(B), X));
    EXPECT_SAME_MATRIX(X, solution(A, B, A).X);
  }
  TnLaDblMat X = TnLaDblMat(2, 3, 0.0);
  EXPECT_FALSE(tnla_linearsolve(X, dense({2, 1, {1, 1}}), X));
  EXPECT_SAME_MATRIX(X, Matrix(3, 1));
}

TEST(DefaultSolve, OfASquareOrTallSystemTakesEmptyOnes) {
  const AssertionLog log;
  for (const auto& [m, n, p] :
       {std::tuple<std::size_t, std::size_t, std::size_t>{0, 0, 0}, {0, 0, 2}, {3, 0, 2}, {3, 2, 0}}) {
    TnLaDblMat X = dense(something());
    EXPECT_TRUE(tnla_linearsolve(TnLaDblMat(m, n, 1.0), TnLaDblMat(m, p, 1.0), X));
    EXPECT_SAME_MATRIX(X, Matrix(n, p));
  }
  EXPECT_EQ(log.count(), 0u);
}

TEST(DefaultSolve, OfAWideSystemAssertsItsPreconditionsOnce) {
  for (const auto& [A, B] : {std::pair<Matrix, Matrix>{{2, 3}, {3, 1}},
                             {{2, 3}, {1, 1}},
                             {{0, 3}, {0, 1}},
                             {{2, 3}, {2, 0}},
                             {{0, 3}, {2, 2}}}) {
    expect_asserts({kSource}, [&left = A, &right = B] {
      TnLaDblMat X = dense(something());
      TnLaDblMat Z = dense(something());
      EXPECT_FALSE(tnla_linearsolve(dense(left), dense(right), X, &Z));
      EXPECT_SAME_MATRIX(X, Matrix());
      EXPECT_SAME_MATRIX(Z, something());
    });
  }
}

TEST(DefaultSolve, OfATallSystemLeavesTheMismatchToTheDecomposition) {
  expect_asserts({kQr}, [] {
    TnLaDblMat X;
    TnLaDblMat Z = dense(something());
    EXPECT_FALSE(tnla_linearsolve(dense(identity(3)), TnLaDblMat(2, 2, 1.0), X, &Z));
    EXPECT_SAME_MATRIX(X, Matrix(3, 2));
    EXPECT_SAME_MATRIX(Z, Matrix());
    EXPECT_TRUE(tnla_linearsolve(dense({1, 1, {2}}), dense({1, 1, {3}}), X));
    EXPECT_SAME_MATRIX(X, Matrix(1, 1, {1.5}));
  });
  expect_asserts({kQr}, [] {
    TnLaDblMat X;
    EXPECT_TRUE(tnla_linearsolve(dense({1, 1, {2}}), dense({2, 1, {3, 4}}), X));
    EXPECT_SAME_MATRIX(X, Matrix(1, 1, {1.5}));
  });
}

// --- The solve with a tolerance -------------------------------------------------------------------------
// (Its results are tested with the decomposition that computes them.)

void expect_refused(const Matrix& A, const Matrix& B, double tol) {
  SCOPED_TRACE(testing::Message() << A.m << " x " << A.n << ", B " << B.m << " x " << B.n << ", tol "
                                  << tol);
  expect_asserts({kSource, kSource}, [&] {
    TnLaDblMat X = dense(something());
    TnLaDblMat Z = dense(something());
    int rank = kNotWritten;
    tnla_linearsolve(dense(A), dense(B), X, tol, &rank, &Z);
    EXPECT_EQ(rank, -1);
    EXPECT_SAME_MATRIX(X, Matrix());
    EXPECT_SAME_MATRIX(Z, something());
    X = dense(something());
    tnla_linearsolve(dense(A), dense(B), X, tol);
    EXPECT_SAME_MATRIX(X, Matrix());
  });
}

TEST(ToleranceSolve, AssertsAPositiveTolerance) {
  for (const double tol : {0.0, -0.0, -kTiny, -1.0, -kInf}) expect_refused(identity(2), identity(2), tol);
}

TEST(ToleranceSolve, AssertsEqualNumbersOfRows) {
  expect_refused(identity(2), identity(3), 1e-13);
  expect_refused(identity(3), identity(2), 1e-13);
}

TEST(ToleranceSolve, AssertsThatNeitherIsEmpty) {
  expect_refused(Matrix(0, 0), Matrix(0, 0), 1e-13);
  expect_refused(Matrix(0, 2), Matrix(0, 2), 1e-13);
  expect_refused(Matrix(2, 0), Matrix(2, 2), 1e-13);
  expect_refused(Matrix(2, 2), Matrix(2, 0), 1e-13);
}

TEST(ToleranceSolve, AssertsOnceWhateverIsWrong) { expect_refused(Matrix(0, 2), Matrix(3, 0), kNaN); }

TEST(ToleranceSolve, TakesTheSmallestToleranceAndNaN) {
  const AssertionLog log;
  for (const double tol : {kTiny, kNaN, kInf}) {
    TnLaDblMat X;
    tnla_linearsolve(dense({1, 1, {2}}), dense({1, 1, {3}}), X, tol);
    EXPECT_SAME_MATRIX(X, Matrix(1, 1, {std::isinf(tol) ? 0.0 : 1.5}));
  }
  EXPECT_EQ(log.count(), 0u);
}

TEST(ToleranceSolve, XMayBeA) {
  Random random(4);
  for (const auto& [m, n] : {std::pair<std::size_t, std::size_t>{4, 4}, {5, 3}, {2, 6}}) {
    const Matrix A = random_matrix(random, m, n);
    const Matrix B = random_matrix(random, m, 2);
    TnLaDblMat X = dense(A);
    tnla_linearsolve(X, dense(B), X, 1e-13);
    EXPECT_SAME_MATRIX(X, RankRevealing(A, 1e-13).solve(B));
  }
}

// Every way to leave the optional results out; the solution is the same.
TEST(ToleranceSolve, OptionalResultsMayBeLeftOut) {
  const TnLaDblMat A = dense(diagonal({-2, -4}));
  TnLaDblMat X;
  TnLaDblMat Z;
  int rank = kNotWritten;
  tnla_linearsolve(A, A, X, 1e-13, nullptr, nullptr);
  EXPECT_EQ(plain(X).a, identity(2).a);
  tnla_linearsolve(A, A, X, 1e-13, nullptr, &Z);
  tnla_linearsolve(A, A, X, 1e-13, &rank, nullptr);
  tnla_linearsolve<TnLaDblMat>(A, A, X, 1e-13, &rank);
  EXPECT_EQ(rank, 2);
  EXPECT_TRUE(tnla_linearsolve(A, A, X, nullptr));
  EXPECT_TRUE(tnla_linearsolve<TnLaDblMat>(A, A, X, nullptr));
  EXPECT_TRUE(tnla_linearsolve<TnLaDblMat>(A, A, X));
  EXPECT_EQ(plain(X).a, identity(2).a);
}

// Not allowed; the address sanitizer sees that it touches nothing but its own memory.
TEST(MisusedSolve, WithItsRightSideAsResultStaysInItsMemory) {
  Random random(77);
  for (std::size_t m = 1; m <= 7; ++m) {
    for (std::size_t n = 1; n <= 7; ++n) {
      const TnLaDblMat A(random.vector(m * n).data(), m, n);
      TnLaDblMat by_tolerance(m, 2, 1.0);
      TnLaDblMat by_default = by_tolerance;
      tnla_linearsolve(A, by_tolerance, by_tolerance, 1e-13);
      tnla_linearsolve(A, by_default, by_default);
      EXPECT_EQ(by_tolerance.n_rows(), A.n_cols());
      EXPECT_EQ(by_default.n_rows(), A.n_cols());
      EXPECT_EQ(by_tolerance.array().size(), A.n_cols() * 2);
    }
  }
}

// --- Small types ----------------------------------------------------------------------------------------

template <std::size_t N>
void expect_small_default_solve(const Matrix& A, const Matrix& B, const Matrix& before) {
  using M = Small<N>;
  const Solution expected = solution(A, B, before);
  const M matrix = as<M>(A);
  const M right_side = as<M>(B);
  const AssertionLog log;
  M X = as<M>(before);
  EXPECT_EQ(tnla_linearsolve(matrix, right_side, X), expected.full_rank);
  EXPECT_SAME_MATRIX(X, expected.X);
  EXPECT_EQ(tnla_linearsolve(matrix, right_side, X, nullptr), expected.full_rank);
  EXPECT_EQ(log.count(), 0u);
  M Z = as<M>(before);
  EXPECT_EQ(tnla_linearsolve(matrix, right_side, X, &Z), expected.full_rank);
  EXPECT_EQ(log.files(), Files({kSmallMat, kSmallMat}));  // it cannot become 0 x 0
  EXPECT_SAME_MATRIX(Z, before);
  X = matrix;
  EXPECT_EQ(tnla_linearsolve(X, right_side, X), expected.full_rank);
  EXPECT_SAME_MATRIX(X, expected.full_rank ? expected.X : A);
}

TEST(SmallSolve, IsThatOfTheDenseMatrix) {
  for_all_small_sizes([](auto size) {
    constexpr std::size_t n = size;
    SCOPED_TRACE(n);
    Random random(n);
    const Matrix before = random_matrix(random, n, n);
    const Matrix B = random_matrix(random, n, n);
    const Matrix any_B = any_matrix(random, n, n);
    expect_small_default_solve<n>(random_matrix(random, n, n), B, before);
    expect_small_default_solve<n>(any_matrix(random, n, n), any_B, before);
    expect_small_default_solve<n>(Matrix(n, n), B, before);
    expect_small_default_solve<n>(scaled(identity(n), 1e-15), B, before);
  });
}

template <std::size_t N>
void expect_small_refused() {
  using M = Small<N>;
  const Matrix before = scaled(identity(N), 5.0);
  expect_asserts({kSource, kSmallMat, kSmallMat}, [&before] {  // it cannot become 0 x 0 either
    const M I = as<M>(identity(N));
    M X = as<M>(before);
    M Z = X;
    int rank = kNotWritten;
    tnla_linearsolve(I, I, X, 0.0, &rank, &Z);
    EXPECT_EQ(rank, -1);
    EXPECT_SAME_MATRIX(X, before);
    EXPECT_SAME_MATRIX(Z, before);
  });
}

TEST(SmallSolve, ARefusedToleranceLeavesX) {
  for_all_small_sizes([](auto size) { expect_small_refused<size>(); });
}

// --- Inverses -------------------------------------------------------------------------------------------

void expect_default_inverse(const Matrix& A) {
  SCOPED_TRACE(testing::Message() << A.m << " x " << A.n);
  const AssertionLog log;
  const Solution expected = solution(A, identity(A.m), something());
  TnLaDblMat inverse = dense(something());
  EXPECT_EQ(tnla_inverse(dense(A), inverse), expected.full_rank);
  EXPECT_SAME_MATRIX(inverse, expected.X);
  TnLaDblMat in_place = dense(A);
  EXPECT_EQ(tnla_inverse(in_place, in_place), expected.full_rank);
  EXPECT_SAME_MATRIX(in_place, solution(A, identity(A.m), A).X);
  EXPECT_EQ(log.count(), 0u);
}

void expect_inverse(const Matrix& A, double tol) {
  SCOPED_TRACE(testing::Message() << A.m << " x " << A.n << ", tol " << tol);
  const AssertionLog log;
  const RankRevealing decomposition(A, tol);
  const Matrix expected = decomposition.solve(identity(A.m));
  TnLaDblMat inverse = dense(something());
  int rank = kNotWritten;
  tnla_inverse(dense(A), inverse, tol, &rank);
  EXPECT_EQ(rank, static_cast<int>(decomposition.rank));
  EXPECT_SAME_MATRIX(inverse, expected);
  TnLaDblMat in_place = dense(A);
  tnla_inverse(in_place, in_place, tol);
  EXPECT_SAME_MATRIX(in_place, expected);
  tnla_inverse(dense(A), inverse, tol, nullptr);
  EXPECT_SAME_MATRIX(inverse, expected);
  EXPECT_EQ(log.count(), 0u);
}

// The default inverse, or else the pseudo-inverse of tolerance 1e-20.
Matrix inverted(const Matrix& A) {
  const Solution tried = solution(A, identity(A.m), A);
  return tried.full_rank ? tried.X : RankRevealing(A, 1e-20).solve(identity(A.m));
}

void expect_invert(const Matrix& A) {
  SCOPED_TRACE(testing::Message() << A.m << " x " << A.n);
  const AssertionLog log;
  const TnLaDblMat original = dense(A);
  EXPECT_SAME_MATRIX(original.inv(), inverted(A));
  EXPECT_SAME_MATRIX(original, A);
  TnLaDblMat in_place = original;
  in_place.invert();
  EXPECT_SAME_MATRIX(in_place, inverted(A));
  EXPECT_EQ(log.count(), 0u);
}

TEST(Inverse, FollowsItsDefinitionForAllShapes) {
  Random random(5);
  for (std::size_t m = 1; m <= 8; ++m) {
    for (std::size_t n = 1; n <= 8; ++n) {
      const Matrix cases[] = {random_matrix(random, m, n), any_matrix(random, m, n),
                              random_of_rank(random, m, n, 1), Matrix(m, n)};
      for (const Matrix& A : cases) {
        expect_default_inverse(A);
        expect_inverse(A, 1e-10);
        expect_invert(A);
      }
    }
  }
}

TEST(Inverse, FollowsItsDefinitionForAllOrders) {
  Random random(12);
  for (std::size_t n = 9; n <= 15; ++n) {
    for (const Matrix& A : {random_matrix(random, n, n), any_matrix(random, n, n), Matrix(n, n),
                            random_of_rank(random, n, n, n / 2)}) {
      expect_default_inverse(A);
      expect_invert(A);
    }
  }
}

TEST(Inverse, OfPowersOfTwoIsExact) {
  EXPECT_EQ(plain(dense(diagonal({2, 4, -0.5})).inv()).a, diagonal({0.5, 0.25, -2}).a);
}

// The residual of each column is a few n roundings of numbers of the size of A and its inverse.
TEST(Inverse, TimesTheMatrixIsTheIdentity) {
  Random random(6);
  for (const std::size_t n : {2u, 5u, 12u, 30u}) {
    const Matrix A = random_matrix(random, n, n);
    const Matrix inverse = plain(dense(A).inv());
    const double size = largest_difference(inverse, Matrix(n, n));
    const double tolerance = 16 * static_cast<double>(n * n) * 0x1p-53 * size;
    EXPECT_LT(largest_difference(product(A, inverse), identity(n)), tolerance);
  }
}

TEST(Inverse, OfASingularMatrixIsThePseudoInverse) {
  EXPECT_SAME_MATRIX(dense(diagonal({4, 0})).inv(), diagonal({0.25, 0}));
  TnLaDblMat left_alone = dense(diagonal({4, 0}));
  EXPECT_FALSE(tnla_inverse(dense(diagonal({4, 0})), left_alone));
  EXPECT_SAME_MATRIX(left_alone, diagonal({4, 0}));
}

// Far apart, so that the default inverse says false and the fallback has to decide.
TEST(Inverse, InvertFallsBackToTheSmallTolerance) {
  expect_invert(diagonal({1, 1e-20}));
  expect_invert(diagonal({1, ulp_below(1e-20)}));
  EXPECT_EQ(RankRevealing(diagonal({1, 1e-20}), 1e-20).rank, 2u);
  EXPECT_EQ(dense(diagonal({1, 1e-20})).inv()(1, 1), 1.0 / 1e-20);
  EXPECT_EQ(dense(diagonal({1, ulp_below(1e-20)})).inv()(1, 1), 0.0);
}

TEST(Inverse, OfAnEmptyMatrixIsAssertedIfThereIsATolerance) {
  for (const Matrix& A : {Matrix(0, 0), Matrix(0, 3), Matrix(3, 0)}) {
    expect_asserts({kSource}, [&A] {
      TnLaDblMat inverse = dense(something());
      int rank = kNotWritten;
      tnla_inverse(dense(A), inverse, 1e-10, &rank);
      EXPECT_EQ(rank, kNotWritten);
      EXPECT_SAME_MATRIX(inverse, Matrix());
    });
  }
}

TEST(Inverse, WithoutAPositiveToleranceIsRefused) {
  expect_asserts({kSource}, [] {
    TnLaDblMat inverse = dense(something());
    int rank = kNotWritten;
    tnla_inverse(dense(identity(2)), inverse, 0.0, &rank);
    EXPECT_EQ(rank, -1);
    EXPECT_SAME_MATRIX(inverse, Matrix());
  });
}

TEST(Inverse, OfAnEmptyMatrixByDefault) {
  expect_asserts({}, [] {
    TnLaDblMat inverse = dense(something());
    EXPECT_TRUE(tnla_inverse(TnLaDblMat(), inverse));
    EXPECT_SAME_MATRIX(inverse, Matrix());
    EXPECT_TRUE(tnla_inverse(TnLaDblMat(3, 0, 0.0), inverse));
    EXPECT_SAME_MATRIX(inverse, Matrix(0, 3));
    EXPECT_SAME_MATRIX(TnLaDblMat(3, 0, 0.0).inv(), Matrix(0, 3));
  });
  expect_asserts({kSource}, [] {
    TnLaDblMat inverse = dense(something());
    EXPECT_FALSE(tnla_inverse(TnLaDblMat(0, 3, 0.0), inverse));
    EXPECT_SAME_MATRIX(inverse, Matrix());
  });
  // The default inverse and the fallback both refuse it.
  expect_asserts({kSource, kSource}, [] { EXPECT_SAME_MATRIX(TnLaDblMat(0, 3, 0.0).inv(), Matrix()); });
}

// --- Determinants ---------------------------------------------------------------------------------------

TEST(Determinant, FollowsItsDefinition) {
  Random random(7);
  for (std::size_t n = 2; n <= 14; ++n) {
    for (const Matrix& A : {random_matrix(random, n, n), any_matrix(random, n, n), identity(n),
                            random_of_rank(random, n, n, n - 1)}) {
      EXPECT_SAME(dense(A).det(), reference::determinant(A)) << n;
    }
  }
}

TEST(Determinant, OfKnownMatrices) {
  EXPECT_SAME(dense(identity(2)).det(), 1.0);
  EXPECT_SAME(dense(identity(3)).det(), 1.0);
  EXPECT_SAME(dense({2, 2, {0, 1, 1, 0}}).det(), -1.0);
  EXPECT_SAME(dense(diagonal({2, 4, -8})).det(), -64.0);
  EXPECT_SAME(dense({2, 2, {3, 4, 0, 5}}).det(), 15.0);  // H (0, 5) = (-4, 3): all exact
}

TEST(Determinant, OfASingleElementIsTheElement) {
  for (const double x : special_values()) EXPECT_SAME(TnLaDblMat(&x, 1, 1).det(), x);
}

TEST(Determinant, WithoutASquareIsZero) {
  const AssertionLog log;
  EXPECT_SAME(TnLaDblMat().det(), 0.0);
  for (const auto& [m, n] :
       {std::pair<std::size_t, std::size_t>{2, 3}, {3, 2}, {1, 2}, {2, 1}, {0, 1}, {1, 0}}) {
    EXPECT_SAME(TnLaDblMat(m, n, 1.0).det(), 0.0);
  }
  EXPECT_EQ(log.count(), 0u);
}

TEST(Determinant, WithoutFullRankIsExactlyZero) {
  EXPECT_SAME(dense(diagonal({1e11, 1})).det(), 0.0);
  EXPECT_SAME(dense(diagonal({1, 1e10})).det(), 1e10);
  EXPECT_SAME(dense(diagonal({1, ulp_above(1e10)})).det(), 0.0);
  EXPECT_SAME(dense(diagonal({1, 0})).det(), 0.0);
  EXPECT_SAME(dense(diagonal({-1, 0})).det(), 0.0);
}

}  // namespace
