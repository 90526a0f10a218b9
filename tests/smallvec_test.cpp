// SPDX-License-Identifier: MIT

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <new>
#include <type_traits>

#include "reference/small_reference.h"
#include "support/small_types.h"

namespace {

constexpr char kFile[] = "src/tnlatsmallvec.cpp";

template <int N>
TnLaDblVec dense(const Values& x) {
  return TnLaDblVec(x.data(), N);
}

// A vector built by `construct` where 7.0 stood before, and what lies behind it: elements that are not
// written are still 7.0.
constexpr int kBehind = 4;

template <int N, class F>
Values built_over_sevens(F construct) {
  constexpr std::size_t n = N + kBehind;
  alignas(Vec<N>) unsigned char storage[n * sizeof(double)];
  const Values sevens(n, 7.0);
  std::memcpy(storage, sevens.data(), sizeof storage);
  construct(static_cast<void*>(storage));
  Values out(n);
  std::memcpy(out.data(), storage, sizeof storage);
  return out;
}

// The first n elements of x, and behind them `rest`.
Values front(const Values& x, int n, int size, double rest) {
  Values out(static_cast<std::size_t>(size), rest);
  for (std::size_t i = 0; i < out.size() && static_cast<int>(i) < n; ++i) out[i] = x[i];
  return out;
}

}  // namespace

// --- The type ------------------------------------------------------------------------------------------

TEST(SmallVector, IsAPlainValueOfNDoubles) {
  for_every_dimension([]<int N>() {
    using V = Vec<N>;
    static_assert(sizeof(V) == N * sizeof(double) && alignof(V) == alignof(double));
    static_assert(std::is_trivially_copyable_v<V> && std::is_trivially_destructible_v<V>);
    static_assert(std::is_trivially_copy_constructible_v<V> && std::is_trivially_copy_assignable_v<V>);
    static_assert(std::is_standard_layout_v<V> && !std::is_polymorphic_v<V>);
    static_assert(std::is_same_v<decltype(V::Dim), const int> && V::Dim == N);
    const int* const address = &V::Dim;
    EXPECT_EQ(*address, N);
  });
}

TEST(SmallVector, CompoundAssignmentsReturnNothing) {
  using V = Vec<3>;
  static_assert(std::is_void_v<decltype(std::declval<V&>() += V())>);
  static_assert(std::is_void_v<decltype(std::declval<V&>() -= V())>);
  static_assert(std::is_void_v<decltype(std::declval<V&>() *= 2.0)>);
  static_assert(std::is_same_v<decltype(std::declval<V&>() = V()), V&>);
  static_assert(std::is_same_v<decltype(std::declval<const V&>()(0)), const double&>);
  static_assert(std::is_same_v<decltype(std::declval<V&>()(0)), double&>);
}

TEST(SmallVector, HasItsDimensionAndIsNeverEmpty) {
  for_every_dimension([]<int N>() {
    EXPECT_EQ(Vec<N>().dim(), N);
    EXPECT_FALSE(Vec<N>().empty());
  });
}

// --- Construction and elements -------------------------------------------------------------------------

TEST(SmallVector, StartsAsZero) {
  for_every_dimension([]<int N>() {
    const Values x = built_over_sevens<N>([](void* place) { new (place) Vec<N>(); });
    EXPECT_VALUES(x, front(Values(N, 0.0), N, N + kBehind, 7.0));
  });
}

TEST(SmallVector, TakesItsValuesInOrder) {
  for_every_dimension([]<int N>() {
    const AssertionLog log;
    const Values x = numbered(N);
    EXPECT_ELEMENTS(Vec<N>(x.data(), N), x);
    EXPECT_EQ(log.count(), 0u);
  });
}

TEST(SmallVector, WritesOnlyWhatTheValuesHold) {
  for_every_dimension([]<int N>() {
    const Values x = numbered(N + 3);
    for (int n = -2; n <= N + 3; ++n) {
      SCOPED_TRACE("n = " + std::to_string(n));
      const auto construct = [&](void* place) { new (place) Vec<N>(x.data(), n); };
      EXPECT_VALUES(built_over_sevens<N>(construct), front(x, std::min(n, N), N + kBehind, 7.0));
      const AssertionLog log;
      EXPECT_VALUES(built_over_sevens<N>(construct), front(x, std::min(n, N), N + kBehind, 7.0));
      EXPECT_EQ(log.files(), n == N ? Files() : Files({kFile}));
    }
  });
}

TEST(SmallVector, WritesOnlyWhatTheArrayHolds) {
  for_every_dimension([]<int N>() {
    const Values x = numbered(N + 3);
    for (int n = 0; n <= N + 3; ++n) {
      SCOPED_TRACE("size " + std::to_string(n));
      const TnLaDblVec source(x.data(), n);
      const auto construct = [&](void* place) { new (place) Vec<N>(source.array()); };
      EXPECT_VALUES(built_over_sevens<N>(construct), front(x, std::min(n, N), N + kBehind, 7.0));
      const AssertionLog log;
      EXPECT_VALUES(built_over_sevens<N>(construct), front(x, std::min(n, N), N + kBehind, 7.0));
      EXPECT_EQ(log.files(), n == N ? Files() : Files({kFile}));
    }
  });
}

TEST(SmallVector, CopiesAreEqualAndIndependent) {
  for_every_dimension([]<int N>() {
    for (const Operands& o : operands(N)) {
      SCOPED_TRACE(o.name);
      Vec<N> x = vec<N>(o.x);
      const Vec<N> copy(x);
      Vec<N> assigned = vec<N>(o.y);
      EXPECT_EQ(&(assigned = x), &assigned);
      x.initialize(7.0);
      EXPECT_ELEMENTS(copy, o.x);
      EXPECT_ELEMENTS(assigned, o.x);
    }
  });
}

TEST(SmallVector, CanBeAssignedToItself) {
  for_every_dimension([]<int N>() {
    Vec<N> x = vec<N>(numbered(N));
    const Vec<N>& same = x;
    EXPECT_EQ(&(x = same), &x);
    EXPECT_ELEMENTS(x, numbered(N));
  });
}

TEST(SmallVector, ElementsLieInOrderInItsStorage) {
  for_every_dimension([]<int N>() {
    const AssertionLog log;
    Vec<N> x;
    const Vec<N>& view = x;
    EXPECT_EQ(static_cast<void*>(x.data()), static_cast<void*>(&x));
    EXPECT_EQ(view.data(), x.data());
    for (int i = 0; i < N; ++i) {
      EXPECT_EQ(&x(i), x.data() + i);
      EXPECT_EQ(&view(i), x.data() + i);
    }
    EXPECT_EQ(log.count(), 0u);
  });
}

TEST(SmallVector, AssertsAnIndexFromTheDimensionOn) {
  for_every_dimension([]<int N>() {
    Vec<N> x;
    const Vec<N>& view = x;
    for (const int i : {N, N + 1, 2 * N + 1, 0x7fffffff}) {
      SCOPED_TRACE("i = " + std::to_string(i));
      EXPECT_EQ(failing_file([&] { x(i) = 1.0; }), kFile);
      EXPECT_EQ(failing_file([&] { static_cast<void>(view(i)); }), kFile);
    }
  });
}

#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__) && !defined(__clang__)
// Here the access itself is made, at a place that exists, but in the neighbour of the vector.
TEST(SmallVector, AccessesTheElementEvenAfterAFailedCheck) {
  for_every_dimension([]<int N>() {
    struct {
      double before[N];
      Vec<N> x;
      double behind[N];
    } row = {};
    Vec<N>& x = row.x;
    const Vec<N>& view = row.x;
    volatile int i = N;  // or the compiler warns
    const AssertionLog log;
    EXPECT_EQ(&x(i), row.behind);
    EXPECT_EQ(&view(i), row.behind);
    EXPECT_EQ(log.files(), Files({kFile, kFile}));
    i = -1;
    EXPECT_EQ(&x(i), row.before + N - 1);
    EXPECT_EQ(&view(i), row.before + N - 1);
    EXPECT_EQ(log.count(), 2u) << "a negative index is not caught";
  });
}
#endif

TEST(SmallVector, IsInitializedFromAVectorValuesOrOneValue) {
  for_every_dimension([]<int N>() {
    const AssertionLog log;
    for (const Operands& o : operands(N)) {
      SCOPED_TRACE(o.name);
      Vec<N> x = vec<N>(o.y);
      x.initialize(vec<N>(o.x));
      EXPECT_ELEMENTS(x, o.x);
      x.initialize(o.y.data());
      EXPECT_ELEMENTS(x, o.y);
      x.initialize(o.x[0]);
      EXPECT_ELEMENTS(x, Values(N, o.x[0]));
    }
    EXPECT_EQ(log.count(), 0u);
  });
}

TEST(SmallVector, CanBeInitializedFromItself) {
  for_every_dimension([]<int N>() {
    Vec<N> x = vec<N>(numbered(N));
    x.initialize(x);
    EXPECT_ELEMENTS(x, numbered(N));
    x.initialize(x.data());
    EXPECT_ELEMENTS(x, numbered(N));
  });
}

TEST(SmallVector, SwapsAllElements) {
  for_every_dimension([]<int N>() {
    Vec<N> x = vec<N>(numbered(N));
    Vec<N> y = vec<N>(numbered(N, -50.0));
    x.swap(y);
    EXPECT_ELEMENTS(x, numbered(N, -50.0));
    EXPECT_ELEMENTS(y, numbered(N));
    x.swap(x);
    EXPECT_ELEMENTS(x, numbered(N, -50.0));
  });
}

TEST(SmallVector, ResizeChecksTheDimensionAndChangesNothing) {
  for_every_dimension([]<int N>() {
    Vec<N> x = vec<N>(numbered(N));
    for (const bool keep : {false, true}) {
      for (const int n : {-1, 0, N - 1, N, N + 1, -N}) {
        SCOPED_TRACE("n = " + std::to_string(n));
        x.resize(n, keep);
        const AssertionLog log;
        x.resize(n, keep);
        EXPECT_EQ(log.files(), n == N ? Files() : Files({kFile}));
        EXPECT_ELEMENTS(x, numbered(N));
      }
    }
  });
}

// --- Arithmetic ----------------------------------------------------------------------------------------

TEST(SmallVector, ElementwiseOperatorsFollowTheLoops) {
  for_every_dimension([]<int N>() {
    const AssertionLog log;
    for (const Operands& o : operands(N)) {
      SCOPED_TRACE(o.name);
      const Vec<N> x = vec<N>(o.x);
      const Vec<N> y = vec<N>(o.y);
      const double s = o.y[0];
      EXPECT_ELEMENTS(x + y, small_reference::sum(o.x, o.y));
      EXPECT_ELEMENTS(x - y, small_reference::difference(o.x, o.y));
      EXPECT_ELEMENTS(x * s, small_reference::scaled(o.x, s));
      EXPECT_ELEMENTS(s * x, small_reference::scaled(o.x, s));
      EXPECT_ELEMENTS(-x, small_reference::scaled(o.x, -1.0));
      EXPECT_ELEMENTS(x, o.x);
      EXPECT_ELEMENTS(y, o.y);
    }
    EXPECT_EQ(log.count(), 0u);
  });
}

TEST(SmallVector, CompoundOperatorsFollowTheLoops) {
  for_every_dimension([]<int N>() {
    for (const Operands& o : operands(N)) {
      SCOPED_TRACE(o.name);
      const Vec<N> y = vec<N>(o.y);
      Vec<N> x = vec<N>(o.x);
      x += y;
      EXPECT_ELEMENTS(x, small_reference::sum(o.x, o.y));
      x = vec<N>(o.x);
      x -= y;
      EXPECT_ELEMENTS(x, small_reference::difference(o.x, o.y));
      x = vec<N>(o.x);
      x *= o.y[0];
      EXPECT_ELEMENTS(x, small_reference::scaled(o.x, o.y[0]));
    }
  });
}

TEST(SmallVector, MayBeItsOwnOperand) {
  for_every_dimension([]<int N>() {
    for (const Operands& o : operands(N)) {
      SCOPED_TRACE(o.name);
      Vec<N> x = vec<N>(o.x);
      const Vec<N>& same = x;
      EXPECT_ELEMENTS(x * x(0), small_reference::scaled(o.x, o.x[0]));
      x += same;
      EXPECT_ELEMENTS(x, small_reference::sum(o.x, o.x));
      x = vec<N>(o.x);
      x -= same;
      EXPECT_ELEMENTS(x, small_reference::difference(o.x, o.x));
      x = vec<N>(o.x);
      x *= x(0);
      EXPECT_ELEMENTS(x, small_reference::scaled(o.x, o.x[0]));
    }
  });
}

TEST(SmallVector, ScalarProductIsOneSumInOrder) {
  for_every_dimension([]<int N>() {
    for (const Operands& o : operands(N)) {
      SCOPED_TRACE(o.name);
      EXPECT_NUMBER(vec<N>(o.x) % vec<N>(o.y), small_reference::dot(o.x, o.y));
      EXPECT_NUMBER(vec<N>(o.x) % vec<N>(o.x), small_reference::dot(o.x, o.x));
    }
  });
}

TEST(SmallVector, ScalarProductKeepsTinyValuesWhereTheDenseOneDoesNot) {
  for_every_dimension([]<int N>() {
    Values x(N, 0.0);
    Values y(N, 0.0);
    x[N - 1] = 1e-50;
    y[N - 1] = -1.0;
    EXPECT_NUMBER(vec<N>(x) % vec<N>(y), -1e-50);
    EXPECT_NUMBER(tnla_scalprod(N, x.data(), y.data(), false, false), 0.0);
    EXPECT_NUMBER(dense<N>(x) % dense<N>(y), 0.0);
  });
}

TEST(SmallVector, ScalarProductStartsFromPositiveZero) {
  for_every_dimension(
      []<int N>() { EXPECT_NUMBER(vec<N>(Values(N, -0.0)) % vec<N>(Values(N, 1.0)), 0.0); });
}

TEST(SmallVector, SquaredNormIsOneSumInOrder) {
  for_every_dimension([]<int N>() {
    for (const Operands& o : operands(N)) {
      SCOPED_TRACE(o.name);
      EXPECT_NUMBER(vec<N>(o.x).sq_norm(), small_reference::sq_norm(o.x));
    }
  });
}

TEST(SmallVector, SquaredNormBelowTheThresholdIsZero) {
  const AroundThreshold t = around_threshold();
  ASSERT_EQ(t.reaching[0] * t.reaching[0] + t.reaching[1] * t.reaching[1], 1e-40);
  ASSERT_EQ(t.short_of[0] * t.short_of[0] + t.short_of[1] * t.short_of[1], ulp_below(1e-40));
  for_every_dimension([&]<int N>() {
    if constexpr (N >= 2) {
      EXPECT_NUMBER(vec<N>(front({t.reaching[0], t.reaching[1]}, 2, N, 0.0)).sq_norm(), 1e-40);
      EXPECT_NUMBER(vec<N>(front({t.short_of[0], t.short_of[1]}, 2, N, 0.0)).sq_norm(), 0.0);
    }
    EXPECT_NUMBER(vec<N>(front({1e-21}, 1, N, 0.0)).sq_norm(), 0.0);
  });
}

TEST(SmallVector, LargestMagnitudeTakesTheFirstElementWithItsSign) {
  const Values pair = {-5, 1};
  const Values other = {5, -7};
  const Values one = {-3};
  EXPECT_NUMBER(vec<2>(pair).mx_norm(), 1.0);
  EXPECT_NUMBER(vec<2>(other).mx_norm(), 7.0);
  EXPECT_NUMBER(vec<1>(one).mx_norm(), -3.0);
  for_every_dimension([]<int N>() {
    for (const Operands& o : operands(N)) {
      SCOPED_TRACE(o.name);
      EXPECT_NUMBER(vec<N>(o.x).mx_norm(), small_reference::mx_norm(o.x));
    }
  });
}

TEST(SmallVector, LargestMagnitudeIsFoundAtEveryPlaceAndLosesANaNToTheNextElement) {
  for_every_dimension([]<int N>() {
    for (std::size_t k = 0; k < N; ++k) {
      Values x = numbered(N);
      x[k] = k == 0 ? 99.0 : -99.0;
      EXPECT_NUMBER(vec<N>(x).mx_norm(), 99.0);
      x[k] = kNaN;
      EXPECT_NUMBER(vec<N>(x).mx_norm(), k + 1 == N ? kNaN : 0.5 + N);
    }
  });
}

TEST(SmallVector, NormalizeMultipliesByTheReciprocal) {
  const Values x = {3, 4};
  Vec<2> v = vec<2>(x);
  v.normalize();
  EXPECT_NUMBER(v(0), 0.6000000000000001);  // 3 * 0.2; a division would give 0.6
  EXPECT_NUMBER(v(1), 0.8);
  for_every_dimension([]<int N>() {
    for (const Operands& o : operands(N)) {
      SCOPED_TRACE(o.name);
      Vec<N> y = vec<N>(o.x);
      EXPECT_ELEMENTS(y.dir(), small_reference::normalized(o.x));
      EXPECT_ELEMENTS(y, o.x);
      y.normalize();
      EXPECT_ELEMENTS(y, small_reference::normalized(o.x));
    }
  });
}

TEST(SmallVector, NormalizeMakesATinyVectorZero) {
  for_every_dimension([]<int N>() {
    for (const double tiny : {0.0, -0.0, 1e-21, -1e-21, kTiny}) {
      Vec<N> x = vec<N>(Values(N, tiny));
      EXPECT_ELEMENTS(x.dir(), Values(N, 0.0));
      x.normalize();
      EXPECT_ELEMENTS(x, Values(N, 0.0));
    }
  });
}

TEST(SmallVector, OrthogonalVectorFollowsTheLoops) {
  for_every_dimension([]<int N>() {
    for (const Operands& o : operands(N)) {
      SCOPED_TRACE(o.name);
      const Vec<N> x = vec<N>(o.x);
      EXPECT_ELEMENTS(x.ort(), small_reference::orthogonal(o.x));
      EXPECT_ELEMENTS(x, o.x);
    }
    EXPECT_ELEMENTS(Vec<N>().ort(), N == 1 ? Values{0.0} : front({1.0}, 1, N, 0.0));
    EXPECT_ELEMENTS(vec<N>(Values(N, -2.0)).ort(), small_reference::orthogonal(Values(N, -2.0)));
  });
  const Values x = {3, 0, 4};
  EXPECT_ELEMENTS(vec<3>(x).ort(), Values({-0.0, 1.0, -0.0}));  // -0/25 times 3 and 4
}

TEST(SmallVector, AgreesWithTheDenseVector) {
  for_every_dimension([]<int N>() {
    for (const Operands& o : operands(N)) {
      SCOPED_TRACE(o.name);
      const Vec<N> x = vec<N>(o.x);
      const Vec<N> y = vec<N>(o.y);
      const TnLaDblVec dx = dense<N>(o.x);
      const TnLaDblVec dy = dense<N>(o.y);
      EXPECT_ELEMENTS(x + y, elements((dx + dy).array()));
      EXPECT_ELEMENTS(x - y, elements((dx - dy).array()));
      EXPECT_ELEMENTS(x * o.y[0], elements((dx * o.y[0]).array()));
      EXPECT_ELEMENTS(-x, elements((-dx).array()));
      EXPECT_ELEMENTS(x.dir(), elements(dx.dir().array()));
      EXPECT_ELEMENTS(x.ort(), elements(dx.ort().array()));
      EXPECT_NUMBER(x.mx_norm(), dx.mx_norm());
      EXPECT_NUMBER(x.sq_norm(), dx.sq_norm());
    }
  });
}

// --- Output --------------------------------------------------------------------------------------------

TEST(SmallVector, PrintsItsElements) {
  const Values x = {1, -2.5};
  const std::string text = printed([&](TnJournal& j) { vec<2>(x).debug(j, 2, 3); });
  EXPECT_EQ(text, "       1.00e+00   -2.50e+00\n");  // 3 blanks, then columns of 12
}

TEST(SmallVector, PrintsByTheArrayPrinterInColumnsOfDigitsPlusTen) {
  for_every_dimension([]<int N>() {
    TnArray<double> copy;
    copy.set_size(N, false);
    for (std::size_t i = 0; i < N; ++i) copy[i] = numbered(N)[i];
    const Vec<N> x = vec<N>(numbered(N));
    for (const int digits : {-40, -11, -9, 0, 1, 6, 12, 60, 69, 100}) {
      for (const int indent : {-5, 0, 4, 62, 70, 77, 78, 79, 80, 100}) {
        SCOPED_TRACE("digits " + std::to_string(digits) + ", indent " + std::to_string(indent));
        const int per_line = (80 - (indent + Tn_DebugIndentStep())) / (digits + 10);
        EXPECT_EQ(printed([&](TnJournal& j) { x.debug(j, digits, indent); }), printed([&](TnJournal& j) {
                    tn_arraydebug(j, N, copy, per_line, digits + 10, digits, indent);
                  }));
      }
    }
  });
}

TEST(SmallVector, PrintsNothingInColumnsOfNoWidth) {
  for_every_dimension([]<int N>() {
    EXPECT_EQ(printed([](TnJournal& j) { Vec<N>().debug(j, -10, 0); }), "");
    const AssertionLog log;
    EXPECT_EQ(printed([](TnJournal& j) { Vec<N>().debug(j, -10, 0); }), "");
    EXPECT_EQ(log.files(), Files({kFile}));
    EXPECT_NE(printed([](TnJournal& j) { Vec<N>().debug(j, 0, 0); }), "");
    EXPECT_EQ(log.count(), 1u);
  });
}
