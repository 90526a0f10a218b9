// SPDX-License-Identifier: MIT

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "reference/vector_reference.h"
#include "support/assertions.h"
#include "support/bits.h"
#include "support/dense_objects.h"
#include "support/expect_asserts.h"
#include "support/values.h"
#include "tnla_matrix_vector_i.h"

namespace {

using Vector = std::vector<double>;

const Files kOneFailedCheck = {"src/tnla_matrix_vector.cpp"};

using Mat = const TnLaDblMat&;
using Vec = const TnLaDblVec&;

// Operators only read their operands; compound assignments return nothing.
static_assert(std::is_same_v<decltype(std::declval<Mat>() + std::declval<Mat>()), TnLaDblMat>);
static_assert(std::is_same_v<decltype(std::declval<Mat>() * std::declval<Vec>()), TnLaDblVec>);
static_assert(std::is_same_v<decltype(std::declval<Vec>() % std::declval<Vec>()), double>);
static_assert(std::is_void_v<decltype(std::declval<TnLaDblMat&>() += std::declval<Mat>())>);
static_assert(std::is_void_v<decltype(std::declval<TnLaDblMat&>() -= std::declval<Mat>())>);
static_assert(std::is_void_v<decltype(std::declval<TnLaDblMat&>() *= std::declval<Mat>())>);
static_assert(std::is_void_v<decltype(std::declval<TnLaDblMat&>() *= 2.0)>);
static_assert(std::is_void_v<decltype(std::declval<TnLaDblVec&>() += std::declval<Vec>())>);
static_assert(std::is_void_v<decltype(std::declval<TnLaDblVec&>() -= std::declval<Vec>())>);
static_assert(std::is_void_v<decltype(std::declval<TnLaDblVec&>() *= std::declval<Mat>())>);
static_assert(std::is_void_v<decltype(std::declval<TnLaDblVec&>() *= 2.0)>);

// --- Element-wise operations ---------------------------------------------------------------------------

struct Shape {
  std::size_t rows;
  std::size_t cols;
};

const std::vector<Shape>& shapes() {
  static const std::vector<Shape> some = [] {
    std::vector<Shape> result = {{1, 40}, {40, 1}, {13, 17}, {40, 37}, {64, 3}};
    for (std::size_t rows = 1; rows <= 9; ++rows) {
      for (std::size_t cols = 1; cols <= 9; ++cols) result.push_back({rows, cols});
    }
    return result;
  }();
  return some;
}

// operate(A, B) has A's shape and the elements element(a, b), and asserts nothing.
template <class Operate, class Element>
void expect_elementwise_on_matrices(Operate operate, Element element) {
  for (const Shape& shape : shapes()) {
    SCOPED_TRACE(std::to_string(shape.rows) + " x " + std::to_string(shape.cols));
    Random random(shape.rows * 100 + shape.cols);
    const Vector a = random.any_vector(shape.rows * shape.cols);
    const Vector b = random.any_vector(shape.rows * shape.cols);
    Vector expected(a.size());
    for (std::size_t i = 0; i < a.size(); ++i) expected[i] = element(a[i], b[i]);
    const AssertionLog log;
    expect_is(operate(mat(shape.rows, shape.cols, a), mat(shape.rows, shape.cols, b)), shape.rows,
              shape.cols, expected);
    EXPECT_EQ(log.count(), 0u);
  }
}

template <class Operate, class Element>
void expect_elementwise_on_vectors(Operate operate, Element element) {
  for (std::size_t n = 1; n <= 40; ++n) {
    SCOPED_TRACE("dimension " + std::to_string(n));
    Random random(n);
    const Vector x = random.any_vector(n);
    const Vector y = random.any_vector(n);
    Vector expected(n);
    for (std::size_t i = 0; i < n; ++i) expected[i] = element(x[i], y[i]);
    const AssertionLog log;
    expect_is(operate(vec(x), vec(y)), expected);
    EXPECT_EQ(log.count(), 0u);
  }
}

template <class Operate, class Element>
void expect_elementwise(Operate operate, Element element) {
  expect_elementwise_on_matrices(operate, element);
  expect_elementwise_on_vectors(operate, element);
}

// operate(object, s) has the elements a * s.
template <class Operate>
void expect_scaling(Operate operate) {
  for (const double s : special_values()) {
    SCOPED_TRACE("factor " + in_full(s));
    expect_elementwise([&](const auto& a, const auto&) { return operate(a, s); },
                       [&](double a, double) { return a * s; });
  }
}

TEST(Arithmetic, SumIsElementwise) {
  expect_elementwise([](const auto& a, const auto& b) { return a + b; },
                     [](double a, double b) { return a + b; });
}

TEST(Arithmetic, DifferenceIsElementwise) {
  expect_elementwise([](const auto& a, const auto& b) { return a - b; },
                     [](double a, double b) { return a - b; });
}

TEST(Arithmetic, NegationMultipliesByMinusOne) {
  expect_elementwise([](const auto& a, const auto&) { return -a; },
                     [](double a, double) { return a * -1.0; });
}

TEST(Arithmetic, ScalarMultipliesEveryElementFromEitherSide) {
  expect_scaling([](const auto& a, double s) { return a * s; });
  expect_scaling([](const auto& a, double s) { return s * a; });
}

const auto add_to = [](auto& a, const auto& b) { a += b; };
const auto subtract_from = [](auto& a, const auto& b) { a -= b; };

TEST(Arithmetic, CompoundAssignmentsAreElementwise) {
  expect_elementwise([](auto a, const auto& b) { return add_to(a, b), a; },
                     [](double a, double b) { return a + b; });
  expect_elementwise([](auto a, const auto& b) { return subtract_from(a, b), a; },
                     [](double a, double b) { return a - b; });
  expect_scaling([](auto a, double s) { return a *= s, a; });
}

TEST(Arithmetic, OperandMayBeTheObjectItself) {
  const auto twice = [](double a, double) { return a + a; };
  const auto none = [](double a, double) { return a - a; };
  expect_elementwise([](const auto& a, const auto&) { return a + a; }, twice);
  expect_elementwise([](const auto& a, const auto&) { return a - a; }, none);
  expect_elementwise([](auto a, const auto&) { return add_to(a, a), a; }, twice);
  expect_elementwise([](auto a, const auto&) { return subtract_from(a, a), a; }, none);
}

template <class T>
void expect_same_block_throughout(T object) {
  const double* const block = object.array().data();
  add_to(object, object);
  subtract_from(object, object);
  object *= 2.0;
  EXPECT_EQ(object.array().data(), block);
}

TEST(Arithmetic, CompoundAssignmentsWorkInPlace) {
  expect_same_block_throughout(TnLaDblMat(3, 2, 1.0));
  expect_same_block_throughout(TnLaDblVec(5, 2, 7.0));
}

// Every element in turn is the factor of all: its value on entry counts for those before and behind it.
TEST(Arithmetic, ScalarMayBeAnElementOfTheObject) {
  const Vector values = {2.0, -3.0, 0.5, 7.0, -0.25, 11.0};
  for (std::size_t k = 0; k < values.size(); ++k) {
    SCOPED_TRACE("element " + std::to_string(k));
    Vector expected = values;
    for (double& element : expected) element *= values[k];
    TnLaDblVec x = vec(values);
    expect_is(x * x(static_cast<int>(k)), expected);
    expect_is(x(static_cast<int>(k)) * x, expected);
    x *= x(static_cast<int>(k));
    expect_is(x, expected);
    TnLaDblMat A = mat(3, 2, values);
    expect_is(A * A(k % 3, k / 3), 3, 2, expected);
    A *= A(k % 3, k / 3);
    expect_is(A, 3, 2, expected);
  }
}

// --- Operands that do not fit --------------------------------------------------------------------------

template <class Check>
void for_matrices_of_no_common_shape(Check check) {
  const std::vector<std::pair<Shape, Shape>> pairs = {
      {{0, 0}, {0, 0}}, {{0, 5}, {0, 5}}, {{5, 0}, {5, 0}}, {{0, 0}, {2, 3}}, {{2, 3}, {0, 0}},
      {{2, 3}, {2, 0}}, {{2, 3}, {0, 3}}, {{2, 3}, {2, 4}}, {{2, 3}, {3, 3}}, {{2, 3}, {3, 2}},
      {{1, 6}, {2, 3}}, {{0, 3}, {3, 0}}, {{2, 4}, {2, 3}}, {{3, 3}, {2, 3}}};
  for (const auto& [a, b] : pairs) {
    SCOPED_TRACE(testing::Message() << a.rows << " x " << a.cols << " and " << b.rows << " x " << b.cols);
    expect_asserts(kOneFailedCheck,
                   [&, A = ones(a.rows, a.cols), B = ones(b.rows, b.cols)] { check(A, B); });
  }
}

template <class Check>
void for_vectors_of_no_common_dimension(Check check) {
  const std::vector<std::pair<std::size_t, std::size_t>> pairs = {{0, 0}, {0, 3}, {3, 0},
                                                                  {2, 3}, {3, 2}, {1, 2}};
  for (const auto& [n, m] : pairs) {
    SCOPED_TRACE(testing::Message() << "dimensions " << n << " and " << m);
    expect_asserts(kOneFailedCheck, [&, x = ones(n), y = ones(m)] { check(x, y); });
  }
}

TEST(MisfitMatrices, SumAndDifferenceAreEmpty) {
  for_matrices_of_no_common_shape([](Mat A, Mat B) { expect_is(A + B, 0, 0, {}); });
  for_matrices_of_no_common_shape([](Mat A, Mat B) { expect_is(A - B, 0, 0, {}); });
}

TEST(MisfitMatrices, CompoundAssignmentsChangeNothing) {
  for_matrices_of_no_common_shape([](TnLaDblMat A, Mat B) {
    const TnLaDblMat old = A;
    A += B;
    expect_unchanged(A, old);
  });
  for_matrices_of_no_common_shape([](TnLaDblMat A, Mat B) {
    const TnLaDblMat old = A;
    A -= B;
    expect_unchanged(A, old);
  });
}

TEST(MisfitVectors, SumAndDifferenceAreEmpty) {
  for_vectors_of_no_common_dimension([](Vec x, Vec y) { expect_is(x + y, {}); });
  for_vectors_of_no_common_dimension([](Vec x, Vec y) { expect_is(x - y, {}); });
}

TEST(MisfitVectors, CompoundAssignmentsChangeNothing) {
  for_vectors_of_no_common_dimension([](TnLaDblVec x, Vec y) {
    const TnLaDblVec old = x;
    x += y;
    expect_unchanged(x, old);
  });
  for_vectors_of_no_common_dimension([](TnLaDblVec x, Vec y) {
    const TnLaDblVec old = x;
    x -= y;
    expect_unchanged(x, old);
  });
}

TEST(MisfitVectors, ScalarProductIsZero) {
  for_vectors_of_no_common_dimension([](Vec x, Vec y) { EXPECT_SAME(x % y, 0.0); });
  for_vectors_of_no_common_dimension([](Vec x, Vec y) { EXPECT_SAME(tnla_scalprod(x, y), 0.0); });
  for_vectors_of_no_common_dimension(
      [](Vec x, Vec y) { EXPECT_SAME(tnla_scalprod(x, y, true, true), 0.0); });
}

TEST(MisfitVectors, LinearCombinationIsEmpty) {
  for_vectors_of_no_common_dimension([](Vec x, Vec y) {
    TnLaDblVec z = vec({1.0, 2.0, 3.0});
    tnla_lincomb(x, 1.0, y, 1.0, z);
    expect_is(z, {});
  });
  for_vectors_of_no_common_dimension([](TnLaDblVec x, const TnLaDblVec& y) {
    tnla_lincomb(x, 1.0, y, 1.0, x);
    expect_is(x, {});
  });
}

TEST(EmptyMatrix, CannotBeScaled) {
  for (const Shape& shape : {Shape{0, 0}, Shape{0, 5}, Shape{5, 0}}) {
    SCOPED_TRACE(testing::Message() << shape.rows << " x " << shape.cols);
    const TnLaDblMat A = ones(shape.rows, shape.cols);
    expect_asserts(kOneFailedCheck, [&] { expect_is(A * 2.0, 0, 1, {}); });
    expect_asserts(kOneFailedCheck, [&] { expect_is(2.0 * A, 0, 1, {}); });
    expect_asserts(kOneFailedCheck, [&] { expect_is(-A, 0, 1, {}); });
    expect_asserts(kOneFailedCheck, [&] {
      TnLaDblMat copy = A;
      copy *= 2.0;
      expect_unchanged(copy, A);
    });
  }
}

TEST(EmptyMatrix, HasTheNormZero) {
  for (const Shape& shape : {Shape{0, 0}, Shape{0, 5}, Shape{5, 0}}) {
    expect_asserts(kOneFailedCheck, [&] { EXPECT_SAME(ones(shape.rows, shape.cols).sq_norm(), 0.0); });
    const AssertionLog log;
    EXPECT_SAME(ones(shape.rows, shape.cols).mx_norm(), -999999999.0);
    EXPECT_EQ(log.count(), 0u);
  }
}

TEST(EmptyVector, CannotBeScaled) {
  const TnLaDblVec x;
  expect_asserts(kOneFailedCheck, [&] { expect_is(x * 2.0, {}); });
  expect_asserts(kOneFailedCheck, [&] { expect_is(2.0 * x, {}); });
  expect_asserts(kOneFailedCheck, [&] { expect_is(-x, {}); });
  expect_asserts(kOneFailedCheck, [&] {
    TnLaDblVec copy = x;
    copy *= 2.0;
    expect_is(copy, {});
  });
}

TEST(EmptyVector, HasNeitherLengthNorDirection) {
  const TnLaDblVec x;
  expect_asserts(kOneFailedCheck, [&] { EXPECT_SAME(x.sq_norm(), 0.0); });
  expect_asserts(kOneFailedCheck, [&] { expect_is(x.dir(), {}); });
  expect_asserts(kOneFailedCheck, [&] { expect_is(x.ort(), {}); });
  expect_asserts(kOneFailedCheck, [&] {
    TnLaDblVec copy = x;
    copy.normalize();
    expect_is(copy, {});
  });
  const AssertionLog log;
  EXPECT_SAME(x.mx_norm(), -999999999.0);
  EXPECT_EQ(log.count(), 0u);
}

TEST(Misfit, EveryOperationOfAnExpressionIsCheckedOnItsOwn) {
  const AssertionLog log;
  expect_is((ones(2, 3) + ones(3, 2)) * 2.0 + ones(2, 3), 0, 0, {});
  EXPECT_EQ(log.files(), Files(3, kOneFailedCheck[0]));
}

TEST(Misfit, HandlerMayThrowAndNothingHasChanged) {
  const ThrowingAssertions handler;
  TnLaDblMat A = ones(2, 3);
  TnLaDblVec x = ones(3), z = ones(2);
  EXPECT_THROW(A += ones(3, 2), AssertionThrown);
  EXPECT_THROW(x -= z, AssertionThrown);
  EXPECT_THROW(tnla_lincomb(x, 1.0, z, 1.0, z), AssertionThrown);
  expect_is(A, 2, 3, Vector(6, 1.0));
  expect_is(x, Vector(3, 1.0));
  expect_is(z, Vector(2, 1.0));
}

// --- Norms ---------------------------------------------------------------------------------------------

template <class Check>
void for_random_vectors(Check check) {
  for (std::size_t n = 1; n <= 40; ++n) {
    for (std::uint64_t seed = 1; seed <= 4; ++seed) {
      SCOPED_TRACE("dimension " + std::to_string(n) + ", seed " + std::to_string(seed));
      Random random(seed * 1000 + n);
      const AssertionLog log;
      check(reference::draw(random, n), reference::draw(random, n));
      EXPECT_EQ(log.count(), 0u);
    }
  }
}

double scalprod_of(const Vector& x, const Vector& y, bool norm_x = false, bool norm_y = false) {
  return reference::scalprod(static_cast<int>(x.size()), x.data(), y.data(), norm_x, norm_y);
}

TEST(SquaredNorm, IsTheAscendingSumOfSquares) {
  for_random_vectors([](const Vector& x, const Vector&) {
    const double expected = reference::sq_norm(static_cast<int>(x.size()), x.data());
    EXPECT_SAME(vec(x).sq_norm(), expected);
    EXPECT_SAME(mat(1, x.size(), x).sq_norm(), expected);
    EXPECT_SAME(mat(x.size(), 1, x).sq_norm(), expected);
  });
}

TEST(SquaredNorm, AddsInStorageOrderWithOneAccumulator) {
  Vector x = reference::large_before_small(1.0, 0x1p-27, 19);
  EXPECT_SAME(vec(x).sq_norm(), 1.0);
  EXPECT_SAME(mat(4, 5, x).sq_norm(), 1.0);
  std::reverse(x.begin(), x.end());
  EXPECT_SAME(vec(x).sq_norm(), 1.0 + 5 * 0x1p-52);  // 1 + 19 * 2^-54 lies nearest to this
  EXPECT_SAME(mat(4, 5, x).sq_norm(), 1.0 + 5 * 0x1p-52);
}

TEST(SquaredNorm, BelowTheZeroThresholdIsZero) {
  const Vector below = reference::with_square_sum(ulp_below(1e-40));
  const Vector at = reference::with_square_sum(1e-40);
  EXPECT_SAME(vec(below).sq_norm(), 0.0);
  EXPECT_SAME(mat(2, 1, below).sq_norm(), 0.0);
  EXPECT_SAME(vec(at).sq_norm(), 1e-40);
  EXPECT_SAME(mat(2, 1, at).sq_norm(), 1e-40);
}

TEST(MaximumNorm, AgreesWithThePlainLoop) {
  for_random_vectors([](const Vector& x, const Vector&) {
    EXPECT_SAME(vec(x).mx_norm(), reference::mx_norm(x));
    EXPECT_SAME(mat(1, x.size(), x).mx_norm(), reference::mx_norm(x));
    EXPECT_SAME(mat(x.size(), 1, x).mx_norm(), reference::mx_norm(x));
  });
}

void expect_mx_norm(const Vector& a, double expected) {
  EXPECT_SAME(vec(a).mx_norm(), expected);
  EXPECT_SAME(mat(a.size(), 1, a).mx_norm(), expected);
  EXPECT_SAME(mat(1, a.size(), a).mx_norm(), expected);
}

TEST(MaximumNorm, FirstElementCountsWithItsSign) {
  expect_mx_norm({-5.0}, -5.0);
  expect_mx_norm({-5.0, -1.0}, 1.0);
  expect_mx_norm({-3.0, 2.0}, 2.0);
  expect_mx_norm({5.0, -1.0}, 5.0);
  expect_mx_norm({5.0, -7.0}, 7.0);
  expect_mx_norm({-0.0}, -0.0);
}

TEST(MaximumNorm, EqualMagnitudeReplaces) {
  expect_mx_norm({-0.0, 0.0}, 0.0);
  expect_mx_norm({-0.0, -0.0}, 0.0);
}

TEST(MaximumNorm, NaNReplacesAndIsReplaced) {
  expect_mx_norm({5.0, kNaN}, kNaN);
  expect_mx_norm({kNaN, 1.0}, 1.0);
  expect_mx_norm({5.0, kNaN, 1.0}, 1.0);
  expect_mx_norm({kNaN}, kNaN);
  expect_mx_norm({1.0, -kInf, 2.0}, kInf);
}

// --- Scalar product and linear combination -------------------------------------------------------------

TEST(VectorScalprod, AgreesWithThePlainLoopForAllFlags) {
  for_random_vectors([](const Vector& x, const Vector& y) {
    const TnLaDblVec a = vec(x), b = vec(y);
    EXPECT_SAME(a % b, scalprod_of(x, y));
    EXPECT_SAME(a % a, scalprod_of(x, x));
    EXPECT_SAME(tnla_scalprod(a, b), scalprod_of(x, y));
    EXPECT_SAME(tnla_scalprod(a, b, true), scalprod_of(x, y, true));
    EXPECT_SAME(tnla_scalprod(a, b, false, true), scalprod_of(x, y, false, true));
    EXPECT_SAME(tnla_scalprod(a, b, true, true), scalprod_of(x, y, true, true));
  });
}

TEST(VectorScalprod, AddsInAscendingOrder) {
  const Vector x = reference::large_before_small(1.0, 0x1p-53, 16);
  ASSERT_TRUE(reference::tells_orders_apart(x));
  EXPECT_SAME(vec(x) % vec(Vector(17, 1.0)), 1.0);
}

TEST(VectorScalprod, BelowTheZeroThresholdIsZero) {
  EXPECT_SAME(vec({ulp_below(1e-40)}) % vec({-1.0}), 0.0);
  EXPECT_SAME(vec({1e-40}) % vec({-1.0}), -1e-40);
}

Vector combined(const Vector& x, double a, const Vector& y, double b) {
  Vector z(x.size());
  reference::lincomb(static_cast<int>(x.size()), x.data(), a, y.data(), b, z.data(), false, false, false);
  return z;
}

TEST(VectorLincomb, CombinesIntoAVectorOfAnyDimension) {
  for_random_vectors([](const Vector& x, const Vector& y) {
    const double a = x.back(), b = -0.75;
    for (const std::size_t n : {std::size_t{0}, x.size() - 1, x.size(), x.size() + 1}) {
      TnLaDblVec z = vec(Vector(n, kNaN));
      tnla_lincomb(vec(x), a, vec(y), b, z);
      expect_is(z, combined(x, a, y, b));
    }
  });
}

TEST(VectorLincomb, ResultMayBeAnOperand) {
  for_random_vectors([](const Vector& x, const Vector& y) {
    TnLaDblVec first = vec(x), second = vec(y), both = vec(x);
    tnla_lincomb(first, first(0), second, -0.75, first);
    expect_is(first, combined(x, x[0], y, -0.75));
    tnla_lincomb(vec(x), 0.75, second, second(0), second);
    expect_is(second, combined(x, 0.75, y, y[0]));
    tnla_lincomb(both, 3.0, both, -2.0, both);
    expect_is(both, combined(x, 3.0, x, -2.0));
  });
}

TEST(VectorLincomb, KeepsABlockThatSuffices) {
  TnLaDblVec z(8, 0, 1.0);
  const double* const block = z.array().data();
  tnla_lincomb(vec({1.0, 2.0}), 2.0, vec({3.0, 5.0}), -1.0, z);
  expect_is(z, {-1.0, -1.0});
  EXPECT_EQ(z.array().data(), block);
}

// --- Directions ----------------------------------------------------------------------------------------

TEST(VectorNormalize, AgreesWithThePlainLoop) {
  for_random_vectors([](const Vector& values, const Vector&) {
    Vector expected = values;
    reference::normalize_by_reciprocal(expected);
    TnLaDblVec x = vec(values);
    expect_is(static_cast<Vec>(x).dir(), expected);
    expect_is(x, values);
    x.normalize();
    expect_is(x, expected);
  });
}

void expect_normalized(const Vector& values, const Vector& expected) {
  TnLaDblVec x = vec(values);
  expect_is(x.dir(), expected);
  x.normalize();
  expect_is(x, expected);
}

TEST(VectorNormalize, MultipliesByTheReciprocalLength) {
  expect_normalized({3.0, 4.0}, {3.0 * (1.0 / 5.0), 4.0 * (1.0 / 5.0)});
  ASSERT_NE(3.0 * (1.0 / 5.0), 3.0 / 5.0);
}

TEST(VectorNormalize, NumericallyZeroVectorBecomesZero) {
  expect_normalized({0.0, 0.0, 0.0}, {0.0, 0.0, 0.0});
  expect_normalized({-0.0, 1e-21}, {0.0, 0.0});
  expect_normalized(reference::with_square_sum(ulp_below(1e-40)), {0.0, 0.0});
  const Vector x = reference::with_square_sum(1e-40);
  const double factor = 1.0 / std::sqrt(1e-40);
  expect_normalized(x, {x[0] * factor, x[1] * factor});
}

TEST(VectorNormalize, NaNAndInfinityPropagate) {
  expect_normalized({1.0, kNaN}, {kNaN, kNaN});
  expect_normalized({-kInf, -1.0}, {kNaN, -0.0});
  expect_normalized({1e200, -1.0}, {0.0, -0.0});
}

TEST(VectorOrt, IsTheOrthogonalUnitVector) {
  for_random_vectors([](const Vector& values, const Vector&) {
    Vector expected(values.size(), 0.0);
    reference::ortho_vec(static_cast<int>(values.size()), values.data(), expected.data());
    const TnLaDblVec x = vec(values);
    expect_is(x.ort(), expected);
    expect_is(x, values);
  });
}

TEST(VectorOrt, OfOneDimensionIsZero) { expect_is(vec({5.0}).ort(), {0.0}); }

TEST(VectorOrt, OfTheZeroVectorIsTheFirstAxis) { expect_is(vec({0.0, 0.0, 0.0}).ort(), {1.0, 0.0, 0.0}); }

}  // namespace
