// SPDX-License-Identifier: MIT

#include <gtest/gtest.h>

#include <cstring>
#include <limits>
#include <new>
#include <type_traits>

#include "reference/small_reference.h"
#include "support/small_types.h"

namespace {

constexpr char kFile[] = "src/tnlatsmallmat.cpp";
constexpr std::size_t kLast = std::numeric_limits<std::size_t>::max();

template <int N>
TnLaDblMat dense(const Values& x) {
  return TnLaDblMat(x.data(), N, N);
}

template <int N>
Mat<N> numbered_mat() {
  return mat<N>(numbered(N * N));
}

// Indices, of which some are out of the range 0 ... n-1.
std::vector<std::size_t> indices(std::size_t n) {
  std::vector<std::size_t> all;
  for (std::size_t i = 0; i <= n + 1; ++i) all.push_back(i);
  all.push_back(kLast);
  return all;
}

Values with_rows_exchanged(std::size_t n, Values x, std::size_t a, std::size_t b) {
  if (a < n && b < n) {
    for (std::size_t j = 0; j < n; ++j) std::swap(x[a + j * n], x[b + j * n]);
  }
  return x;
}

Values with_cols_exchanged(std::size_t n, Values x, std::size_t a, std::size_t b) {
  if (a < n && b < n) {
    for (std::size_t i = 0; i < n; ++i) std::swap(x[i + a * n], x[i + b * n]);
  }
  return x;
}

}  // namespace

// --- The type ------------------------------------------------------------------------------------------

TEST(SmallMatrix, IsAPlainValueOfNTimesNDoubles) {
  for_every_dimension([]<int N>() {
    using M = Mat<N>;
    static_assert(sizeof(M) == N * N * sizeof(double) && alignof(M) == alignof(double));
    static_assert(std::is_trivially_copyable_v<M> && std::is_trivially_destructible_v<M>);
    static_assert(std::is_trivially_copy_constructible_v<M> && std::is_trivially_copy_assignable_v<M>);
    static_assert(std::is_standard_layout_v<M> && !std::is_polymorphic_v<M>);
    static_assert(std::is_same_v<decltype(M::DimIn), const std::size_t> && M::DimIn == N);
    static_assert(std::is_same_v<decltype(M::DimOut), const std::size_t> && M::DimOut == N);
    static_assert(std::is_same_v<decltype(M::size), const std::size_t> && M::size == N * N);
    const std::size_t* const addresses[] = {&M::DimIn, &M::DimOut, &M::size};
    EXPECT_EQ(*addresses[0] * *addresses[1], *addresses[2]);
  });
}

TEST(SmallMatrix, CompoundAssignmentsReturnNothing) {
  using M = Mat<3>;
  static_assert(std::is_void_v<decltype(std::declval<M&>() += M())>);
  static_assert(std::is_void_v<decltype(std::declval<M&>() -= M())>);
  static_assert(std::is_void_v<decltype(std::declval<M&>() *= 2.0)>);
  static_assert(std::is_same_v<decltype(std::declval<M&>() = M()), M&>);
  static_assert(std::is_same_v<decltype(std::declval<M&>() = Vec<3>()), M&>);
  static_assert(std::is_same_v<decltype(std::declval<const M&>()(0, 0)), const double&>);
  static_assert(std::is_same_v<decltype(std::declval<M&>()(0, 0)), double&>);
}

TEST(SmallMatrix, HasNRowsAndNColumnsAndIsNeverEmpty) {
  for_every_dimension([]<int N>() {
    EXPECT_EQ(Mat<N>().n_rows(), static_cast<std::size_t>(N));
    EXPECT_EQ(Mat<N>().n_cols(), static_cast<std::size_t>(N));
    EXPECT_FALSE(Mat<N>().empty());
  });
}

// --- Construction and elements -------------------------------------------------------------------------

TEST(SmallMatrix, StartsAsZero) {
  for_every_dimension([]<int N>() {
    alignas(Mat<N>) unsigned char storage[sizeof(Mat<N>)];
    std::memset(storage, 0xa5, sizeof storage);
    const Mat<N>* const m = new (storage) Mat<N>();
    EXPECT_ELEMENTS(*m, Values(N * N, 0.0));
  });
}

TEST(SmallMatrix, OfSizeAndValueIsAScaledIdentity) {
  for_every_dimension([]<int N>() {
    const AssertionLog log;
    for (const double value : {2.0, 0.0, -3.5, kNaN, kInf, kTiny}) {
      const Values expected = small_reference::with_diagonal(N, Values(N * N, 0.0), value, 0);
      EXPECT_ELEMENTS(Mat<N>(N, N, value), expected);
      EXPECT_ELEMENTS(Mat<N>(N, N, value), elements(TnLaDblMat(N, N, value).array()));
    }
    EXPECT_ELEMENTS(Mat<N>(N, N, -0.0), Values(N * N, 0.0));
    EXPECT_EQ(log.count(), 0u);
  });
}

TEST(SmallMatrix, OfAnotherSizeAssertsOnceAndIsTheScaledIdentityAllTheSame) {
  for_every_dimension([]<int N>() {
    const Values expected = small_reference::with_diagonal(N, Values(N * N, 0.0), 2.0, 0);
    const std::size_t n = N;
    const std::size_t sizes[][2] = {{n, n - 1},     {n - 1, n}, {n + 1, n},     {n, n + 1},
                                    {n + 1, n + 1}, {0, 0},     {n - 1, n - 1}, {n - 1, n + 1}};
    for (const auto& [rows, cols] : sizes) {
      SCOPED_TRACE(std::to_string(rows) + " x " + std::to_string(cols));
      EXPECT_ELEMENTS(Mat<N>(rows, cols, 2.0), expected);
      const AssertionLog log;
      EXPECT_ELEMENTS(Mat<N>(rows, cols, 2.0), expected);
      EXPECT_EQ(log.files(), Files({kFile}));
    }
  });
}

TEST(SmallMatrix, CopiesAreEqualAndIndependent) {
  for_every_dimension([]<int N>() {
    for (const Operands& o : operands(N * N)) {
      SCOPED_TRACE(o.name);
      Mat<N> m = mat<N>(o.x);
      const Mat<N> copy(m);
      Mat<N> assigned = mat<N>(o.y);
      EXPECT_EQ(&(assigned = m), &assigned);
      m *= kNaN;
      EXPECT_ELEMENTS(copy, o.x);
      EXPECT_ELEMENTS(assigned, o.x);
    }
  });
}

TEST(SmallMatrix, CanBeAssignedToItself) {
  for_every_dimension([]<int N>() {
    Mat<N> m = numbered_mat<N>();
    const Mat<N>& same = m;
    EXPECT_EQ(&(m = same), &m);
    EXPECT_ELEMENTS(m, numbered(N * N));
  });
}

TEST(SmallMatrix, AssigningAVectorSetsColumnZeroAlone) {
  for_every_dimension([]<int N>() {
    const Values column = numbered(N, -40.0);
    Values expected = numbered(N * N);
    std::copy(column.begin(), column.end(), expected.begin());
    Mat<N> m = numbered_mat<N>();
    EXPECT_EQ(&(m = vec<N>(column)), &m);
    EXPECT_ELEMENTS(m, expected);
  });
}

TEST(SmallMatrix, ElementsLieColumnByColumn) {
  for_every_dimension([]<int N>() {
    const AssertionLog log;
    Mat<N> m;
    const Mat<N>& view = m;
    double* const first = &m(0, 0);
    EXPECT_EQ(static_cast<void*>(first), static_cast<void*>(&m));
    for (std::size_t j = 0; j < N; ++j) {
      for (std::size_t i = 0; i < N; ++i) {
        EXPECT_EQ(&m(i, j), first + (i + j * N));
        EXPECT_EQ(&view(i, j), first + (i + j * N));
      }
    }
    EXPECT_EQ(log.count(), 0u);
  });
}

TEST(SmallMatrix, ARowIndexOutOfRangeIsAssertedAndUsed) {
  for_every_dimension([]<int N>() {
    if constexpr (N > 1) {
      Mat<N> m = numbered_mat<N>();
      const Mat<N>& view = m;
      const AssertionLog log;
      EXPECT_EQ(&m(N, 0), &m(0, 1));
      EXPECT_EQ(&view(N + 1, 0), &view(1, 1));
      EXPECT_EQ(log.files(), Files({kFile, kFile}));
    }
  });
}

// Indices that wrap around to an element that exists.
TEST(SmallMatrix, BothIndicesOutOfRangeAreTwoAssertions) {
  for_every_dimension([]<int N>() {
    Mat<N> m = numbered_mat<N>();
    const Mat<N>& view = m;
    const std::size_t wrapping = kLast - std::size_t{N} * N + 1;
    const AssertionLog log;
    EXPECT_EQ(&m(wrapping, N), &m(0, 0));
    EXPECT_EQ(log.files(), Files({kFile, kFile}));
    EXPECT_EQ(&view(wrapping, N), &m(0, 0));
    EXPECT_EQ(log.count(), 4u);
  });
}

TEST(SmallMatrix, ChecksTheRowIndexBeforeTheColumnIndex) {
  for_every_dimension([]<int N>() {
    Mat<N> m;
    const Mat<N>& view = m;
    for (const std::size_t i : {std::size_t{N}, std::size_t{N} + 1, kLast}) {
      const std::vector<int> row = failing_checks(1, [&] { m(i, 0) = 1.0; });
      const std::vector<int> column = failing_checks(1, [&] { m(0, i) = 1.0; });
      ASSERT_EQ(row.size(), 1u);
      ASSERT_EQ(column.size(), 1u);
      EXPECT_LT(row[0], column[0]);
      EXPECT_EQ(failing_checks(2, [&] { m(i, i) = 1.0; }), std::vector<int>({row[0], column[0]}));
      EXPECT_EQ(failing_checks(2, [&] { static_cast<void>(view(i, i)); }).size(), 2u);
      EXPECT_EQ(failing_file([&] { static_cast<void>(view(i, 0)); }), kFile);
      EXPECT_EQ(failing_file([&] { static_cast<void>(view(0, i)); }), kFile);
    }
    EXPECT_ELEMENTS(m, Values(N * N, 0.0));
  });
}

// --- Arithmetic ----------------------------------------------------------------------------------------

TEST(SmallMatrix, ElementwiseOperatorsFollowTheLoops) {
  for_every_dimension([]<int N>() {
    const AssertionLog log;
    for (const Operands& o : operands(N * N)) {
      SCOPED_TRACE(o.name);
      const Mat<N> a = mat<N>(o.x);
      const Mat<N> b = mat<N>(o.y);
      const double s = o.y[0];
      EXPECT_ELEMENTS(a + b, small_reference::sum(o.x, o.y));
      EXPECT_ELEMENTS(a - b, small_reference::difference(o.x, o.y));
      EXPECT_ELEMENTS(a * s, small_reference::scaled(o.x, s));
      EXPECT_ELEMENTS(s * a, small_reference::scaled(o.x, s));
      EXPECT_ELEMENTS(-a, small_reference::scaled(o.x, -1.0));
      EXPECT_ELEMENTS(a, o.x);
      EXPECT_ELEMENTS(b, o.y);
    }
    EXPECT_EQ(log.count(), 0u);
  });
}

TEST(SmallMatrix, CompoundOperatorsFollowTheLoops) {
  for_every_dimension([]<int N>() {
    for (const Operands& o : operands(N * N)) {
      SCOPED_TRACE(o.name);
      const Mat<N> b = mat<N>(o.y);
      Mat<N> a = mat<N>(o.x);
      a += b;
      EXPECT_ELEMENTS(a, small_reference::sum(o.x, o.y));
      a = mat<N>(o.x);
      a -= b;
      EXPECT_ELEMENTS(a, small_reference::difference(o.x, o.y));
      a = mat<N>(o.x);
      a *= o.y[0];
      EXPECT_ELEMENTS(a, small_reference::scaled(o.x, o.y[0]));
    }
  });
}

TEST(SmallMatrix, MayBeItsOwnOperand) {
  for_every_dimension([]<int N>() {
    for (const Operands& o : operands(N * N)) {
      SCOPED_TRACE(o.name);
      Mat<N> a = mat<N>(o.x);
      const Mat<N>& same = a;
      a += same;
      EXPECT_ELEMENTS(a, small_reference::sum(o.x, o.x));
      a = mat<N>(o.x);
      a -= same;
      EXPECT_ELEMENTS(a, small_reference::difference(o.x, o.x));
      a = mat<N>(o.x);
      a *= a(0, 0);
      EXPECT_ELEMENTS(a, small_reference::scaled(o.x, o.x[0]));
    }
  });
}

TEST(SmallMatrix, TimesAVectorIsOneSumARow) {
  for_every_dimension([]<int N>() {
    for (const Operands& o : operands(N * N)) {
      SCOPED_TRACE(o.name);
      const Values x(o.y.begin(), o.y.begin() + N);
      Vec<N> v = vec<N>(x);
      EXPECT_ELEMENTS(mat<N>(o.x) * v, small_reference::product(N, o.x, x));
      EXPECT_ELEMENTS(v, x);
      v = mat<N>(o.x) * v;
      EXPECT_ELEMENTS(v, small_reference::product(N, o.x, x));
    }
    EXPECT_ELEMENTS(Mat<N>(N, N, -0.0) * vec<N>(Values(N, 1.0)), Values(N, 0.0));
  });
}

TEST(SmallMatrix, SquaredNormIsOneSumInStorageOrder) {
  for_every_dimension([]<int N>() {
    for (const Operands& o : operands(N * N)) {
      SCOPED_TRACE(o.name);
      EXPECT_NUMBER(mat<N>(o.x).sq_norm(), small_reference::sq_norm(o.x));
    }
  });
}

TEST(SmallMatrix, SquaredNormBelowTheThresholdIsZero) {
  const AroundThreshold t = around_threshold();
  for_every_dimension([&]<int N>() {
    Mat<N> m;
    if constexpr (N >= 2) {
      m(N - 1, 0) = t.reaching[0];
      m(0, N - 1) = t.reaching[1];
      EXPECT_NUMBER(m.sq_norm(), 1e-40);
      m(N - 1, 0) = t.short_of[0];
      m(0, N - 1) = t.short_of[1];
      EXPECT_NUMBER(m.sq_norm(), 0.0);
    }
    m = Mat<N>();
    m(N - 1, N - 1) = -1e-21;
    EXPECT_NUMBER(m.sq_norm(), 0.0);
  });
}

TEST(SmallMatrix, LargestMagnitudeTakesTheFirstElementWithItsSign) {
  const Values one = {-3};
  EXPECT_NUMBER(mat<1>(one).mx_norm(), -3.0);
  EXPECT_NUMBER(mat<2>({-5, 0, -1, 0.5}).mx_norm(), 1.0);
  for_every_dimension([]<int N>() {
    for (const Operands& o : operands(N * N)) {
      SCOPED_TRACE(o.name);
      EXPECT_NUMBER(mat<N>(o.x).mx_norm(), small_reference::mx_norm(o.x));
    }
    for (std::size_t k = 0; k < N * N; ++k) {
      Values x = numbered(N * N);
      x[k] = k == 0 ? 999.0 : -999.0;
      EXPECT_NUMBER(mat<N>(x).mx_norm(), 999.0);
    }
  });
}

TEST(SmallMatrix, AgreesWithTheDenseMatrix) {
  for_every_dimension([]<int N>() {
    for (const Operands& o : operands(N * N)) {
      SCOPED_TRACE(o.name);
      const Mat<N> a = mat<N>(o.x);
      const Mat<N> b = mat<N>(o.y);
      const TnLaDblMat da = dense<N>(o.x);
      const TnLaDblMat db = dense<N>(o.y);
      EXPECT_ELEMENTS(a + b, elements((da + db).array()));
      EXPECT_ELEMENTS(a - b, elements((da - db).array()));
      EXPECT_ELEMENTS(a * o.y[0], elements((da * o.y[0]).array()));
      EXPECT_ELEMENTS(-a, elements((-da).array()));
      EXPECT_ELEMENTS(a * vec<N>(o.y), elements((da * TnLaDblVec(o.y.data(), N)).array()));
      EXPECT_NUMBER(a.mx_norm(), da.mx_norm());
      EXPECT_NUMBER(a.sq_norm(), da.sq_norm());
    }
  });
}

// --- Rows, columns, diagonals --------------------------------------------------------------------------

TEST(SmallMatrix, GivesItsRowsAndColumns) {
  for_every_dimension([]<int N>() {
    const AssertionLog log;
    const Mat<N> m = numbered_mat<N>();
    for (std::size_t k = 0; k < N; ++k) {
      Values row;
      Values column;
      for (std::size_t l = 0; l < N; ++l) {
        row.push_back(m(k, l));
        column.push_back(m(l, k));
      }
      EXPECT_ELEMENTS(m.row_vec(k), row);
      EXPECT_ELEMENTS(m.col_vec(k), column);
    }
    EXPECT_EQ(log.count(), 0u);
  });
}

TEST(SmallMatrix, ARowOrColumnOutOfRangeIsAssertedAndZero) {
  for_every_dimension([]<int N>() {
    const Mat<N> m = numbered_mat<N>();
    for (const std::size_t k : {std::size_t{N}, std::size_t{N} + 1, kLast}) {
      EXPECT_ELEMENTS(m.row_vec(k), Values(N, 0.0));
      EXPECT_ELEMENTS(m.col_vec(k), Values(N, 0.0));
      const AssertionLog log;
      EXPECT_ELEMENTS(m.row_vec(k), Values(N, 0.0));
      EXPECT_EQ(log.files(), Files({kFile}));
      EXPECT_ELEMENTS(m.col_vec(k), Values(N, 0.0));
      EXPECT_EQ(log.files(), Files({kFile, kFile}));
    }
  });
}

TEST(SmallMatrix, SetsOneDiagonalAlone) {
  for_every_dimension([]<int N>() {
    const AssertionLog log;
    std::vector<int> offsets = {std::numeric_limits<int>::min(), std::numeric_limits<int>::max()};
    for (int offset = -N - 1; offset <= N + 1; ++offset) offsets.push_back(offset);
    for (const int offset : offsets) {
      SCOPED_TRACE("offset " + std::to_string(offset));
      for (const double value : {-99.0, -0.0}) {
        Mat<N> m = numbered_mat<N>();
        m.set_diagonal(value, offset);
        EXPECT_ELEMENTS(m, small_reference::with_diagonal(N, numbered(N * N), value, offset));
      }
      TnLaDblMat d = dense<N>(numbered(N * N));
      Mat<N> m = numbered_mat<N>();
      d.set_diagonal(4.0, offset);
      m.set_diagonal(4.0, offset);
      EXPECT_ELEMENTS(m, elements(d.array()));
    }
    EXPECT_EQ(log.count(), 0u);
  });
}

TEST(SmallMatrix, SwapsRowsAndColumnsAndIgnoresBadIndices) {
  for_every_dimension([]<int N>() {
    const AssertionLog log;
    const Values x = numbered(N * N);
    for (const std::size_t a : indices(N)) {
      for (const std::size_t b : indices(N)) {
        SCOPED_TRACE(std::to_string(a) + " with " + std::to_string(b));
        Mat<N> m = mat<N>(x);
        m.swap_rows(a, b);
        EXPECT_ELEMENTS(m, with_rows_exchanged(N, x, a, b));
        m = mat<N>(x);
        m.swap(a, b, true);
        EXPECT_ELEMENTS(m, with_rows_exchanged(N, x, a, b));
        m = mat<N>(x);
        m.swap_cols(a, b);
        EXPECT_ELEMENTS(m, with_cols_exchanged(N, x, a, b));
        m = mat<N>(x);
        m.swap(a, b, false);
        EXPECT_ELEMENTS(m, with_cols_exchanged(N, x, a, b));
      }
    }
    EXPECT_EQ(log.count(), 0u);
  });
}

// --- What only the dense interface needs ---------------------------------------------------------------

TEST(SmallMatrix, ResizeChecksTheRowsThenTheColumnsAndChangesNothing) {
  for_every_dimension([]<int N>() {
    const std::size_t n = N;
    Mat<N> m = numbered_mat<N>();
    for (const bool keep : {false, true}) {
      const std::vector<int> row = failing_checks(9, [&] { m.resize(n + 1, n, keep); });
      const std::vector<int> column = failing_checks(9, [&] { m.resize(n, n + 1, keep); });
      ASSERT_EQ(row.size(), 1u);
      ASSERT_EQ(column.size(), 1u);
      EXPECT_NE(row[0], column[0]);
      const std::vector<int> both = {row[0], column[0]};
      EXPECT_EQ(failing_checks(9, [&] { m.resize(n - 1, n - 1, keep); }), both);
      EXPECT_EQ(failing_checks(9, [&] { m.resize(n - 1, n, keep); }), row);
      EXPECT_EQ(failing_checks(9, [&] { m.resize(n, n - 1, keep); }), column);
      m.resize(0, 0, keep);
      const AssertionLog log;
      m.resize(n, n, keep);
      EXPECT_EQ(log.count(), 0u);
      m.resize(0, kLast, keep);
      EXPECT_EQ(log.files(), Files({kFile, kFile}));
    }
    EXPECT_ELEMENTS(m, numbered(N * N));
  });
}

TEST(SmallMatrix, ReadsTheHandlerAnewBeforeEachCheck) {
  static int n_calls = 0;
  n_calls = 0;
  kit_assertion_handler = [](const char* /*file*/, int /*line*/) {
    ++n_calls;
    kit_assertion_handler = nullptr;
  };
  Mat<3>().resize(0, 0, true);
  EXPECT_EQ(n_calls, 1);
  EXPECT_EQ(kit_assertion_handler, nullptr);
}

TEST(SmallMatrix, InsertingRowsAndRemovingColumnsDoesNothingAtAll) {
  for_every_dimension([]<int N>() {
    const AssertionLog log;
    Mat<N> m = numbered_mat<N>();
    for (const std::size_t pos : indices(N)) {
      for (const int count : {-1, 0, 1, N, N + 1}) {
        m.insert_rows(pos, count);
        m.remove_cols(pos, count);
      }
    }
    EXPECT_ELEMENTS(m, numbered(N * N));
    EXPECT_EQ(log.count(), 0u);
  });
}

// --- Output --------------------------------------------------------------------------------------------

TEST(SmallMatrix, PrintsItsElementsRowByRow) {
  const Mat<2> m = mat<2>({1, 2, -3, 40});
  EXPECT_EQ(printed([&](TnJournal& j) { m.debug(j, 1, false, 2); }),
            "      1.0e+00   -3.0e+00\n"  // 2 blanks, then columns of 11
            "      2.0e+00    4.0e+01\n");
}

TEST(SmallMatrix, PrintsByTheArrayPrinterInColumnsOfDigitsPlusTen) {
  for_every_dimension([]<int N>() {
    TnArray<double> copy;
    copy.set_size(N * N, false);
    for (std::size_t i = 0; i < N * N; ++i) copy[i] = numbered(N * N)[i];
    const Mat<N> m = numbered_mat<N>();
    for (const int digits : {-40, -9, 1, 6, 60, 100}) {
      for (const int indent : {-5, 0, 4, 70, 78, 100}) {
        for (const bool flag : {false, true}) {
          SCOPED_TRACE("digits " + std::to_string(digits) + ", indent " + std::to_string(indent));
          const int per_line = (80 - (indent + Tn_DebugIndentStep())) / (digits + 10);
          EXPECT_EQ(printed([&](TnJournal& j) { m.debug(j, digits, flag, indent); }),
                    printed([&](TnJournal& j) {
                      tn_arraydebug(j, flag, 1, N, copy, per_line, digits + 10, digits, indent);
                    }));
        }
      }
    }
  });
}

TEST(SmallMatrix, PrintsNothingInColumnsOfNoWidth) {
  for_every_dimension([]<int N>() {
    EXPECT_EQ(printed([](TnJournal& j) { Mat<N>().debug(j, -10, true, 0); }), "");
    const AssertionLog log;
    EXPECT_EQ(printed([](TnJournal& j) { Mat<N>().debug(j, -10, true, 0); }), "");
    EXPECT_EQ(log.files(), Files({kFile}));
    EXPECT_NE(printed([](TnJournal& j) { Mat<N>().debug(j, 0, false, 0); }), "");
    EXPECT_EQ(log.count(), 1u);
  });
}
