// SPDX-License-Identifier: MIT

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <string>
#include <utility>
#include <vector>

#include "reference/product_reference.h"
#include "reference/vector_reference.h"
#include "support/assertions.h"
#include "support/bits.h"
#include "support/dense_objects.h"
#include "support/expect_asserts.h"
#include "support/values.h"
#include "tnla_matrix_vector_i.h"

namespace {

using reference::Steps;
using Vector = std::vector<double>;

const Files kOneFailedCheck = {"src/tnla_matrix_vector.cpp"};

// --- Every form gives the product ----------------------------------------------------------------------

// A is m x k, B is k x n.
struct Shape {
  std::size_t m;
  std::size_t k;
  std::size_t n;
};

template <class Check>
void for_shapes(std::size_t smallest, Check check) {
  std::vector<Shape> shapes = {{40, 1, 40}, {1, 300, 1},   {31, 33, 35},  {64, 64, 64}, {17, 130, 9},
                               {129, 7, 5}, {5, 3, 129},   {16, 257, 16}, {37, 40, 39}, {260, 20, 1},
                               {1, 20, 70}, {23, 70, 131}, {66, 5, 34}};
  for (std::size_t m = smallest; m <= 9; ++m) {
    for (std::size_t k = smallest; k <= 9; ++k) {
      for (std::size_t n = smallest; n <= 9; ++n) shapes.push_back({m, k, n});
    }
  }
  for (const Shape& shape : shapes) {
    SCOPED_TRACE(testing::Message() << "m = " << shape.m << ", k = " << shape.k << ", n = " << shape.n);
    Random random(shape.m * 10000 + shape.k * 100 + shape.n);
    check(shape, reference::draw(random, shape.m * shape.k), reference::draw(random, shape.k * shape.n));
  }
}

constexpr std::size_t kRoom = 8;
constexpr double kGuard = -7.25e77;

// The raw product into a block that starts `offset` elements behind a boundary, with guards around.
void expect_raw_product(const Shape& s, const Vector& a, const Vector& b, std::size_t offset) {
  Vector actual(2 * kRoom + offset + s.m * s.n, kGuard);
  Vector expected = actual;
  tnla_mat_mat_prod(s.m, s.k, s.n, a.data(), b.data(), actual.data() + kRoom + offset);
  reference::product(s.m, s.k, s.n, a.data(), b.data(), expected.data() + kRoom + offset);
  EXPECT_SAME_ARRAY(expected.size(), actual.data(), expected.data());
}

TEST(RawProduct, AgreesWithThePlainLoops) {
  for_shapes(0, [](const Shape& s, const Vector& a, const Vector& b) { expect_raw_product(s, a, b, 0); });
}

TEST(RawProduct, DoesNotDependOnAlignment) {
  constexpr Shape s = {9, 5, 6};
  Random random(1);
  for (std::size_t offset = 0; offset < 64; ++offset) {
    SCOPED_TRACE("offset " + std::to_string(offset));
    const Vector a = random.vector(s.m * s.k + 3), b = random.vector(s.k * s.n + 3);
    Vector actual(s.m * s.n + 3, kGuard), expected = actual;
    const std::size_t i = offset % 4, j = offset / 4 % 4, l = offset / 16;
    tnla_mat_mat_prod(s.m, s.k, s.n, a.data() + i, b.data() + j, actual.data() + l);
    reference::product(s.m, s.k, s.n, a.data() + i, b.data() + j, expected.data() + l);
    EXPECT_SAME_ARRAY(expected.size(), actual.data(), expected.data());
  }
}

TEST(RawProduct, WithAnEmptyOperandIsZeroOrNothing) {
  const Vector some(12, 3.0), zeros(12, 0.0);
  Vector c = some;
  tnla_mat_mat_prod(0, 3, 4, some.data(), some.data(), c.data());
  tnla_mat_mat_prod(3, 4, 0, some.data(), some.data(), c.data());
  EXPECT_EQ(c, some);
  tnla_mat_mat_prod(3, 0, 4, nullptr, nullptr, c.data());
  EXPECT_SAME_ARRAY(12, c.data(), zeros.data());
}

TEST(MatrixProduct, AgreesWithThePlainLoopsInEveryForm) {
  for_shapes(1, [](const Shape& s, const Vector& a, const Vector& b) {
    const Vector expected = reference::product(s.m, s.k, s.n, a, b);
    const TnLaDblMat A = mat(s.m, s.k, a), B = mat(s.k, s.n, b);
    const AssertionLog log;
    expect_is(A * B, s.m, s.n, expected);
    TnLaDblMat C;
    tnla_mat_mat_prod(A, B, C);
    expect_is(C, s.m, s.n, expected);
    C = A;
    C *= B;
    expect_is(C, s.m, s.n, expected);
    expect_is(A, s.m, s.k, a);
    expect_is(B, s.k, s.n, b);
    EXPECT_EQ(log.count(), 0u);
  });
}

TEST(MatrixProduct, ShapeAndContentsOfTheResultMatrixDoNotMatter) {
  const TnLaDblMat A = mat(2, 3, {1, 2, 3, 4, 5, 6}), B = mat(3, 2, {1, 0, -1, 2, 1, 0});
  const std::vector<std::pair<std::size_t, std::size_t>> shapes = {{2, 2}, {2, 5}, {5, 2}, {1, 1},
                                                                   {4, 1}, {0, 3}, {3, 0}, {7, 9}};
  for (const auto& [rows, cols] : shapes) {
    SCOPED_TRACE(testing::Message() << rows << " x " << cols);
    TnLaDblMat C = mat(rows, cols, Vector(rows * cols, kNaN));
    tnla_mat_mat_prod(A, B, C);
    expect_is(C, 2, 2, {-4, -4, 5, 8});
  }
}

TEST(MatrixProduct, OperandMayBeTheMatrixItself) {
  for (std::size_t n = 1; n <= 20; ++n) {
    SCOPED_TRACE("n = " + std::to_string(n));
    Random random(n);
    const Vector a = random.vector(n * n);
    const Vector square = reference::product(n, n, n, a, a);
    TnLaDblMat A = mat(n, n, a);
    expect_is(A * A, n, n, square);
    A *= A;
    expect_is(A, n, n, square);
  }
}

TEST(MatrixVectorProduct, AgreesWithThePlainLoopsInEveryForm) {
  for_shapes(1, [](const Shape& s, const Vector& a, Vector b) {
    b.resize(s.k);
    const Vector expected = reference::product(s.m, s.k, 1, a, b);
    const TnLaDblMat A = mat(s.m, s.k, a);
    const TnLaDblVec x = vec(b);
    const AssertionLog log;
    expect_is(A * x, expected);
    TnLaDblVec y;
    tnla_mat_vec_prod(A, x, y);
    expect_is(y, expected);
    y = x;
    y *= A;
    expect_is(y, expected);
    expect_is(x, b);
    EXPECT_EQ(log.count(), 0u);
  });
}

TEST(MatrixVectorProduct, DimensionAndContentsOfTheResultVectorDoNotMatter) {
  const TnLaDblMat A = mat(3, 2, {1, 2, 3, 4, 5, 6});
  for (std::size_t n = 0; n <= 9; ++n) {
    TnLaDblVec y = vec(Vector(n, kNaN));
    tnla_mat_vec_prod(A, vec({1, -1}), y);
    expect_is(y, {-3, -3, -3});
  }
}

TEST(MatrixVectorProduct, MatrixMultipliesFromTheLeftAndMayChangeTheDimension) {
  TnLaDblVec x = vec({1, 10});
  x *= mat(3, 2, {1, 2, 3, 4, 5, 6});
  expect_is(x, {41, 52, 63});
  x *= mat(1, 3, {1, 0, -1});
  expect_is(x, {-22});
}

// --- Every element is one sum, ascending, from +0.0, with each product rounded -------------------------

// The sum over l of row[l] * column[l], as every form computes it at every place of a larger product.
void expect_sum(const Vector& row, const Vector& column, double expected) {
  constexpr std::size_t kRows = 5, kCols = 6;
  const std::size_t k = row.size();
  Vector a, b;
  for (const double element : row) a.insert(a.end(), kRows, element);
  for (std::size_t j = 0; j < kCols; ++j) b.insert(b.end(), column.begin(), column.end());
  const Vector all(kRows * kCols, expected);
  expect_is(mat(kRows, k, a) * mat(k, kCols, b), kRows, kCols, all);
  expect_is(mat(kRows, k, a) * vec(column), Vector(kRows, expected));
  expect_is(mat(1, k, row) * mat(k, 1, column), 1, 1, {expected});
  Vector c(kRows * kCols);
  tnla_mat_mat_prod(kRows, k, kCols, a.data(), b.data(), c.data(), 1, kRows, 1, static_cast<int>(k), kCols,
                    1);
  EXPECT_SAME_ARRAY(c.size(), c.data(), all.data());
}

TEST(ProductSum, RunsInAscendingOrderWithOneAccumulator) {
  Vector x = reference::large_before_small(1.0, 0x1p-53, 16);
  ASSERT_TRUE(reference::tells_orders_apart(x));
  expect_sum(x, Vector(17, 1.0), 1.0);
  expect_sum(Vector(17, 1.0), x, 1.0);
  std::reverse(x.begin(), x.end());
  ASSERT_NE(reference::ascending_sum(x), reference::descending_sum(x));
  expect_sum(x, Vector(17, 1.0), 1.0 + 0x1p-49);
}

TEST(ProductSum, OverflowsWhereTheAscendingSumDoes) {
  expect_sum({kHuge, kHuge, -kHuge}, {1.0, 1.0, 1.0}, kInf);
  expect_sum({kHuge, -kHuge, kHuge}, {1.0, 1.0, 1.0}, kHuge);
  expect_sum({kHuge, kHuge, -kHuge, -kHuge}, {1.0, 1.0, 1.0, 1.0}, kInf);
}

TEST(ProductSum, RoundsEveryProductBeforeItIsAdded) {
  const double c = 1.0 + 0x1p-27;  // c * c is 1 + 2^-26 + 2^-54, and rounds to 1 + 2^-26
  const Vector row = {1.0 + 0x1p-26, c}, column = {-1.0, c};
  ASSERT_EQ(reference::fused_sum(row, column), 0x1p-54);
  expect_sum(row, column, 0.0);
}

// Long sums that differ when they are fused (most, but not all, do).
TEST(ProductSum, LongSumsAreNotFusedEither) {
  Random random(5);
  for (int n_found = 0; n_found < 10;) {
    const Vector x = random.vector(50), y = random.vector(50);
    const double expected = reference::product(1, 50, 1, x, y)[0];
    if (reference::fused_sum(x, y) == expected) continue;
    expect_sum(x, y, expected);
    ++n_found;
  }
}

TEST(ProductSum, StartsFromPositiveZero) {
  expect_sum({-0.0}, {1.0}, 0.0);
  expect_sum({-0.0, 0.0, -kTiny}, {1.0, -1.0, 0.5}, 0.0);
}

TEST(ProductSum, ZeroFactorSkipsNothing) {
  expect_sum({kInf, 1.0}, {0.0, 1.0}, kNaN);
  expect_sum({0.0, 1.0}, {-kInf, 1.0}, kNaN);
  expect_sum({0.0, 1.0}, {kNaN, 1.0}, kNaN);
  expect_sum({kInf, 1.0}, {-2.0, kHuge}, -kInf);
  expect_sum({kInf, -kInf}, {1.0, 1.0}, kNaN);
}

TEST(ProductSum, KeepsSubnormalNumbers) {
  expect_sum({kTiny, 0x1p-1000}, {3.0, 0x1p-74}, 4 * kTiny);
  expect_sum({1e-300}, {1e-10}, 1e-300 * 1e-10);
}

// --- Any steps -----------------------------------------------------------------------------------------

// A rows x cols matrix in a larger buffer: its origin is chosen such that every element lies inside.
struct Placed {
  Placed(std::size_t rows, std::size_t cols, Steps s, Random& random) : steps(s) {
    constexpr std::ptrdiff_t kMargin = 3;
    const std::ptrdiff_t last_row = rows == 0 ? 0 : s.at(rows - 1, 0);
    const std::ptrdiff_t last_col = cols == 0 ? 0 : s.at(0, cols - 1);
    origin = kMargin - std::min<std::ptrdiff_t>(last_row, 0) - std::min<std::ptrdiff_t>(last_col, 0);
    buffer =
        random.vector(static_cast<std::size_t>(std::abs(last_row) + std::abs(last_col) + 1 + 2 * kMargin));
  }
  double* start() { return buffer.data() + origin; }

  Steps steps;
  std::ptrdiff_t origin;
  Vector buffer;
};

void strided_product(const Shape& s, Placed& a, Placed& b, Placed& c) {
  const auto step = [](std::ptrdiff_t value) { return static_cast<int>(value); };
  tnla_mat_mat_prod(s.m, s.k, s.n, a.start(), b.start(), c.start(), step(a.steps.row), step(a.steps.col),
                    step(b.steps.row), step(b.steps.col), step(c.steps.row), step(c.steps.col));
}

// The whole buffer of C is compared, gaps and margins too.  Where elements of C share a place, their sums
// run on there.
void expect_strided_product(const Shape& s, Steps sa, Steps sb, Steps sc) {
  SCOPED_TRACE(testing::Message() << "steps (" << sa.row << ", " << sa.col << ") (" << sb.row << ", "
                                  << sb.col << ") (" << sc.row << ", " << sc.col << ")");
  Random random(s.m * 100 + s.k * 10 + s.n);
  Placed a(s.m, s.k, sa, random), b(s.k, s.n, sb, random), c(s.m, s.n, sc, random);
  Placed expected = c;
  strided_product(s, a, b, c);
  reference::strided_product(s.m, s.k, s.n, a.start(), sa, b.start(), sb, expected.start(), sc);
  EXPECT_SAME_ARRAY(expected.buffer.size(), c.buffer.data(), expected.buffer.data());
}

// Ways to lay out a rows x cols matrix.
std::vector<Steps> layouts(std::size_t rows, std::size_t cols) {
  const std::ptrdiff_t r = static_cast<std::ptrdiff_t>(rows), c = static_cast<std::ptrdiff_t>(cols);
  return {
      {1, r},          {c, 1},      // by columns, by rows
      {1, r + 3},      {c + 2, 1},  // with gaps between the columns or rows
      {2, 2 * r + 1},               // with gaps everywhere
      {-1, r},         {1, -r},     // from the bottom, from the right
      {-c, -1},                     // by rows, from the end
      {0, 1},          {1, 0},      // all rows in one place, all columns in one place
      {0, 0},          {1, 1},      // all elements in one place, all on a diagonal in one place
      {-2, 3 * r + 1},
  };
}

TEST(StridedProduct, AgreesWithThePlainLoopsForAllSteps) {
  for (const Shape& s :
       {Shape{1, 1, 1}, Shape{3, 4, 5}, Shape{6, 9, 7}, Shape{4, 3, 2}, Shape{1, 3, 2}, Shape{2, 3, 1}}) {
    SCOPED_TRACE(testing::Message() << "m = " << s.m << ", k = " << s.k << ", n = " << s.n);
    for (const Steps& sa : layouts(s.m, s.k)) {
      for (const Steps& sb : layouts(s.k, s.n)) {
        for (const Steps& sc : layouts(s.m, s.n)) expect_strided_product(s, sa, sb, sc);
      }
    }
  }
}

TEST(StridedProduct, AgreesWithThePlainLoopsForAllShapes) {
  for_shapes(0, [](const Shape& s, const Vector&, const Vector&) {
    const auto of = [](std::size_t rows, std::size_t cols, std::size_t which) {
      return layouts(rows, cols)[which];
    };
    expect_strided_product(s, of(s.m, s.k, 0), of(s.k, s.n, 0), of(s.m, s.n, 0));
    expect_strided_product(s, of(s.m, s.k, 1), of(s.k, s.n, 3), of(s.m, s.n, 2));
    expect_strided_product(s, of(s.m, s.k, 5), of(s.k, s.n, 6), of(s.m, s.n, 7));
  });
}

TEST(StridedProduct, OfSpecialValuesAgreesWithThePlainLoops) {
  for_shapes(1, [](const Shape& s, const Vector& a, const Vector& b) {
    Vector actual(s.m * s.n, kNaN);
    const int m = static_cast<int>(s.m), k = static_cast<int>(s.k);
    tnla_mat_mat_prod(s.m, s.k, s.n, a.data(), b.data(), actual.data(), 1, m, 1, k, 1, m);
    EXPECT_SAME_ARRAY(actual.size(), actual.data(), reference::product(s.m, s.k, s.n, a, b).data());
  });
}

TEST(StridedProduct, ExchangedStepsTransposeAnOperand) {
  const Vector a = {1, 2, 3, 4, 5, 6};  // by columns (1 3 5 / 2 4 6), by rows (1 2 3 / 4 5 6)
  const Vector b = {1, 0, 2, 0, 1, -1};
  Vector c(4);
  tnla_mat_mat_prod(2, 3, 2, a.data(), b.data(), c.data(), 1, 2, 1, 3, 1, 2);
  EXPECT_EQ(c, Vector({11, 14, -2, -2}));
  tnla_mat_mat_prod(2, 3, 2, a.data(), b.data(), c.data(), 3, 1, 1, 3, 1, 2);
  EXPECT_EQ(c, Vector({7, 16, -1, -1}));
  tnla_mat_mat_prod(2, 3, 2, a.data(), b.data(), c.data(), 1, 2, 2, 1, 2, 1);
  EXPECT_EQ(c, Vector({12, -5, 16, -6}));
}

TEST(StridedProduct, SharedPlaceTakesTheSumsOneAfterTheOther) {
  const Vector a = {1, 2, 3, 4}, b = {1, 10, 100, 1000};  // by columns, 2 x 2 both
  double c[] = {5, 5};
  tnla_mat_mat_prod(2, 2, 2, a.data(), b.data(), c, 1, 2, 1, 2, 0, 0);
  EXPECT_EQ(c[0], 31 + 3100 + 42 + 4200);
  EXPECT_EQ(c[1], 5.0);
}

TEST(StridedProduct, WithoutRowsLeavesTheResultUntouched) {
  double c = 5.0;
  tnla_mat_mat_prod(0, 1, 1, &c, &c, &c, 1, 1, 1, 1, 1, 1);
  tnla_mat_mat_prod(0, 0, 0, nullptr, nullptr, &c, 1, 1, 1, 1, 1, 1);
  EXPECT_SAME(c, 5.0);
}

TEST(StridedProduct, WithoutColumnsLeavesTheResultUntouched) {
  double c = 5.0;
  tnla_mat_mat_prod(1, 1, 0, &c, &c, &c, 1, 1, 1, 1, 1, 1);
  EXPECT_SAME(c, 5.0);
}

TEST(StridedProduct, WithoutInnerDimensionIsZeroBesideTheGaps) {
  Vector c(12, 5.0);
  tnla_mat_mat_prod(2, 0, 3, nullptr, nullptr, c.data(), 1, 2, 1, 1, 2, 4);
  EXPECT_EQ(c, Vector({0, 5, 0, 5, 0, 5, 0, 5, 0, 5, 0, 5}));
}

// --- Operands that do not fit --------------------------------------------------------------------------

template <class Check>
void for_misfits(Check check) {
  struct Case {
    std::size_t a_rows, a_cols, b_rows, b_cols;
  };
  for (const Case& c :
       {Case{2, 3, 2, 3}, Case{0, 0, 0, 0}, Case{0, 3, 3, 2}, Case{2, 0, 0, 3}, Case{2, 3, 3, 0},
        Case{2, 3, 4, 2}, Case{2, 3, 2, 2}, Case{2, 3, 0, 0}, Case{0, 0, 2, 3}, Case{2, 3, 0, 3},
        Case{3, 2, 3, 2}, Case{0, 2, 3, 2}, Case{1, 1, 2, 1}, Case{0, 3, 3, 0}}) {
    SCOPED_TRACE(testing::Message() << c.a_rows << " x " << c.a_cols << " and " << c.b_rows << " x "
                                    << c.b_cols);
    expect_asserts(kOneFailedCheck, [&] { check(ones(c.a_rows, c.a_cols), ones(c.b_rows, c.b_cols)); });
  }
}

TEST(MisfitProduct, OperatorGivesAnEmptyMatrix) {
  expect_asserts(kOneFailedCheck,
                 [] { expect_is(TnLaDblMat(2, 3, 0.0) * TnLaDblMat(2, 3, 0.0), 0, 0, {}); });
  for_misfits([](const TnLaDblMat& A, const TnLaDblMat& B) { expect_is(A * B, 0, 0, {}); });
}

TEST(MisfitProduct, FreeFunctionGivesAnEmptyMatrixOfOneColumn) {
  for_misfits([](const TnLaDblMat& A, const TnLaDblMat& B) {
    TnLaDblMat C = ones(2, 2);
    tnla_mat_mat_prod(A, B, C);
    expect_is(C, 0, 1, {});
  });
}

TEST(MisfitProduct, CompoundAssignmentChangesNothing) {
  for_misfits([](TnLaDblMat A, const TnLaDblMat& B) {
    const TnLaDblMat old = A;
    A *= B;
    expect_unchanged(A, old);
  });
}

template <class Check>
void for_vector_misfits(Check check) {
  struct Case {
    std::size_t rows, cols, dim;
  };
  for (const Case& c : {Case{2, 3, 2}, Case{2, 3, 4}, Case{2, 3, 0}, Case{0, 0, 0}, Case{2, 0, 0},
                        Case{0, 3, 3}, Case{0, 3, 0}, Case{3, 2, 3}, Case{1, 1, 2}, Case{2, 0, 3}}) {
    SCOPED_TRACE(testing::Message() << c.rows << " x " << c.cols << " and dimension " << c.dim);
    expect_asserts(kOneFailedCheck, [&] { check(ones(c.rows, c.cols), ones(c.dim)); });
  }
}

TEST(MisfitProduct, OfMatrixAndVectorIsEmpty) {
  for_vector_misfits([](const TnLaDblMat& A, const TnLaDblVec& x) { expect_is(A * x, {}); });
  for_vector_misfits([](const TnLaDblMat& A, const TnLaDblVec& x) {
    TnLaDblVec y = vec({1, 2, 3});
    tnla_mat_vec_prod(A, x, y);
    expect_is(y, {});
  });
}

TEST(MisfitProduct, VectorTimesItsMatrixChangesNothing) {
  for_vector_misfits([](const TnLaDblMat& A, TnLaDblVec x) {
    const TnLaDblVec old = x;
    x *= A;
    expect_unchanged(x, old);
  });
}

TEST(MisfitProduct, HandlerMayThrowAndNothingHasChanged) {
  const ThrowingAssertions handler;
  TnLaDblMat A = ones(2, 3), C = ones(1, 2);
  TnLaDblVec x = vec({1, 1}), y = vec({1});
  EXPECT_THROW(A *= A, AssertionThrown);
  EXPECT_THROW(tnla_mat_mat_prod(A, A, C), AssertionThrown);
  EXPECT_THROW(tnla_mat_vec_prod(A, x, y), AssertionThrown);
  EXPECT_THROW(x *= A, AssertionThrown);
  expect_is(A, 2, 3, Vector(6, 1.0));
  expect_is(C, 1, 2, {1, 1});
  expect_is(x, {1, 1});
  expect_is(y, {1});
}

// Not allowed, and the elements are nonsense; the address sanitizer sees whether that is all.
TEST(MisusedProduct, WithAnOperandAsItsResultStillHasItsShapeAndStaysInItsMemory) {
  for (std::size_t m = 1; m <= 9; m += 2) {
    for (std::size_t k = 1; k <= 9; k += 2) {
      for (std::size_t n = 1; n <= 9; n += 2) {
        TnLaDblMat A = ones(m, k), B = ones(k, n), left = A, right = B;
        tnla_mat_mat_prod(left, B, left);
        tnla_mat_mat_prod(A, right, right);
        for (const TnLaDblMat* result : {&left, &right}) {
          EXPECT_EQ(result->n_rows(), m);
          EXPECT_EQ(result->n_cols(), n);
          EXPECT_EQ(result->array().size(), m * n);
        }
      }
    }
  }
}

}  // namespace
