// SPDX-License-Identifier: MIT

// Laws of the decompositions and the solves by them.  All data are random and nothing cancels to an exact
// zero, whose sign would be that of no law.

#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <vector>

#include "laws/laws.h"

namespace {

constexpr std::uint64_t kSeeds = 2000;

// --- The two solves -------------------------------------------------------------------------------------

struct System {
  Matrix A;
  Matrix B;
};

System random_system(Random& random, std::size_t m, std::size_t n) {
  const Matrix A = random_matrix(random, m, n);
  return {A, random_matrix(random, m, between(random, 1, 9))};
}

// With at least as many rows as columns.
System tall_system(Random& random) {
  const std::size_t n = dimension(random);
  return random_system(random, n + (random.below(2) == 0 ? 0 : random.below(20)), n);
}

System any_system(Random& random) {
  const std::size_t m = dimension(random);
  return random_system(random, m, dimension(random));
}

// Of rank below the number of columns: random factors, whose last digits are noise.
System deficient_system(Random& random) {
  const std::size_t m = dimension(random, 2);
  const std::size_t n = dimension(random, 2);
  const std::size_t rank = between(random, 1, std::min(m, n) - 1);
  const Matrix A = random_of_rank(random, m, n, rank);
  return {A, random_matrix(random, m, between(random, 1, 4))};
}

struct Answer {
  int rank;  // or 1 and 0 for the verdict
  Matrix X;
  Matrix null_space;
};

Answer by_default(const System& s) {
  TnLaDblMat X;
  TnLaDblMat Z;
  const bool verdict = tnla_linearsolve(dense(s.A), dense(s.B), X, &Z);
  EXPECT_TRUE(verdict);
  return {verdict ? 1 : 0, plain(X), plain(Z)};
}

constexpr double kTolerance = 1e-9;  // above the noise of a deficient system

Answer by_tolerance(const System& s, double tol = kTolerance) {
  TnLaDblMat X;
  TnLaDblMat Z;
  int rank = -2;
  tnla_linearsolve(dense(s.A), dense(s.B), X, tol, &rank, &Z);
  return {rank, plain(X), plain(Z)};
}

void expect_same(const Answer& actual, const Answer& expected) {
  EXPECT_EQ(actual.rank, expected.rank);
  EXPECT_SAME_MATRIX(actual.X, expected.X);
  EXPECT_SAME_MATRIX(actual.null_space, expected.null_space);
}

Answer with_X(const Answer& answer, const Matrix& X) { return {answer.rank, X, answer.null_space}; }

// --- Scaling --------------------------------------------------------------------------------------------

// A and B times the same power of two, of either sign: the same X.
TEST(SolvingLaws, ScalingAAndBLeavesX) {
  for_seeds(kSeeds, [](Random& random) {
    const System s = tall_system(random);
    const double c = power_of_two(random);
    expect_same(by_default({scaled(s.A, c), scaled(s.B, c)}), by_default(s));
  });
}

// The same with the tolerance scaled too: also the same rank and null space.
TEST(SolvingLaws, ScalingAAndBAndTheToleranceLeavesXAndTheNullSpace) {
  for_seeds(kSeeds, [](Random& random) {
    const bool is_deficient = random.below(2) == 0;
    const System s = is_deficient ? deficient_system(random) : any_system(random);
    // The noise of a deficient system has to stay below the columns that are reflected: it decides the
    // order of the columns beyond the rank.
    const double c =
        is_deficient ? std::ldexp(1.0, static_cast<int>(random.below(10))) : power_of_two(random);
    expect_same(by_tolerance({scaled(s.A, c), scaled(s.B, c)}, kTolerance * std::fabs(c)), by_tolerance(s));
  });
}

// B times a power of two, of either sign: X times it.
TEST(SolvingLaws, ScalingBScalesX) {
  for_seeds(kSeeds, [](Random& random) {
    const double c = power_of_two(random);
    const System s = tall_system(random);
    const Answer answer = by_default(s);
    expect_same(by_default({s.A, scaled(s.B, c)}), with_X(answer, scaled(answer.X, c)));
    const System any = any_system(random);
    const Answer revealed = by_tolerance(any);
    expect_same(by_tolerance({any.A, scaled(any.B, c)}), with_X(revealed, scaled(revealed.X, c)));
  });
}

// A times a power of two: X divided by it.
TEST(SolvingLaws, ScalingADividesX) {
  for_seeds(kSeeds, [](Random& random) {
    const System s = tall_system(random);
    const double c = power_of_two(random);
    const Answer answer = by_default(s);
    expect_same(by_default({scaled(s.A, c), s.B}), with_X(answer, scaled(answer.X, 1.0 / c)));
  });
}

// Column j of A times a power of two: row j of X divided by it.
TEST(SolvingLaws, ScalingAColumnOfADividesARowOfX) {
  for_seeds(kSeeds, [](Random& random) {
    const System s = tall_system(random);
    const std::size_t j = random.below(s.A.n);
    const double c = std::ldexp(random.below(2) == 0 ? 1.0 : -1.0, static_cast<int>(random.below(11)) - 5);
    const Answer answer = by_default(s);
    expect_same(by_default({with_column_times(s.A, j, c), s.B}),
                with_X(answer, with_row_times(answer.X, j, 1.0 / c)));
  });
}

// Row i of A and of B negated: the same X.
TEST(SolvingLaws, NegatingAnEquationLeavesX) {
  for_seeds(kSeeds, [](Random& random) {
    const System s = tall_system(random);
    const std::size_t i = random.below(s.A.m);
    const System negated = {with_row_times(s.A, i, -1.0), with_row_times(s.B, i, -1.0)};
    expect_same(by_default(negated), by_default(s));
    expect_same(by_tolerance(negated), by_tolerance(s));
  });
}

// --- Columns --------------------------------------------------------------------------------------------

// p right-hand sides at once: the p single solutions.
TEST(SolvingLaws, RightHandSidesAreIndependent) {
  for_seeds(kSeeds, [](Random& random) {
    const System s = tall_system(random);
    const System any = random.below(2) == 0 ? any_system(random) : deficient_system(random);
    const Matrix X = by_default(s).X;
    const Matrix Y = by_tolerance(any).X;
    for (std::size_t c = 0; c < s.B.n; ++c) {
      EXPECT_SAME_MATRIX(by_default({s.A, column_of(s.B, c)}).X, column_of(X, c));
    }
    for (std::size_t c = 0; c < any.B.n; ++c) {
      EXPECT_SAME_MATRIX(by_tolerance({any.A, column_of(any.B, c)}).X, column_of(Y, c));
    }
  });
}

// The columns of B in another order, or some of them twice: so are those of X.
TEST(SolvingLaws, PermutingBPermutesX) {
  for_seeds(kSeeds, [](Random& random) {
    const System s = tall_system(random);
    std::vector<std::size_t> p = permutation(random, s.B.n);
    p.push_back(random.below(s.B.n));
    EXPECT_SAME_MATRIX(by_default({s.A, with_columns(s.B, p)}).X, with_columns(by_default(s).X, p));
    EXPECT_SAME_MATRIX(by_tolerance({s.A, with_columns(s.B, p)}).X, with_columns(by_tolerance(s).X, p));
  });
}

// The columns of A in another order, where they are independent: by the tolerance, which chooses its own
// order, so are the rows of X.
TEST(SolvingLaws, PermutingAPermutesTheRowsOfX) {
  for_seeds(kSeeds, [](Random& random) {
    const System s = tall_system(random);
    const std::vector<std::size_t> p = permutation(random, s.A.n);
    expect_same(by_tolerance({with_columns(s.A, p), s.B}),
                with_X(by_tolerance(s), with_rows(by_tolerance(s).X, p)));
  });
}

// --- Rows of zeros --------------------------------------------------------------------------------------

// Equations 0 = 0 behind the first n, where there are more than n already: the same X.
TEST(SolvingLaws, ZeroRowsLeaveX) {
  for_seeds(kSeeds, [](Random& random) {
    const std::size_t n = dimension(random);
    const System s = random_system(random, n + between(random, 1, 20), n);
    const std::size_t at = between(random, n, s.A.m);
    const std::size_t count = between(random, 1, 12);
    const System longer = {with_zero_rows(s.A, at, count), with_zero_rows(s.B, at, count)};
    expect_same(by_default(longer), by_default(s));
    expect_same(by_tolerance(longer), by_tolerance(s));
  });
}

// --- One solve by another -------------------------------------------------------------------------------

// X depends on the tolerance by the rank alone.
TEST(SolvingLaws, TolerancesOfOneRankGiveOneX) {
  for_seeds(kSeeds, [](Random& random) {
    const System s = deficient_system(random);
    expect_same(by_tolerance(s, 1e-12), by_tolerance(s, 1e-9));
  });
}

// The solve is that of the decomposition; the inverse is the solve for the identity; in place and as a
// copy.
TEST(SolvingLaws, AllWaysToAnInverseAreOne) {
  for_seeds(kSeeds, [](Random& random) {
    const std::size_t n = dimension(random);
    const Matrix A = random_matrix(random, n, n);
    const Matrix I = reference::identity(n);
    const Matrix X = by_default({A, I}).X;
    TnLaDblMat inverse;
    EXPECT_TRUE(TnLaTQRDecompo<TnLaDblMat>(dense(A)).solve(dense(I), inverse));
    EXPECT_SAME_MATRIX(inverse, X);
    EXPECT_TRUE(tnla_inverse(dense(A), inverse));
    EXPECT_SAME_MATRIX(inverse, X);
    EXPECT_SAME_MATRIX(dense(A).inv(), X);
    TnLaDblMat in_place = dense(A);
    in_place.invert();
    EXPECT_SAME_MATRIX(in_place, X);
    tnla_inverse(dense(A), inverse, kTolerance);
    EXPECT_SAME_MATRIX(inverse, by_tolerance({A, I}).X);
  });
}

// A permutation with powers of two in place of the ones, and a B of small integers: X is exact.
TEST(SolvingLaws, PermutationsAreSolvedExactly) {
  for_seeds(kSeeds, [](Random& random) {
    const std::size_t n = dimension(random);
    Matrix A = with_columns(reference::identity(n), permutation(random, n));
    Matrix X(n, 3);
    for (double& x : X.a) x = static_cast<double>(between(random, 1, 1000));
    for (std::size_t j = 0; j < n; ++j)
      A = with_column_times(A, j, std::ldexp(1.0, static_cast<int>(random.below(9))));
    const System s = {A, product(A, X)};
    EXPECT_SAME_MATRIX(by_default(s).X, X);
    EXPECT_SAME_MATRIX(by_tolerance(s).X, X);
  });
}

// --- R and the determinant ------------------------------------------------------------------------------

Matrix triangle_of(const Matrix& A) { return plain(TnLaTQRDecompo<TnLaDblMat>(dense(A)).R()); }

// A times a power of two, of either sign: R times it.  So is one column.
TEST(SolvingLaws, ScalingAScalesR) {
  for_seeds(kSeeds, [](Random& random) {
    const Matrix A = any_system(random).A;
    const double c = power_of_two(random);
    const std::size_t j = random.below(A.n);
    // The zeros below the diagonal are positive whatever the sign of c.
    const auto cleared = [](Matrix R) {
      for (double& x : R.a) x = x + 0.0;
      return R;
    };
    EXPECT_SAME_MATRIX(triangle_of(scaled(A, c)), cleared(scaled(triangle_of(A), c)));
    EXPECT_SAME_MATRIX(triangle_of(with_column_times(A, j, c)),
                       cleared(with_column_times(triangle_of(A), j, c)));
  });
}

// Further columns behind: the first ones of R as they were.
TEST(SolvingLaws, ColumnsOfRDependOnTheColumnsBefore) {
  for_seeds(kSeeds, [](Random& random) {
    const Matrix A = any_system(random).A;
    const std::size_t n = between(random, 1, A.n);
    EXPECT_SAME_MATRIX(triangle_of(reference::resized(A, A.m, n)),
                       reference::resized(triangle_of(A), A.m, n));
  });
}

// det(c A) = c^n det A, for a power of two of either sign; det with a column times c = c det A.
TEST(SolvingLaws, ScalingScalesTheDeterminant) {
  for_seeds(kSeeds, [](Random& random) {
    const std::size_t n = between(random, 2, 20);
    const Matrix A = random_matrix(random, n, n);
    const double det = dense(A).det();
    const double c = power_of_two(random);
    const std::size_t j = random.below(n);
    EXPECT_NE(det, 0.0);
    EXPECT_SAME(dense(scaled(A, c)).det(), det * std::pow(c, static_cast<double>(n)));
    EXPECT_SAME(dense(with_column_times(A, j, c)).det(), det * c);
    EXPECT_SAME(dense(with_row_times(A, j, -1.0)).det(), -det);
  });
}

// --- Reflections ----------------------------------------------------------------------------------------

// A strided vector is reflected as a contiguous one, several at once as one by one, and by the class as by
// the free functions.
TEST(SolvingLaws, ReflectionsOfStridedVectorsAreThoseOfContiguousOnes) {
  for_seeds(kSeeds, [](Random& random) {
    const int n = static_cast<int>(dimension(random, 2));
    const int pivot = static_cast<int>(random.below(static_cast<std::size_t>(n) - 1));
    const int zero = pivot + 1 + static_cast<int>(random.below(static_cast<std::size_t>(n - pivot)));
    const int incr = static_cast<int>(between(random, 1, 5));
    const int n_vec = static_cast<int>(between(random, 1, 9));
    const std::size_t length = static_cast<std::size_t>(n);
    const std::vector<double> v = random.vector(length);
    const Matrix W = random_matrix(random, length, static_cast<std::size_t>(n_vec));

    // Contiguous, by the class, one vector after the other.
    std::vector<double> reduced = v;
    const TnLaHouseholder reflection(pivot, zero, n, reduced.data(), 1);
    Matrix expected = W;
    for (std::size_t k = 0; k < W.n; ++k) reflection.apply(expected.column(k), 1);

    // Strided, by the class.
    const std::size_t step = static_cast<std::size_t>(incr);
    std::vector<double> wide(length * step, 7.0);
    for (std::size_t i = 0; i < length; ++i) wide[i * step] = v[i];
    std::vector<double> u = wide;
    const TnLaHouseholder strided(pivot, zero, n, wide.data(), incr);
    for (std::size_t i = 0; i < length; ++i) EXPECT_SAME(wide[i * step], reduced[i]);
    Matrix rows = transposed(W);
    for (std::size_t k = 0; k < W.n; ++k) strided.apply(rows.row(k), n_vec);
    EXPECT_SAME_MATRIX(rows, transposed(expected));

    // By the free functions, all rows at once and then all columns.
    double up = 0.0;
    tnla_h1(pivot, zero, n, u.data(), incr, up);
    Matrix at_once = transposed(W);
    tnla_h2(pivot, zero, n, u.data(), incr, up, at_once.a.data(), n_vec, 1, n_vec);
    EXPECT_SAME_MATRIX(at_once, transposed(expected));
    at_once = W;
    tnla_h2(pivot, zero, n, u.data(), incr, up, at_once.a.data(), 1, n, n_vec);
    EXPECT_SAME_MATRIX(at_once, expected);
  });
}

}  // namespace
