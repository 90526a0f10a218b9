// SPDX-License-Identifier: MIT

// In which order the eigenvalues come, and what depends on the number of a sweep.

#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <vector>

#include "reference/jacobi_reference.h"
#include "support/bits.h"
#include "support/decomposition_types.h"
#include "support/eigenvector_basis.h"
#include "support/values.h"

namespace {

using reference::diagonal;
using reference::Jacobi;
using reference::JacobiRule;

// --- The order ------------------------------------------------------------------------------------------

// The columns of the basis are unit vectors: says which.
std::vector<std::size_t> order_of(const std::vector<double>& on_diagonal) {
  expect_basis(diagonal(on_diagonal));
  const Basis actual = basis(diagonal(on_diagonal));
  EXPECT_TRUE(actual.converged);
  std::vector<std::size_t> order;
  for (std::size_t k = 0; k < on_diagonal.size(); ++k) {
    for (std::size_t i = 0; i < on_diagonal.size(); ++i) {
      if (actual.vectors(i, k) != 0.0) order.push_back(i);
    }
    EXPECT_SAME(actual.values[k], on_diagonal[order[k]]);
  }
  return order;
}

using Order = std::vector<std::size_t>;

TEST(EigenvectorOrder, OfADiagonalMatrixIsDecreasing) {
  EXPECT_EQ(order_of({9, 4, 1, -3}), (Order{0, 1, 2, 3}));
  EXPECT_EQ(order_of({-3, 1, 4, 9}), (Order{3, 2, 1, 0}));
  EXPECT_EQ(order_of({2, 9, 4, -1, 7}), (Order{1, 4, 2, 0, 3}));
}

// Each place takes the first of the largest values left, in exchange for its own.
TEST(EigenvectorOrder, OfEqualValuesTheFirstIsTaken) {
  EXPECT_EQ(order_of({2, 2, 2}), (Order{0, 1, 2}));
  EXPECT_EQ(order_of({1, 2, 2}), (Order{1, 2, 0}));
  EXPECT_EQ(order_of({0.0, -0.0, 0.0}), (Order{0, 1, 2}));
  EXPECT_EQ(order_of({-0.0, 0.0}), (Order{0, 1}));
  EXPECT_EQ(order_of({1, 2, 1, 2}), (Order{1, 3, 2, 0}));  // the exchange took the first 1 to the end
}

TEST(EigenvectorOrder, ANaNIsNeverLarger) {
  EXPECT_EQ(order_of({1, kNaN, 2}), (Order{2, 1, 0}));
  EXPECT_EQ(order_of({kNaN, 1, 2}), (Order{0, 2, 1}));
  EXPECT_EQ(order_of({-kInf, 1, kInf}), (Order{2, 1, 0}));
}

// --- The sweeps -----------------------------------------------------------------------------------------

bool tells_from_the_rule(const Matrix& A, JacobiRule other) {
  const Jacobi by_rule(A);
  const Jacobi by_other(A, other);
  return by_rule.V.a != by_other.V.a || by_rule.d != by_other.d || by_rule.converged != by_other.converged;
}

// At the last sweep with a threshold, and at the first without, some elements lie below it.
TEST(EigenvectorSweeps, TheFirstThreeHaveAThreshold) {
  Random random(11);
  for (const std::size_t n : {12u, 20u}) {
    const Matrix A = random_symmetric(random, n);
    EXPECT_TRUE(tells_from_the_rule(A, {50, 2, 4}));
    EXPECT_TRUE(tells_from_the_rule(A, {50, 4, 4}));
    expect_basis(A);
  }
}

double first_threshold(const Matrix& A) {
  double sum = 0.0;
  for (std::size_t p = 0; p < A.m; ++p) {
    for (std::size_t q = p + 1; q < A.m; ++q) sum = sum + std::fabs(A(p, q));
  }
  return (sum * 0.2) / static_cast<double>(A.m * A.m);
}

// An element equal to the threshold, to the last bit, is left alone; the next larger one is not.  The
// threshold is a number of its own only if the sum is taken, and divided, as it is here.
TEST(EigenvectorSweeps, AnElementEqualToTheThresholdIsLeftAlone) {
  Random random(13);
  for (const std::size_t n : {3u, 5u, 6u, 7u}) {
    for (int i = 0; i < 50; ++i) {
      Matrix A = random_symmetric(random, n);
      for (int k = 0; k < 20; ++k) A(0, 1) = first_threshold(A);  // of which it is a part: this converges
      EXPECT_SAME(A(0, 1), first_threshold(A));
      expect_basis(A);
      A(0, 1) = ulp_above(A(0, 1));
      EXPECT_GT(A(0, 1), first_threshold(A));
      expect_basis(A);
    }
  }
}

// Below a power of two numbers lie closer: what is lost beside the magnitude of h need not be lost beside
// h, which is negative here.  The two formulas for the tangent differ in the last digits.
TEST(EigenvectorSweeps, AnElementIsLostBesideAMagnitude) {
  Random random(16);
  for (int i = 0; i < 50; ++i) {
    const double element = (1.5 + 0.49 * random.uniform()) * 0x1p-54 / 100.0;
    expect_basis({2, 2, {2, element, element, 1}});
    expect_basis({2, 2, {1, element, element, 2}});
  }
}

// An element that takes 45 degrees with a negative sign: half of -0 is no angle below 0.
TEST(EigenvectorSweeps, EqualDiagonalElementsTurnForward) {
  for (const double element : {1.0, -1.0}) {
    const Basis actual = basis({2, 2, {3, element, element, 3}});
    EXPECT_EQ(actual.values, (std::vector<double>{4, 2}));
    expect_basis({2, 2, {3, element, element, 3}});
  }
}

// Five equal diagonal elements, and others that are lost when they are added to them: every rotation is by
// 45 degrees, and the diagonal stays.  What a sweep zeroes the next rotation fills again, so that 5 percent
// are gone after a sweep; it ends when a hundred times an element are lost too.  The factor sets the
// number of sweeps.
Matrix slowly_converging(int factor) {
  const std::vector<double> above = {166, 184, 140, 408, 183, 116, 1000, 381, 116, 0};
  Matrix A = diagonal(std::vector<double>(5, 1.5));
  std::size_t k = 0;
  for (std::size_t q = 1; q < 5; ++q) {
    for (std::size_t p = 0; p < q; ++p) A(p, q) = -above[k++] * factor * 0x1p-68;
  }
  return A;
}

int sweeps_to_converge(const Matrix& A) { return Jacobi(A, {200, 3, 4}).n_sweeps; }

// The fourth sweep turns elements that are lost beside the diagonal; the fifth meets some more.
TEST(EigenvectorSweeps, FromTheFifthOnNegligibleElementsAreZeroed) {
  for (const int factor : {1, 2}) {
    const Matrix A = slowly_converging(factor);
    EXPECT_TRUE(tells_from_the_rule(A, {50, 3, 3}));
    EXPECT_TRUE(tells_from_the_rule(A, {50, 3, 5}));
    expect_basis(A);
  }
}

// (3)
TEST(EigenvectorSweeps, FortyNineAreEnough) {
  ASSERT_EQ(sweeps_to_converge(slowly_converging(70)), 48);
  ASSERT_EQ(sweeps_to_converge(slowly_converging(74)), 49);
  for (const int factor : {70, 74}) {
    EXPECT_TRUE(basis(slowly_converging(factor)).converged);
    expect_basis(slowly_converging(factor));
  }
}

// (3)
TEST(EigenvectorSweeps, TheFiftiethIsTooLateAlthoughItZeroesAll) {
  const Matrix A = slowly_converging(77);
  ASSERT_EQ(sweeps_to_converge(A), 50);
  const Basis actual = basis(A);
  EXPECT_FALSE(actual.converged);
  for (std::size_t q = 1; q < 5; ++q) {
    for (std::size_t p = 0; p < q; ++p) EXPECT_EQ(actual.a(p, q), 0.0);
  }
  expect_basis(A);
  ASSERT_EQ(sweeps_to_converge(slowly_converging(82)), 51);
  expect_basis(slowly_converging(82));
}

// Some units in the last place of zero, where rounding undoes what a rotation does: each sweep reverses
// the diagonal and adds a rotation to the basis, for ever.
TEST(EigenvectorSweeps, EndUnsortedAfterFifty) {
  const Matrix A = scaled({3, 3, {1, 0, 0, 0, 0, 0, -1, -1, 2}}, kTiny);
  EXPECT_FALSE(Jacobi(A, {1000, 3, 4}).converged);
  for (const int sweeps : {49, 51}) EXPECT_TRUE(tells_from_the_rule(A, {sweeps, 3, 4}));
  const Basis actual = basis(A);
  EXPECT_FALSE(actual.converged);
  EXPECT_EQ(actual.values, (std::vector<double>{0, kTiny, 2 * kTiny}));
  expect_basis(A);
}

TEST(EigenvectorSweeps, ANaNAboveTheDiagonalIsFalse) {
  Random random(14);
  for (std::size_t n = 2; n <= 9; ++n) {
    for (std::size_t q = 1; q < n; ++q) {
      for (std::size_t p = 0; p < q; ++p) {
        Matrix A = random_symmetric(random, n);
        A(p, q) = kNaN;
        EXPECT_FALSE(basis(A).converged);
        expect_basis(A);
      }
    }
  }
}

// A NaN with nothing beside it turns nothing, but keeps the sweeps going, without a threshold.  The sweeps
// that zero what is negligible then meet a diagonal that still changes.
TEST(EigenvectorSweeps, ABlockBesideANaNIsTurnedAllTheSame) {
  Random random(15);
  for (std::size_t n = 2; n <= 16; ++n) {
    for (const double ratio : {1.0, 0.3, 0.01, 3.0, 100.0}) {
      const Matrix block = graded(random_symmetric(random, n), ratio);
      Matrix A = reference::resized(block, n + 2, n + 2);
      A(n, n + 1) = kNaN;
      const Basis actual = basis(A);
      EXPECT_FALSE(actual.converged);
      EXPECT_FALSE(std::isnan(actual.values[0]));
      for (std::size_t q = 1; q < n; ++q) EXPECT_EQ(actual.a(q - 1, q), 0.0);
      expect_basis(A);
    }
  }
}

// The NaN lets the fifth sweep be the second that turns anything: the diagonal still changes while it goes
// on.  Row 2 is coupled by elements that are about to be lost.
TEST(EigenvectorSweeps, WhatIsNegligibleIsSaidByTheDiagonalOfTheMoment) {
  Random random(17);
  for (int i = 0; i < 400; ++i) {
    Matrix A = reference::resized(random_symmetric(random, 4), 6, 6);
    const double weak = std::ldexp(1.0, -45 - static_cast<int>(random.below(20)));
    A(0, 2) *= weak;
    A(1, 2) *= weak;
    A(2, 3) *= weak;
    A(4, 5) = kNaN;
    expect_basis(A);
  }
}

// An infinite element can be turned away like any other.
TEST(EigenvectorSweeps, AnInfinityMayConverge) {
  EXPECT_EQ(basis({2, 2, {kInf, 1, 1, 2}}).values, (std::vector<double>{kInf, 2}));
  EXPECT_EQ(basis({2, 2, {1, kInf, kInf, 1}}).values, (std::vector<double>{kInf, -kInf}));
  EXPECT_TRUE(basis({2, 2, {kInf, 1, 1, 2}}).converged);
  EXPECT_TRUE(basis({2, 2, {1, kInf, kInf, 1}}).converged);
}

}  // namespace
