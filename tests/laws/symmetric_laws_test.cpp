// SPDX-License-Identifier: MIT

// Laws of the solvers for symmetric matrices: Cholesky, and the eigenvectors by Jacobi rotations.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <vector>

#include "laws/laws.h"

namespace {

constexpr std::uint64_t kSeeds = 1000;

// --- Cholesky -------------------------------------------------------------------------------------------

struct Definite {
  Matrix A;
  Matrix B;
};

Definite random_definite(Random& random) {
  const std::size_t n = dimension(random);
  const Matrix half = random_matrix(random, n, n);
  Matrix A = product(transposed(half), half);
  for (std::size_t i = 0; i < n; ++i) A(i, i) += 1.0;
  return {A, random_matrix(random, n, between(random, 1, 4))};
}

Matrix solution(const Definite& d) {
  TnLaCholesky cholesky(static_cast<int>(d.A.n));
  cholesky.a(dense(d.A).array());
  Matrix X(d.A.n, d.B.n);
  for (std::size_t c = 0; c < d.B.n; ++c) {
    cholesky.b(dense(column_of(d.B, c)).array());
    const TnArray<double>& x = cholesky.x();
    for (std::size_t i = 0; i < d.A.n; ++i) X(i, c) = x[i];
  }
  return X;
}

// The factor is kept for the next right-hand side: as if it had been made anew.
TEST(CholeskyLaws, OneFactorServesAllRightHandSides) {
  for_seeds(kSeeds, [](Random& random) {
    const Definite d = random_definite(random);
    const Matrix X = solution(d);
    for (std::size_t c = 0; c < d.B.n; ++c) {
      EXPECT_SAME_MATRIX(solution({d.A, column_of(d.B, c)}), column_of(X, c));
    }
  });
}

// B times a power of two, of either sign: X times it.
TEST(CholeskyLaws, ScalingBScalesX) {
  for_seeds(kSeeds, [](Random& random) {
    const Definite d = random_definite(random);
    const double c = power_of_two(random);
    EXPECT_SAME_MATRIX(solution({d.A, scaled(d.B, c)}), scaled(solution(d), c));
  });
}

// D A D and D B with powers of two of either sign in D: X divided by D.
TEST(CholeskyLaws, ScalingRowsAndColumnsDividesX) {
  for_seeds(kSeeds, [](Random& random) {
    const Definite d = random_definite(random);
    Definite other = d;
    Matrix X = solution(d);
    for (std::size_t i = 0; i < d.A.n; ++i) {
      const double c = power_of_two(random) * 0x1p8;  // so that no pivot falls below its bound
      other.A = with_row_times(with_column_times(other.A, i, c), i, c);
      other.B = with_row_times(other.B, i, c);
      X = with_row_times(X, i, 1.0 / c);
    }
    EXPECT_SAME_MATRIX(solution(other), X);
  });
}

// The strictly lower triangle is not read.
TEST(CholeskyLaws, TheLowerTriangleDoesNotCount) {
  for_seeds(kSeeds, [](Random& random) {
    const Definite d = random_definite(random);
    Definite other = d;
    for (std::size_t j = 0; j < d.A.n; ++j) {
      for (std::size_t i = j + 1; i < d.A.n; ++i) other.A(i, j) = random.any();
    }
    EXPECT_SAME_MATRIX(solution(other), solution(d));
  });
}

// Further unknowns behind, not coupled to the others: x as it was.
TEST(CholeskyLaws, UncoupledUnknownsLeaveX) {
  for_seeds(kSeeds, [](Random& random) {
    const Definite d = random_definite(random);
    const std::size_t more = between(random, 1, 9);
    Definite other = {with_zero_columns(with_zero_rows(d.A, d.A.m, more), d.A.n, more),
                      with_zero_rows(d.B, d.B.m, more)};
    for (std::size_t i = d.A.n; i < other.A.n; ++i) {
      other.A(i, i) = static_cast<double>(between(random, 1, 5));
      for (std::size_t c = 0; c < d.B.n; ++c) other.B(i, c) = random.uniform();
    }
    EXPECT_SAME_MATRIX(reference::resized(solution(other), d.A.n, d.B.n), solution(d));
  });
}

// --- Eigenvectors ---------------------------------------------------------------------------------------

struct Basis {
  std::vector<double> values;
  Matrix vectors;
};

Basis basis(const Matrix& A) {
  TnLaDblMat a = dense(A);
  TnArray<double> values;
  TnLaDblMat vectors;
  EXPECT_TRUE(tnla_eigenvector_basis(a, values, vectors));
  return {{values.data(), values.data() + values.size()}, plain(vectors)};
}

void expect_same(const Basis& actual, const Basis& expected) {
  ASSERT_EQ(actual.values.size(), expected.values.size());
  EXPECT_SAME_ARRAY(expected.values.size(), actual.values.data(), expected.values.data());
  EXPECT_SAME_MATRIX(actual.vectors, expected.vectors);
}

// Without a zero on the way; only the upper triangle and the diagonal count.
Matrix random_symmetric(Random& random) {
  const std::size_t n = between(random, 1, 24);
  return random_matrix(random, n, n);
}

// A times a power of two: so are the eigenvalues, with the same vectors.
TEST(EigenvectorLaws, ScalingAScalesTheValues) {
  for_seeds(kSeeds, [](Random& random) {
    const Matrix A = random_symmetric(random);
    const double c = std::ldexp(1.0, static_cast<int>(random.below(1601)) - 800);
    Basis expected = basis(A);
    for (double& x : expected.values) x *= c;
    expect_same(basis(scaled(A, c)), expected);
  });
}

// -A: the negated eigenvalues, and the same vectors, both in the opposite order.
TEST(EigenvectorLaws, NegatingAReversesTheBasis) {
  for_seeds(kSeeds, [](Random& random) {
    const Matrix A = random_symmetric(random);
    Basis expected = basis(A);
    for (double& x : expected.values) x = -x;
    std::reverse(expected.values.begin(), expected.values.end());
    std::vector<std::size_t> backwards(A.n);
    for (std::size_t j = 0; j < A.n; ++j) backwards[j] = A.n - 1 - j;
    expected.vectors = with_columns(expected.vectors, backwards);
    expect_same(basis(scaled(A, -1.0)), expected);
  });
}

// D A D with signs in D: the same eigenvalues, and the vectors with these signs in their rows, each vector
// up to its own sign.
TEST(EigenvectorLaws, SignsOfTheUnknownsAreThoseOfTheVectors) {
  for_seeds(kSeeds, [](Random& random) {
    const Matrix A = random_symmetric(random);
    Matrix other = A;
    Basis expected = basis(A);
    for (std::size_t i = 0; i < A.n; ++i) {
      const double sign = random.below(2) == 0 ? 1.0 : -1.0;
      other = with_row_times(with_column_times(other, i, sign), i, sign);
      expected.vectors = with_row_times(expected.vectors, i, sign);
    }
    const Basis actual = basis(other);
    for (std::size_t j = 0; j < A.n; ++j) {
      if (expected.vectors(0, j) != actual.vectors(0, j)) {
        expected.vectors = with_column_times(expected.vectors, j, -1.0);
      }
    }
    expect_same(actual, expected);
  });
}

// The lower triangle is not read.
TEST(EigenvectorLaws, TheLowerTriangleDoesNotCount) {
  for_seeds(kSeeds, [](Random& random) {
    const Matrix A = random_symmetric(random);
    Matrix other = A;
    for (std::size_t j = 0; j < A.n; ++j) {
      for (std::size_t i = j + 1; i < A.n; ++i) other(i, j) = random.any();
    }
    expect_same(basis(other), basis(A));
  });
}

// A diagonal matrix: its entries in decreasing order, and unit vectors, exactly.
TEST(EigenvectorLaws, DiagonalMatricesAreSorted) {
  for_seeds(kSeeds, [](Random& random) {
    std::vector<double> values = random.vector(dimension(random));
    const Basis actual = basis(reference::diagonal(values));
    const Matrix A = reference::diagonal(values);
    EXPECT_SAME_MATRIX(product(A, actual.vectors),
                       product(actual.vectors, reference::diagonal(actual.values)));
    std::sort(values.begin(), values.end(), std::greater<>());
    EXPECT_SAME_ARRAY(values.size(), actual.values.data(), values.data());
  });
}

}  // namespace
