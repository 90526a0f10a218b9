// SPDX-License-Identifier: MIT

#include <gtest/gtest.h>

#include <optional>
#include <type_traits>
#include <vector>

#include "reference/decomposition_reference.h"
#include "support/assertions.h"
#include "support/bits.h"
#include "support/decomposition_types.h"
#include "support/values.h"
#include "tnlaqrdecompo_i.h"

namespace {

using reference::diagonal;
using reference::identity;
using reference::Qr;
using reference::resized;
using Decomposition = TnLaTQRDecompo<TnLaDblMat>;

constexpr char kSource[] = "src/tnlaqrdecompo.cpp";

static_assert(std::has_virtual_destructor_v<Decomposition>);
static_assert(!std::is_copy_constructible_v<Decomposition>);
static_assert(!std::is_copy_assignable_v<Decomposition>);

// --- Against the definition -----------------------------------------------------------------------------

// Each reflection must turn a vector as the reference's does.
template <class M>
void expect_reflections(const TnLaTQRDecompo<M>& qr, const Qr& expected) {
  ASSERT_EQ(qr.n_trafo(), static_cast<int>(expected.reflections.size()));
  Random random(17);
  for (int i = 0; i < qr.n_trafo(); ++i) {
    std::vector<double> w = random.vector(expected.R.m);
    std::vector<double> expected_w = w;
    expected.reflections[static_cast<std::size_t>(i)].apply(expected_w.data(), 1);
    qr.T(i).apply(w.data(), 1);
    EXPECT_SAME_ARRAY(w.size(), w.data(), expected_w.data());
  }
}

// X holds `before` when it is passed; it keeps of that what overlaps where the solve fails.
template <class M>
void expect_solves(const TnLaTQRDecompo<M>& qr, const Qr& expected, const Matrix& B, const Matrix& before) {
  const std::optional<Matrix> solution = expected.solve(B);
  const M right_side = as<M>(B);
  M X = as<M>(before);
  EXPECT_EQ(qr.solve(right_side, X), solution.has_value());
  EXPECT_SAME_MATRIX(X, solution.value_or(resized(before, expected.R.n, B.n)));
  EXPECT_SAME_MATRIX(right_side, B);
}

template <class M>
void expect_decomposes(const Matrix& A, const std::vector<Matrix>& right_sides, const Matrix& before) {
  SCOPED_TRACE(testing::Message() << A.m << " x " << A.n);
  const AssertionLog log;
  const Qr expected(A);
  const M original = as<M>(A);
  const TnLaTQRDecompo<M> qr(original);
  EXPECT_SAME_MATRIX(qr.R(), expected.R);
  EXPECT_SAME_MATRIX(original, A);
  EXPECT_EQ(qr.full_rank(), expected.full_rank);
  expect_reflections(qr, expected);
  for (const Matrix& B : right_sides) expect_solves(qr, expected, B, before);
  for (const Matrix& B : right_sides) expect_solves(qr, expected, B, before);
  EXPECT_EQ(log.count(), 0u);
}

void expect_dense_decomposes(Random& random, const Matrix& A) {
  const std::size_t m = A.m;
  const std::vector<Matrix> right_sides = {random_matrix(random, m, 3), random_matrix(random, m, 1),
                                           Matrix(m, 0), any_matrix(random, m, 2)};
  const std::size_t rows_before = random.below(5);
  expect_decomposes<TnLaDblMat>(A, right_sides, random_matrix(random, rows_before, 2));
}

TEST(QrDecomposition, FollowsItsDefinitionForAllShapes) {
  Random random(1);
  for (std::size_t m = 0; m <= 12; ++m) {
    for (std::size_t n = 0; n <= 12; ++n) {
      expect_dense_decomposes(random, random_matrix(random, m, n));
      expect_dense_decomposes(random, any_matrix(random, m, n));
    }
  }
}

TEST(QrDecomposition, FollowsItsDefinitionForLargerShapes) {
  Random random(2);
  for (const auto& [m, n] : {std::pair<std::size_t, std::size_t>{40, 17}, {17, 40}, {33, 33}, {40, 1}}) {
    expect_dense_decomposes(random, random_matrix(random, m, n));
  }
}

// Many panels, and many right-hand sides.
TEST(QrDecomposition, FollowsItsDefinitionForLargeShapes) {
  Random random(9);
  for (const auto& [m, n] :
       {std::pair<std::size_t, std::size_t>{130, 130}, {201, 77}, {77, 90}, {600, 5}}) {
    const std::vector<Matrix> right_sides = {random_matrix(random, m, 1), random_matrix(random, m, 45),
                                             any_matrix(random, m, 7)};
    expect_decomposes<TnLaDblMat>(random_matrix(random, m, n), right_sides, Matrix(2, 2));
    expect_decomposes<TnLaDblMat>(any_matrix(random, m, n), right_sides, Matrix(2, 2));
  }
}

// Every step turns and skips columns: with unit vectors most sums are exactly zero.
TEST(QrDecomposition, FollowsItsDefinitionForUnitVectors) {
  Random random(10);
  for (std::size_t n = 2; n <= 60; n += 1 + n / 8) {
    Matrix A = identity(n);
    for (std::size_t round = 0; round < n; ++round) {
      reference::swap_cols(A, random.below(n), random.below(n));
      A(random.below(n), random.below(n)) = round % 3 == 0 ? -1.0 : -0.0;
    }
    expect_decomposes<TnLaDblMat>(A, {identity(n), random_matrix(random, n, 3)}, Matrix(2, 2));
  }
}

TEST(QrDecomposition, FollowsItsDefinitionForDependentColumns) {
  Random random(3);
  for (std::size_t n = 2; n <= 9; ++n) {
    expect_dense_decomposes(random, random_of_rank(random, n + 2, n, n - 1));
    expect_dense_decomposes(random, Matrix(n + 1, n));
  }
}

TEST(QrDecomposition, OfASmallMatrixIsThatOfTheDenseOne) {
  for_all_small_sizes([](auto size) {
    constexpr std::size_t n = size;
    Random random(n);
    for (int round = 0; round < 6; ++round) {
      const Matrix A = round < 3 ? random_matrix(random, n, n) : any_matrix(random, n, n);
      const std::vector<Matrix> right_sides = {random_matrix(random, n, n), any_matrix(random, n, n)};
      const Matrix before = random_matrix(random, n, n);
      expect_decomposes<Small<n>>(A, right_sides, before);
      expect_decomposes<TnLaDblMat>(A, right_sides, before);
    }
  });
}

TEST(QrDecomposition, OfASmallMatrixHasOneReflectionLessThanColumns) {
  for_all_small_sizes([](auto size) {
    const TnLaTQRDecompo<Small<size>> qr(as<Small<size>>(identity(size)));
    EXPECT_EQ(qr.n_trafo(), static_cast<int>(size) - 1);
    EXPECT_TRUE(qr.full_rank());
  });
}

// --- Known cases ----------------------------------------------------------------------------------------

TEST(QrDecomposition, OfTheIdentityTurnsAllButTheLastColumn) {
  const Decomposition qr(dense(identity(2)));
  EXPECT_EQ(qr.n_trafo(), 1);
  EXPECT_TRUE(qr.full_rank());
  EXPECT_SAME_MATRIX(qr.R(), diagonal({-1, 1}));
}

TEST(QrDecomposition, OfAnEmptyMatrixIsOfFullRank) {
  for (const auto& [m, n] : {std::pair<std::size_t, std::size_t>{0, 0}, {3, 0}, {0, 3}}) {
    const Decomposition qr(TnLaDblMat(m, n, 0.0));
    EXPECT_TRUE(qr.full_rank());
    EXPECT_EQ(qr.n_trafo(), 0);
    EXPECT_SAME_MATRIX(qr.R(), Matrix(m, n));
  }
}

TEST(QrDecomposition, HasAReflectionForEachColumnWithRowsBelowItsDiagonal) {
  const auto n_trafo = [](std::size_t m, std::size_t n) {
    return Decomposition(TnLaDblMat(m, n, 1.0)).n_trafo();
  };
  EXPECT_EQ(n_trafo(1, 1), 0);
  EXPECT_EQ(n_trafo(1, 3), 0);
  EXPECT_EQ(n_trafo(2, 1), 1);
  EXPECT_EQ(n_trafo(3, 2), 2);
  EXPECT_EQ(n_trafo(3, 3), 2);
  EXPECT_EQ(n_trafo(2, 3), 1);
  EXPECT_EQ(n_trafo(4, 3), 3);
}

// H (3, 4) = (-5, 0) and H (6, 8) = (-10, 0): exact with these numbers.
TEST(QrDecomposition, SolvesAKnownSystem) {
  const Decomposition qr(dense({2, 1, {3, 4}}));
  TnLaDblMat X;
  EXPECT_TRUE(qr.solve(dense({2, 2, {3, 4, 6, 8}}), X));
  EXPECT_SAME_MATRIX(X, Matrix(1, 2, {1, 2}));
}

// A 3 x 2 system whose best solution is the mean in each unknown: rows (1,0), (1,0), (0,1).  The length
// sqrt(2) is rounded, so that the result is, by a few units in the last place.
TEST(QrDecomposition, SolvesInTheLeastSquaresSense) {
  const Decomposition qr(dense({3, 2, {1, 1, 0, 0, 0, 1}}));
  TnLaDblMat X;
  EXPECT_TRUE(qr.solve(dense({3, 1, {1, 3, 7}}), X));
  EXPECT_NEAR(X(0, 0), 2.0, 16 * 0x1p-52);
  EXPECT_NEAR(X(1, 0), 7.0, 32 * 0x1p-52);
}

// The residual is orthogonal to the columns of A.  Each of the n reflections adds an error of about m
// roundings to numbers of the size of A and B, which the product with A' sums up over m rows.
TEST(QrDecomposition, LeavesAResidualOrthogonalToTheColumns) {
  Random random(4);
  const Matrix A = random_matrix(random, 40, 17);
  const Matrix B = random_matrix(random, 40, 3);
  TnLaDblMat X;
  ASSERT_TRUE(Decomposition(dense(A)).solve(dense(B), X));
  const Matrix AX = product(A, plain(X));
  Matrix residual = B;
  for (std::size_t k = 0; k < B.a.size(); ++k) residual.a[k] -= AX.a[k];
  EXPECT_LT(largest_difference(product(transposed(A), residual), Matrix(17, 3)), 17 * 40 * 0x1p-52);
}

// --- The full-rank test ---------------------------------------------------------------------------------

bool has_full_rank(const std::vector<double>& entries) {
  return Decomposition(dense(diagonal(entries))).full_rank();
}

TEST(FullRank, SmallestEntryMayBeTheThreshold) {
  EXPECT_TRUE(has_full_rank({1e-20}));
  EXPECT_TRUE(has_full_rank({-1e-20}));
  EXPECT_FALSE(has_full_rank({ulp_below(1e-20)}));
  EXPECT_FALSE(has_full_rank({-ulp_below(1e-20)}));
  EXPECT_FALSE(has_full_rank({0.0}));
}

TEST(FullRank, SmallestEntryCountsWhereverItStands) {
  const double below = ulp_below(1e-20);
  EXPECT_TRUE(has_full_rank({1e-20, 1e-20, 1e-20}));
  EXPECT_FALSE(has_full_rank({below, 1e-20, 1e-20}));
  EXPECT_FALSE(has_full_rank({1e-20, below, 1e-20}));
  EXPECT_FALSE(has_full_rank({1e-20, 1e-20, below}));
}

TEST(FullRank, SpreadMayBeTheLargest) {
  EXPECT_TRUE(has_full_rank({1, 1e10}));
  EXPECT_FALSE(has_full_rank({1, ulp_above(1e10)}));
  EXPECT_TRUE(has_full_rank({1e10, 1}));
  EXPECT_FALSE(has_full_rank({1e11, 1}));
  EXPECT_FALSE(has_full_rank({1, 1e11}));
}

// Exact: powers of two and one entry in the last place, which no reflection touches.
TEST(FullRank, SpreadIsTakenOverAllEntries) {
  EXPECT_TRUE(has_full_rank({4, 1, 2, 1e10}));
  EXPECT_FALSE(has_full_rank({4, 1, 2, ulp_above(1e10)}));
  EXPECT_FALSE(has_full_rank({0x1p34, 1, 4}));
  EXPECT_TRUE(has_full_rank({0x1p33, 1, 4}));
  EXPECT_FALSE(has_full_rank({2, 0x1p34, 1}));
  EXPECT_TRUE(has_full_rank({2, 0x1p33, 1}));
}

// The quotient is rounded before it is compared; the product of the limit and the smallest entry would be
// rounded in another way.
TEST(FullRank, SpreadIsAQuotient) {
  int n_other_by_product = 0;
  Random random(8);
  for (int round = 0; round < 500; ++round) {
    const double smallest = 1.5 + 0.5 * random.uniform();
    double largest = 1e10 * smallest;
    if (round % 3 > 0) largest = round % 3 == 1 ? ulp_above(largest) : ulp_below(largest);
    const Decomposition qr(dense(diagonal({smallest, largest})));
    const double low = std::fabs(qr.R()(0, 0));
    const double high = qr.R()(1, 1);
    EXPECT_EQ(qr.full_rank(), high / low <= 1e10) << in_full(high) << " / " << in_full(low);
    n_other_by_product += (high / low <= 1e10) != (high <= 1e10 * low) ? 1 : 0;
  }
  EXPECT_GT(n_other_by_product, 0);
}

// The limit is the largest number whose quotient with 1e20, where the search for the smallest entry
// starts, is rounded to 1e10 at most.
TEST(FullRank, EntriesAllAboveTheStartOfTheMinimumFail) {
  double limit = 1e30;
  while (limit / 1e20 > 1e10) limit = ulp_below(limit);
  while (ulp_above(limit) / 1e20 <= 1e10) limit = ulp_above(limit);
  EXPECT_TRUE(has_full_rank({limit}));
  EXPECT_TRUE(has_full_rank({-limit}));
  EXPECT_FALSE(has_full_rank({ulp_above(limit)}));
  EXPECT_FALSE(has_full_rank({0x1p110, 0x1p110}));
}

TEST(FullRank, AnInfiniteEntryFails) { EXPECT_FALSE(has_full_rank({kInf})); }

TEST(FullRank, ANaNPassesAndReplacesWhatIsTooSmall) {
  EXPECT_TRUE(has_full_rank({kNaN}));
  EXPECT_TRUE(has_full_rank({1, kNaN}));
  EXPECT_TRUE(has_full_rank({1e-30, kNaN}));
  EXPECT_TRUE(has_full_rank({1e-15, kNaN}));
  EXPECT_TRUE(has_full_rank({0x1p110, kNaN}));
}

TEST(FullRank, LooksAtTheDiagonalOfRAlone) {
  // Columns (1, 0) and (1e15, 1): nearly parallel, but the diagonal is (-1, 1).
  EXPECT_TRUE(Decomposition(dense({2, 2, {1, 0, 1e15, 1}})).full_rank());
  // Wide matrices: the columns beyond the last row do not count.
  EXPECT_TRUE(Decomposition(dense({1, 2, {1, 0}})).full_rank());
  EXPECT_TRUE(Decomposition(dense({1, 2, {1, 1e20}})).full_rank());
  EXPECT_FALSE(Decomposition(dense({1, 2, {0, 1}})).full_rank());
  // Tall ones: the rows beyond the last column do not count.
  EXPECT_TRUE(Decomposition(dense({3, 2, {1, 0, 0, 0, 1, 0}})).full_rank());
  EXPECT_FALSE(Decomposition(dense({3, 2, {1, 0, 0, 1, 0, 0}})).full_rank());
}

// Of diag(1, ..., 1, last).
template <std::size_t N>
bool small_has_full_rank(double last) {
  std::vector<double> entries(N, 1.0);
  entries.back() = last;
  return TnLaTQRDecompo<Small<N>>(as<Small<N>>(diagonal(entries))).full_rank();
}

TEST(FullRank, OfSmallMatricesHasTheSameLimits) {
  for_all_small_sizes([](auto size) {
    EXPECT_EQ(small_has_full_rank<size>(1e-20), size == 1);
    EXPECT_FALSE(small_has_full_rank<size>(ulp_below(1e-20)));
    EXPECT_TRUE(small_has_full_rank<size>(1e10));
    EXPECT_EQ(small_has_full_rank<size>(ulp_above(1e10)), size == 1);
    EXPECT_TRUE(small_has_full_rank<size>(kNaN));
  });
}

// --- solve ----------------------------------------------------------------------------------------------

TEST(QrSolve, FailureOnlyResizesAndKeepsWhatOverlaps) {
  const Matrix before(3, 2, {1, 2, 3, 4, 5, 6});
  for (const Matrix& A :
       {Matrix(2, 4, {1, 2, 3, 5, 7, 8, 1, 0}), Matrix(4, 4), diagonal({1, 1, 1e11, 1})}) {
    TnLaDblMat X = dense(before);
    EXPECT_FALSE(Decomposition(dense(A)).solve(TnLaDblMat(A.m, 3, 1.0), X));
    EXPECT_SAME_MATRIX(X, Matrix(4, 3, {1, 2, 3, 0, 4, 5, 6, 0, 0, 0, 0, 0}));
  }
}

TEST(QrSolve, FailureOnASmallMatrixLeavesIt) {
  for_all_small_sizes([](auto size) {
    const AssertionLog log;
    Random random(size);
    const Matrix before = random_matrix(random, size, size);
    Small<size> X = as<Small<size>>(before);
    EXPECT_FALSE(TnLaTQRDecompo<Small<size>>(Small<size>()).solve(as<Small<size>>(before), X));
    EXPECT_SAME_MATRIX(X, before);
    EXPECT_EQ(log.count(), 0u);
  });
}

TEST(QrSolve, XMayBeTheMatrixThatWasDecomposed) {
  Random random(5);
  const Matrix A = random_matrix(random, 6, 4);
  const Matrix B = random_matrix(random, 6, 2);
  TnLaDblMat X = dense(A);
  EXPECT_TRUE(Decomposition(X).solve(dense(B), X));
  EXPECT_SAME_MATRIX(X, Qr(A).solve(B).value());
}

// Runs it with a handler, which one call must reach, and without.
void expect_solve_asserts(const Matrix& A, const Matrix& B, bool solved, const Matrix& expected_X) {
  const Decomposition qr(dense(A));
  for (const bool logged : {true, false}) {
    const AssertionLog log;
    if (!logged) kit_assertion_handler = nullptr;
    TnLaDblMat X = dense({1, 1, {9}});
    EXPECT_EQ(qr.solve(dense(B), X), solved);
    EXPECT_EQ(log.files(), logged ? Files({kSource}) : Files());
    EXPECT_SAME_MATRIX(X, expected_X);
  }
}

TEST(QrSolve, RowsOfBBeyondThoseOfAAreNotLookedAt) {
  Random random(6);
  const Matrix A = random_matrix(random, 4, 3);
  const Matrix B = random_matrix(random, 4, 2);
  Matrix longer = resized(B, 6, 2);
  for (std::size_t c = 0; c < 2; ++c) longer(4, c) = longer(5, c) = kNaN;
  expect_solve_asserts(A, longer, true, Qr(A).solve(B).value());
}

TEST(QrSolve, MissingRowsOfBMakeItFail) {
  Random random(7);
  const Matrix kept(3, 2, {9, 0, 0, 0, 0, 0});
  const Matrix B = random_matrix(random, 3, 2);
  expect_solve_asserts(random_matrix(random, 4, 3), B, false, kept);
  expect_solve_asserts(random_matrix(random, 3, 3), resized(B, 1, 2), false, kept);
  expect_solve_asserts(random_matrix(random, 4, 3), resized(B, 0, 2), false, kept);
}

TEST(QrSolve, MissingRowsOfNoColumnDoNotMatter) {
  Random random(8);
  expect_solve_asserts(random_matrix(random, 4, 3), Matrix(1, 0), true, Matrix(3, 0));
}

TEST(QrSolve, AMismatchIsAssertedAlsoWhereTheSolveFailsAnyway) {
  expect_solve_asserts(Matrix(2, 2), Matrix(3, 1), false, Matrix(2, 1, {9, 0}));
  expect_solve_asserts(Matrix(1, 2), Matrix(2, 1), false, Matrix(2, 1, {9, 0}));
}

// --- T --------------------------------------------------------------------------------------------------

TEST(QrReflections, AnIndexOutOfRangeIsAssertedByTheArray) {
  const Decomposition qr(dense(identity(3)));
  const ThrowingAssertions throwing;
  for (const int i : {2, 3, -1}) {
    try {
      qr.T(i);
      ADD_FAILURE() << "T(" << i << ") is not asserted";
    } catch (const AssertionThrown& thrown) {
      EXPECT_EQ(thrown.file, "interfaces/tnarray_i.h");
    }
  }
  EXPECT_NO_THROW(qr.T(0));
  EXPECT_NO_THROW(qr.T(1));
}

}  // namespace
