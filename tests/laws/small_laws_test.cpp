// SPDX-License-Identifier: MIT

// A small type of dimension N gives the bits of the dense type with N rows, for everything that both offer,
// N = 1 to 12.

#include <gtest/gtest.h>

#include <cstddef>
#include <vector>

#include "laws/laws.h"

namespace {

constexpr std::uint64_t kSeeds = 300;

template <std::size_t N>
using SmallVec = TnLaTSmallVec<static_cast<int>(N), double>;

// Calls check(random, N) for every seed and every N.
template <class Check>
void for_all(const Check& check) {
  for_all_small_sizes([&](auto size) {
    SCOPED_TRACE("N = " + std::to_string(size.value));
    for_seeds(kSeeds, [&](Random& random) { check(random, size); });
  });
}

// Well and badly scaled numbers, zeros of both signs, and now and then one that arithmetic treats in a way
// of its own.
Matrix numbers(Random& random, std::size_t m, std::size_t n) {
  return random.below(2) == 0 ? random_matrix(random, m, n) : any_matrix(random, m, n);
}

TnLaDblVec dense_vec(const Matrix& x) { return TnLaDblVec(x.a.data(), static_cast<int>(x.a.size())); }

template <std::size_t N>
void expect_same_vec(const SmallVec<N>& actual, const TnLaDblVec& expected) {
  ASSERT_EQ(expected.dim(), actual.dim());
  EXPECT_SAME_ARRAY(N, actual.data(), expected.array().data());
}

// --- Arithmetic -----------------------------------------------------------------------------------------

TEST(SmallLaws, MatricesAddAndScaleAsDenseOnes) {
  for_all([](Random& random, auto size) {
    constexpr std::size_t N = size.value;
    const Matrix A = numbers(random, N, N);
    const Matrix B = numbers(random, N, N);
    const double s = random.any();
    const Small<N> a = as<Small<N>>(A);
    const Small<N> b = as<Small<N>>(B);
    EXPECT_SAME_MATRIX(a + b, dense(A) + dense(B));
    EXPECT_SAME_MATRIX(a - b, dense(A) - dense(B));
    EXPECT_SAME_MATRIX(-a, -dense(A));
    EXPECT_SAME_MATRIX(a * s, dense(A) * s);
    EXPECT_SAME_MATRIX(s * a, s * dense(A));
    Small<N> sum = a;
    sum += b;
    EXPECT_SAME_MATRIX(sum, a + b);
    sum -= a;
    EXPECT_SAME_MATRIX(sum, (dense(A) + dense(B)) - dense(A));
    sum *= s;
    EXPECT_SAME_MATRIX(sum, ((dense(A) + dense(B)) - dense(A)) * s);
    EXPECT_SAME(a.sq_norm(), dense(A).sq_norm());
    EXPECT_SAME(a.mx_norm(), dense(A).mx_norm());
  });
}

TEST(SmallLaws, MatricesAreEditedAsDenseOnes) {
  for_all([](Random& random, auto size) {
    constexpr std::size_t N = size.value;
    const Matrix A = numbers(random, N, N);
    Small<N> a = as<Small<N>>(A);
    TnLaDblMat expected = dense(A);
    const std::size_t i = random.below(N);
    const std::size_t j = random.below(N);
    expect_same_vec<N>(a.row_vec(i), expected.row_vec(i));
    expect_same_vec<N>(a.col_vec(j), expected.col_vec(j));
    a.swap_rows(i, j);
    expected.swap_rows(i, j);
    EXPECT_SAME_MATRIX(a, expected);
    a.swap_cols(j, i);
    expected.swap_cols(j, i);
    EXPECT_SAME_MATRIX(a, expected);
    const bool rows = random.below(2) == 0;
    a.swap(i, 0, rows);
    expected.swap(i, 0, rows);
    EXPECT_SAME_MATRIX(a, expected);
    const int offset = static_cast<int>(random.below(2 * N)) - static_cast<int>(N);
    a.set_diagonal(2.5, offset);
    expected.set_diagonal(2.5, offset);
    EXPECT_SAME_MATRIX(a, expected);
    EXPECT_SAME_MATRIX(Small<N>(N, N, 1.5), TnLaDblMat(N, N, 1.5));
  });
}

TEST(SmallLaws, VectorsAreDenseOnes) {
  for_all([](Random& random, auto size) {
    constexpr std::size_t N = size.value;
    const Matrix A = numbers(random, N, N);
    const Matrix X = random_matrix(random, N, 1);
    const Matrix Y = random_matrix(random, N, 1);
    const double s = random.any();
    const SmallVec<N> x(X.a.data(), N);
    const SmallVec<N> y(Y.a.data(), N);
    const TnLaDblVec u = dense_vec(X);
    const TnLaDblVec v = dense_vec(Y);
    expect_same_vec<N>(as<Small<N>>(A) * x, dense(A) * u);
    expect_same_vec<N>(x + y, u + v);
    expect_same_vec<N>(x - y, u - v);
    expect_same_vec<N>(-x, -u);
    expect_same_vec<N>(x * s, u * s);
    expect_same_vec<N>(s * x, s * u);
    EXPECT_SAME(x % y, u % v);
    EXPECT_SAME(x.sq_norm(), u.sq_norm());
    EXPECT_SAME(x.mx_norm(), u.mx_norm());
    expect_same_vec<N>(x.dir(), u.dir());
    expect_same_vec<N>(x.ort(), u.ort());
    SmallVec<N> z = x;
    z += y;
    expect_same_vec<N>(z, u + v);
    z -= x;
    expect_same_vec<N>(z, (u + v) - u);
    z *= s;
    expect_same_vec<N>(z, ((u + v) - u) * s);
    z = x;
    z.normalize();
    expect_same_vec<N>(z, u.dir());
  });
}

// --- Solving --------------------------------------------------------------------------------------------

template <std::size_t N>
void expect_same_decomposition(const Matrix& A, const Matrix& B) {
  const TnLaTQRDecompo<Small<N>> actual(as<Small<N>>(A));
  const TnLaTQRDecompo<TnLaDblMat> expected(dense(A));
  EXPECT_EQ(actual.full_rank(), expected.full_rank());
  EXPECT_SAME_MATRIX(actual.R(), expected.R());
  ASSERT_EQ(actual.n_trafo(), expected.n_trafo());
  Matrix W = B;
  Matrix expected_W = B;
  for (int t = 0; t < actual.n_trafo(); ++t) {
    actual.T(t).apply(W.column(0), 1);
    expected.T(t).apply(expected_W.column(0), 1);
  }
  EXPECT_SAME_MATRIX(W, expected_W);
  Small<N> X = as<Small<N>>(A);
  TnLaDblMat expected_X = dense(A);
  EXPECT_EQ(actual.solve(as<Small<N>>(B), X), expected.solve(dense(B), expected_X));
  EXPECT_SAME_MATRIX(X, expected_X);
}

template <std::size_t N>
void expect_same_default_solve(const Matrix& A, const Matrix& B) {
  Small<N> X = as<Small<N>>(A);
  TnLaDblMat expected_X = dense(A);
  EXPECT_EQ(tnla_linearsolve(as<Small<N>>(A), as<Small<N>>(B), X),
            tnla_linearsolve(dense(A), dense(B), expected_X));
  EXPECT_SAME_MATRIX(X, expected_X);
}

// The basis of the null space comes in the first columns of a small matrix.
template <std::size_t N>
void expect_same_solve_by_tolerance(const Matrix& A, const Matrix& B, double tol) {
  Small<N> X;
  Small<N> Z;
  TnLaDblMat expected_X;
  TnLaDblMat expected_Z;
  int rank = -2;
  int expected_rank = -3;
  tnla_linearsolve(as<Small<N>>(A), as<Small<N>>(B), X, tol, &rank, &Z);
  tnla_linearsolve(dense(A), dense(B), expected_X, tol, &expected_rank, &expected_Z);
  EXPECT_EQ(rank, expected_rank);
  EXPECT_SAME_MATRIX(X, expected_X);
  EXPECT_SAME_MATRIX(expected_Z, reference::resized(plain(Z), expected_Z.n_rows(), expected_Z.n_cols()));
}

TEST(SmallLaws, SolvesAreThoseOfDenseOnes) {
  for_all([](Random& random, auto size) {
    constexpr std::size_t N = size.value;
    const Matrix A = numbers(random, N, N);
    const Matrix B = numbers(random, N, N);
    expect_same_decomposition<N>(A, B);
    expect_same_default_solve<N>(A, B);
    expect_same_solve_by_tolerance<N>(A, B, 1e-10);
  });
}

TEST(SmallLaws, SolvesOfDeficientSystemsAreThoseOfDenseOnes) {
  for_all([](Random& random, auto size) {
    constexpr std::size_t N = size.value;
    const Matrix A = random_of_rank(random, N, N, random.below(N + 1));
    const Matrix B = random_matrix(random, N, N);
    expect_same_decomposition<N>(A, B);
    expect_same_default_solve<N>(A, B);
    expect_same_solve_by_tolerance<N>(A, B, 1e-10);
  });
}

}  // namespace
