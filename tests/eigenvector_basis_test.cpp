// SPDX-License-Identifier: MIT

#include "support/eigenvector_basis.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <functional>
#include <vector>

#include "reference/jacobi_reference.h"
#include "support/bits.h"
#include "support/decomposition_types.h"
#include "support/dense_objects.h"
#include "support/expect_asserts.h"
#include "support/trial.h"
#include "support/trial_worlds.h"
#include "support/values.h"
#include "tnla_eigenvector_basis_i.h"

namespace {

using reference::diagonal;
using reference::identity;
using reference::Jacobi;

constexpr char kAccess[] = "interfaces/tnla_matrix_vector_i.h";

// --- Against the definition -----------------------------------------------------------------------------

// With these eigenvalues, but for rounding errors.
Matrix with_eigenvalues(Random& random, const std::vector<double>& values) {
  const Matrix V = Jacobi(random_symmetric(random, values.size())).V;
  return symmetric(product(product(V, diagonal(values)), transposed(V)));
}

Matrix with_diagonal(Matrix A, double value) {
  for (std::size_t i = 0; i < A.m; ++i) A(i, i) = value;
  return A;
}

TEST(EigenvectorBasis, FollowsItsDefinition) {
  Random random(1);
  for (std::size_t n = 0; n <= 30; ++n) {
    expect_basis(random_symmetric(random, n));
    expect_basis(random_matrix(random, n, n));
    expect_basis(scaled(random_symmetric(random, n), 1e6));
  }
  for (const std::size_t n : {64u, 100u}) expect_basis(random_symmetric(random, n));
}

TEST(EigenvectorBasis, FollowsItsDefinitionForGradedMatrices) {
  Random random(2);
  for (std::size_t n = 2; n <= 24; ++n) {
    for (const double ratio : {0.5, 0.1, 1e-3, 10.0, 1e3, 1e8}) {
      expect_basis(graded(random_symmetric(random, n), ratio));
    }
  }
}

TEST(EigenvectorBasis, FollowsItsDefinitionForEqualAndCloseEigenvalues) {
  Random random(3);
  for (std::size_t n = 1; n <= 20; ++n) {
    std::vector<double> clustered(n);
    for (std::size_t i = 0; i < n; ++i) clustered[i] = static_cast<double>(i % 3) - 1.0;
    expect_basis(with_eigenvalues(random, clustered));
    for (double& value : clustered) value += 1e-12 * random.uniform();
    expect_basis(with_eigenvalues(random, clustered));
    expect_basis(Matrix(n, n, std::vector<double>(n * n, 1.0)));
    expect_basis(with_diagonal(random_symmetric(random, n), 0.5));
    expect_basis(with_diagonal(scaled(random_symmetric(random, n), 1e-15), 3.0));
    expect_basis(random_of_rank(random, n, n, 1));
  }
}

TEST(EigenvectorBasis, FollowsItsDefinitionAtEveryScale) {
  Random random(4);
  for (std::size_t n = 2; n <= 12; ++n) {
    for (const int e : {-1074, -1072, -1060, -1022, -1000, -540, 500, 1000, 1023}) {
      Matrix A = random_symmetric(random, n);
      for (double& x : A.a) x = std::ldexp(x, e);
      expect_basis(A);
    }
  }
}

TEST(EigenvectorBasis, FollowsItsDefinitionForAnyMatrix) {
  Random random(5);
  for (std::size_t n = 1; n <= 10; ++n) {
    for (int i = 0; i < 20; ++i) expect_basis(any_matrix(random, n, n));
  }
}

// At every place of the diagonal and above it.
TEST(EigenvectorBasis, FollowsItsDefinitionForSpecialValues) {
  Random random(6);
  for (const std::size_t n : {1u, 2u, 3u, 4u, 6u}) {
    const Matrix A = random_symmetric(random, n);
    for (const double special : special_values()) {
      for (std::size_t place = 0; place < n * n; ++place) {
        if (place % n > place / n) continue;
        Matrix changed = A;
        changed.a[place] = special;
        expect_basis(changed);
      }
    }
  }
}

// --- What it is -----------------------------------------------------------------------------------------

constexpr int kMostSweeps = 12;  // that the matrices of the next test take

// A rotation adds a rounding error of less than 10 u times the length of each pair that it turns.  A sweep
// is 2 n rounds of rotations of disjoint pairs, so 12 sweeps add less than 240 n u times a Frobenius norm:
// that of `a`, from both sides, or sqrt(n) for the basis.  In A V - V D and V'V - I the sum of all this
// stays below 1000 n^2 u, times the norm of `a` or 1; the trace is n such errors of eigenvalues.
double rounding(std::size_t n, double norm) { return 1000.0 * static_cast<double>(n * n) * 0x1p-53 * norm; }

double frobenius_norm(const Matrix& A) {
  double sum = 0.0;
  for (const double x : A.a) sum += x * x;
  return std::sqrt(sum);
}

void expect_eigenvectors(const Matrix& A) {
  SCOPED_TRACE(testing::Message() << A.m << " rows");
  ASSERT_LE(Jacobi(A).n_sweeps, kMostSweeps);
  const Basis actual = basis(A);
  ASSERT_TRUE(actual.converged);
  const Matrix& V = actual.vectors;
  const double tolerance = rounding(A.m, frobenius_norm(A));
  EXPECT_LE(largest_difference(product(A, V), product(V, diagonal(actual.values))), tolerance);
  EXPECT_LE(largest_difference(product(transposed(V), V), identity(A.m)), rounding(A.m, 1.0));
  EXPECT_TRUE(std::is_sorted(actual.values.begin(), actual.values.end(), std::greater<>()));
  double trace = 0.0;
  for (std::size_t i = 0; i < A.m; ++i) trace += A(i, i) - actual.values[i];
  EXPECT_LE(std::fabs(trace), tolerance);
}

TEST(EigenvectorBasis, IsOrthonormalAndOfEigenvectors) {
  Random random(7);
  for (const std::size_t n : {1u, 2u, 3u, 5u, 8u, 13u, 21u, 34u}) {
    expect_eigenvectors(random_symmetric(random, n));
    expect_eigenvectors(with_eigenvalues(random, std::vector<double>(n, 2.0)));
    expect_eigenvectors(graded(random_symmetric(random, n), 0.1));
    expect_eigenvectors(Matrix(n, n, std::vector<double>(n * n, 1.0)));
  }
}

// The second differences: 2 on the diagonal, -1 beside it, with the eigenvalues 2 + 2 cos(k pi / (n + 1)).
TEST(EigenvectorBasis, FindsKnownEigenvalues) {
  const std::size_t n = 12;
  Matrix A = diagonal(std::vector<double>(n, 2.0));
  for (std::size_t i = 0; i + 1 < n; ++i) A(i, i + 1) = A(i + 1, i) = -1.0;
  expect_eigenvectors(A);
  const std::vector<double> values = basis(A).values;
  for (std::size_t k = 0; k < n; ++k) {
    const double angle = std::acos(-1.0) * static_cast<double>(k + 1) / static_cast<double>(n + 1);
    EXPECT_NEAR(values[k], 2.0 + 2.0 * std::cos(angle), rounding(n, frobenius_norm(A)));
  }
}

TEST(EigenvectorBasis, OfTwoRows) {
  const Basis actual = basis({2, 2, {2, 1, 1, 2}});
  EXPECT_TRUE(actual.converged);
  EXPECT_EQ(actual.values, (std::vector<double>{3, 1}));
  const Matrix expected = scaled({2, 2, {1, 1, 1, -1}}, std::sqrt(0.5));
  const bool is_negative = actual.vectors(0, 1) < 0.0;  // signs are what the rotation made of them
  const Matrix turned(2, 2,
                      {actual.vectors(0, 0), actual.vectors(1, 0),
                       is_negative ? -actual.vectors(0, 1) : actual.vectors(0, 1),
                       is_negative ? -actual.vectors(1, 1) : actual.vectors(1, 1)});
  EXPECT_LE(largest_difference(turned, expected), 4 * 0x1p-53);  // four operations near 1
}

TEST(EigenvectorBasis, OfOneRowIsTheElement) {
  for (const double element : {2.5, -0.0, -3.0, kInf, kNaN}) {
    const Basis actual = basis({1, 1, {element}});
    EXPECT_TRUE(actual.converged);
    EXPECT_SAME(actual.values[0], element);
    EXPECT_SAME_MATRIX(actual.vectors, identity(1));
  }
}

TEST(EigenvectorBasis, OfNothingIsEmpty) {
  for (const std::size_t cols : {0u, 5u}) {
    const Basis actual = basis(Matrix(0, cols));
    EXPECT_TRUE(actual.converged);
    EXPECT_TRUE(actual.values.empty());
    EXPECT_SAME_MATRIX(actual.vectors, Matrix(0, 0));
  }
}

// --- What is read and written ---------------------------------------------------------------------------

// (1)
TEST(EigenvectorBasis, ReadsTheUpperTriangleAlone) {
  Random random(8);
  for (std::size_t n = 1; n <= 12; ++n) {
    const Matrix A = random_symmetric(random, n);
    const Basis expected = basis(A);
    for (const double other : {0.0, 1e300, kNaN, kInf}) {
      Matrix changed = A;
      for (std::size_t j = 0; j < n; ++j) {
        for (std::size_t i = j + 1; i < n; ++i) changed(i, j) = other;
      }
      const Basis actual = basis(changed);
      EXPECT_EQ(actual.values, expected.values);
      EXPECT_SAME_MATRIX(actual.vectors, expected.vectors);
    }
  }
}

// (1)
TEST(EigenvectorBasis, LeavesZerosAboveTheDiagonalAndTheRest) {
  Random random(9);
  for (std::size_t n = 1; n <= 12; ++n) {
    const Matrix A = random_matrix(random, n, n);
    const Basis actual = basis(A);
    for (std::size_t j = 0; j < n; ++j) {
      for (std::size_t i = 0; i < n; ++i) {
        if (i < j) {
          EXPECT_EQ(actual.a(i, j), 0.0);
        } else {
          EXPECT_SAME(actual.a(i, j), A(i, j));
        }
      }
    }
  }
}

// (4)
TEST(EigenvectorBasis, FurtherColumnsAreNotLookedAt) {
  Random random(10);
  for (std::size_t n = 1; n <= 6; ++n) {
    for (std::size_t more = 1; more <= 3; ++more) {
      const Matrix A = random_matrix(random, n, n);
      Matrix wide(n, n + more, A.a);
      wide.a.resize(n * (n + more), kNaN);
      expect_basis(wide);
      const Basis actual = basis(wide);
      EXPECT_EQ(actual.values, basis(A).values);
      for (std::size_t k = n * n; k < wide.a.size(); ++k) EXPECT_SAME(actual.a.a[k], kNaN);
    }
  }
}

TEST(EigenvectorBasis, TheResultsTakeTheirSize) {
  for (const std::size_t old : {0u, 1u, 3u, 20u}) {
    TnLaDblMat a = mat(3, 3, {5, 0, 0, 0, 4, 0, 0, 0, 3});
    TnArray<double> values = trial::filled_array(old, kNaN);
    TnLaDblMat vectors = mat(old, 2, std::vector<double>(2 * old, kNaN));
    EXPECT_TRUE(tnla_eigenvector_basis(a, values, vectors));
    expect_elements(values, {5, 4, 3});
    expect_is(vectors, 3, 3, identity(3).a);
  }
}

// (4)
TEST(EigenvectorBasis, TooFewColumnsAreAsserted) {
  for (const std::size_t n : {1u, 2u, 3u, 7u}) {
    for (std::size_t cols = 0; cols < n; ++cols) {
      SCOPED_TRACE(testing::Message() << n << " x " << cols);
      expect_asserts({kAccess}, [n, cols] {
        const TnLaDblMat before = mat(n, cols, std::vector<double>(n * cols, 2.0));
        TnLaDblMat a = before;
        TnArray<double> values = trial::filled_array(5, 7.0);
        TnLaDblMat vectors = ones(4, 4);
        EXPECT_FALSE(tnla_eigenvector_basis(a, values, vectors));
        expect_elements(values, std::vector<double>(n));
        expect_is(vectors, n, n, identity(n).a);
        expect_unchanged(a, before);
      });
    }
  }
}

// --- Memory that runs out, and handlers that throw ------------------------------------------------------

// (5): `a` is as it was; the results may have another size.
struct BasisWorld {
  TnLaDblMat a = trial::random_matrix(6, 6, 1);
  TnLaDblMat narrow = trial::random_matrix(6, 5, 2);
  TnArray<double> values = trial::filled_array(2, 7.0);
  TnLaDblMat vectors = trial::random_matrix(3, 2, 3);
  trial::Results results;

  static trial::Record inputs() { return {}; }
  trial::Record steady() const { return trial::Record().add(a).add(narrow); }
  trial::Record all() const {
    trial::Record r = steady();
    r.add(values.data(), values.size()).add(vectors);
    return r.add(results.data(), results.size());
  }
  bool sound() const { return trial::is_sound(vectors) && trial::has_zero_tail(values) && results.fit(); }
  void restore() { results.clear(); }

  void solve(TnLaDblMat& matrix) { results.keep(tnla_eigenvector_basis(matrix, values, vectors)); }
};

using Operation = trial::Operation<BasisWorld>;

TEST(EigenvectorDisturbance, MemoryThatRunsOutLeavesTheMatrix) {
  trial::expect_survives_exhaustion<BasisWorld>({"basis", [](BasisWorld& w) { w.solve(w.a); }});
  trial::expect_survives_exhaustion<BasisWorld>({"refused", [](BasisWorld& w) { w.solve(w.narrow); }});
}

TEST(EigenvectorDisturbance, AHandlerThatThrowsLosesNothing) {
  const Operation refused = {"refused", [](BasisWorld& w) { w.solve(w.narrow); }};
  EXPECT_EQ(trial::expect_survives_throwing_handler(refused), 1u);
}

}  // namespace
