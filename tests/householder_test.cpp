// SPDX-License-Identifier: MIT

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <type_traits>
#include <vector>

#include "reference/reflection_reference.h"
#include "support/assertions.h"
#include "support/bits.h"
#include "support/expect_asserts.h"
#include "support/strided_vectors.h"
#include "support/values.h"
#include "tnlahouseholder_i.h"

namespace {

using reference::Reflection;

constexpr char kSource[] = "src/tnlahouseholder.cpp";
constexpr char kArray[] = "interfaces/tnarray_i.h";
constexpr double kUntouched = 77.0;
constexpr int kIncrements[] = {1, 2, 5, -1, -3};

static_assert(std::has_virtual_destructor_v<TnLaHouseholder>);

// --- tnla_h1 --------------------------------------------------------------------------------------------

void expect_h1_as_defined(Indices at, Block v, int incr) {
  SCOPED_TRACE(testing::Message() << at << ", incr " << incr);
  const AssertionLog log;
  Block expected = v;
  double up = kUntouched;
  double expected_up = kUntouched;
  reference::h1(at.pivot, at.zero, at.n, expected.start(), incr, expected_up);
  tnla_h1(at.pivot, at.zero, at.n, v.start(), incr, up);
  EXPECT_SAME(up, expected_up);
  EXPECT_SAME_BLOCK(v.values, expected.values);
  EXPECT_EQ(log.count(), 0u);
}

TEST(H1, FollowsItsDefinitionForAllIndices) {
  Random random(1);
  for (const Indices at : all_indices(9)) {
    for (const int incr : kIncrements) {
      expect_h1_as_defined(at, strided(random, at.n, incr, Gaps::nan, Entries::uniform), incr);
      expect_h1_as_defined(at, strided(random, at.n, incr, Gaps::finite, Entries::any), incr);
    }
  }
}

TEST(H1, FollowsItsDefinitionForLongVectors) {
  for (std::uint64_t seed = 0; seed < 2000; ++seed) {
    SCOPED_TRACE(seed);
    Random random(seed);
    const Indices at = random_indices(random, 72);
    const int incr = kIncrements[random.below(5)];
    const Entries entries = seed % 2 == 0 ? Entries::any : Entries::uniform;
    expect_h1_as_defined(at, strided(random, at.n, incr, Gaps::finite, entries), incr);
  }
}

// Entries as they come, the pivot first, and what h1 leaves at the pivot and in up.
void expect_h1(std::vector<double> v, double s, double up) {
  const std::vector<double> before = v;
  double actual_up = kUntouched;
  tnla_h1(0, 1, static_cast<int>(v.size()), v.data(), 1, actual_up);
  EXPECT_SAME(v[0], s);
  EXPECT_SAME(actual_up, up);
  EXPECT_SAME_ARRAY(v.size() - 1, v.data() + 1, before.data() + 1);
}

TEST(H1, PositivePivotGivesNegativeS) { expect_h1({3, 4}, -5, 8); }
TEST(H1, NegativePivotGivesPositiveS) { expect_h1({-3, 4}, 5, -8); }
TEST(H1, ZeroPivotGivesPositiveS) { expect_h1({0, 4}, 4, -4); }
TEST(H1, NegativeZeroPivotGivesPositiveS) { expect_h1({-0.0, -4}, 4, -4); }
TEST(H1, LargeEntriesCauseNoOverflow) { expect_h1({0x3p1000, 0x4p1000}, -0x5p1000, 0x8p1000); }
TEST(H1, ZeroRangeStillTurnsThePivot) { expect_h1({3, 0, 0}, -3, 6); }

void expect_h1_does_nothing(const std::vector<double>& v) { expect_h1(v, v[0], kUntouched); }

TEST(H1, EverythingBelowTheThresholdIsLeftAlone) {
  const double below = ulp_below(1e-20);
  expect_h1_does_nothing({0, 0, 0});
  expect_h1_does_nothing({-0.0, kTiny});
  expect_h1_does_nothing({below, -below, below});
  expect_h1_does_nothing({0, 0, -below});
}

TEST(H1, TheThresholdItselfIsReflected) {
  expect_h1({0, 1e-20}, 1e-20, -1e-20);
  expect_h1({0, 0, -1e-20}, 1e-20, -1e-20);
  expect_h1({-1e-20, 0}, 1e-20, -2e-20);
}

TEST(H1, ANaNBelowThePivotDoesNotCountAsLargest) {
  expect_h1_does_nothing({1e-30, kNaN, 1e-25});
  expect_h1({1, kNaN}, kNaN, kNaN);
}

TEST(H1, ANaNAtThePivotIsReflected) { expect_h1({kNaN, 1e-30}, kNaN, kNaN); }

TEST(H1, AnInfiniteEntryGivesNaN) {
  expect_h1({kInf, 1}, kNaN, kNaN);
  expect_h1({1, -kInf}, kNaN, kNaN);
}

TEST(H1, LengthsBeyondTheRangeOverflow) { expect_h1({kHuge, kHuge}, -kInf, kInf); }

TEST(H1, AnEmptyRangeReadsAndWritesNothing) {
  const AssertionLog log;
  double up = kUntouched;
  tnla_h1(0, 1, 1, nullptr, 1, up);
  tnla_h1(2, 4, 4, nullptr, 1, up);
  EXPECT_SAME(up, kUntouched);
  EXPECT_EQ(log.count(), 0u);
}

// --- tnla_h2 --------------------------------------------------------------------------------------------

void expect_h2_as_defined(Random& random, Indices at, int n_vec, Entries entries) {
  const int incr_u = kIncrements[random.below(5)];
  SCOPED_TRACE(testing::Message() << at << ", incr_u " << incr_u << ", " << n_vec << " vectors");
  const AssertionLog log;
  Block u = strided(random, at.n, incr_u, Gaps::nan, entries);
  double up = random.uniform();
  reference::h1(at.pivot, at.zero, at.n, u.start(), incr_u, up);
  const std::vector<double> u_before = u.values;
  for (const Layout in : layouts(at.n, n_vec)) {
    SCOPED_TRACE(testing::Message() << "incr_c " << in.incr << ", stride_vec " << in.stride);
    Block c = vectors(random, at.n, n_vec, in, entries);
    Block expected = c;
    reference::h2(at.pivot, at.zero, at.n, u.start(), incr_u, up, expected.start(), in.incr, in.stride,
                  n_vec);
    tnla_h2(at.pivot, at.zero, at.n, u.start(), incr_u, up, c.start(), in.incr, in.stride, n_vec);
    EXPECT_SAME_BLOCK(c.values, expected.values);
  }
  EXPECT_SAME_BLOCK(u.values, u_before);
  EXPECT_EQ(log.count(), 0u);
}

TEST(H2, FollowsItsDefinitionForAllIndices) {
  Random random(2);
  for (const Indices at : all_indices(7)) {
    for (const int n_vec : {0, 1, 2, 5}) expect_h2_as_defined(random, at, n_vec, Entries::uniform);
  }
}

TEST(H2, FollowsItsDefinitionForLongVectors) {
  for (std::uint64_t seed = 0; seed < 300; ++seed) {
    SCOPED_TRACE(seed);
    Random random(seed);
    const Entries entries = seed % 2 == 0 ? Entries::any : Entries::uniform;
    const Indices at = random_indices(random, 42);
    expect_h2_as_defined(random, at, static_cast<int>(random.below(12)), entries);
  }
}

TEST(H2, TakesManyVectors) {
  Random random(10);
  for (const int n_vec : {3, 4, 7, 8, 9, 15, 16, 17, 31, 32, 33, 50}) {
    for (const Indices at : {Indices{0, 1, 2}, Indices{1, 3, 6}, Indices{0, 2, 30}, Indices{2, 3, 41}}) {
      expect_h2_as_defined(random, at, n_vec, Entries::uniform);
      expect_h2_as_defined(random, at, n_vec, Entries::any);
    }
  }
}

// What one vector leaves is what the next one finds.
TEST(H2, TakesVectorsThatShareElementsOneAfterTheOther) {
  Random random(11);
  for (const Layout in :
       {Layout{1, 1}, {1, 0}, {2, 1}, {3, 1}, {1, 29}, {2, 31}, {-1, 1}, {1, -7}, {9, 1}}) {
    SCOPED_TRACE(testing::Message() << "incr_c " << in.incr << ", stride_vec " << in.stride);
    constexpr int n = 30;
    constexpr int n_vec = 10;
    Block u = strided(random, n, 1, Gaps::nan, Entries::uniform);
    double up = 0.0;
    reference::h1(0, 1, n, u.start(), 1, up);
    Block c = vectors(random, n, n_vec, in, Entries::uniform);
    Block expected = c;
    reference::h2(0, 1, n, u.start(), 1, up, expected.start(), in.incr, in.stride, n_vec);
    tnla_h2(0, 1, n, u.start(), 1, up, c.start(), in.incr, in.stride, n_vec);
    EXPECT_SAME_BLOCK(c.values, expected.values);
  }
}

// u = (s, 1), up and the vector c, all chosen freely; what becomes of c.
void expect_h2(double s, double up, std::vector<double> c, const std::vector<double>& expected) {
  const double u[] = {s, 1.0};
  tnla_h2(0, 1, 2, u, 1, up, c.data(), 1, 2, 1);
  EXPECT_SAME_BLOCK(c, expected);
}

// sm = 1 * 2 + 3 * 1 = 5; divided by b = -4, -1.25; c = (1 - 1.25 * 2, 3 - 1.25).
TEST(H2, AddsTheMultipleOfU) { expect_h2(-2, 2, {1, 3}, {-1.5, 1.75}); }

TEST(H2, BelowTheThresholdIsTheIdentity) {
  expect_h2(-ulp_below(1e-20), 1, {1, 3}, {1, 3});
  expect_h2(1, -ulp_below(1e-20), {1, 3}, {1, 3});
  expect_h2(0, 1, {1, 3}, {1, 3});
}

// sm = 1 + 3 = 4, times 1/b = 4e20 in magnitude (1 / 1e-20 is rounded to 1e20), against which c is lost.
TEST(H2, TheThresholdItselfIsApplied) { expect_h2(-1e-20, 1, {1, 3}, {-4e20, -4e20}); }

TEST(H2, APositiveProductIsTheIdentity) {
  expect_h2(2, 2, {1, 3}, {1, 3});
  expect_h2(-2, -2, {1, 3}, {1, 3});
}

TEST(H2, ANaNProductIsApplied) { expect_h2(kNaN, 2, {1, 3}, {kNaN, kNaN}); }

TEST(H2, ANaNSumIsNotSkipped) { expect_h2(-2, 2, {kNaN, 3}, {kNaN, kNaN}); }

// With the sum 0 times 1/b nothing but the sign of the zero at the pivot could change: -0 + 0 is 0.
TEST(H2, AZeroSumLeavesTheVectorAlone) { expect_h2(-2, 2, {-0.0, -0.0}, {-0.0, -0.0}); }

TEST(H2, OneVectorThatIsSkippedDoesNotStopTheNext) {
  const double u[] = {-2.0, 1.0};
  std::vector<double> c = {-0.0, -0.0, 1, 3, 1, -2, 1, 3};
  tnla_h2(0, 1, 2, u, 1, 2.0, c.data(), 1, 2, 4);
  const std::vector<double> expected = {-0.0, -0.0, -1.5, 1.75, 1, -2, -1.5, 1.75};
  EXPECT_SAME_BLOCK(c, expected);
}

TEST(H2, WithoutVectorsNothingIsRead) {
  const AssertionLog log;
  tnla_h2(0, 1, 2, nullptr, 1, 2.0, nullptr, 1, 2, 0);
  tnla_h2(0, 1, 2, nullptr, 1, 2.0, nullptr, 1, 2, -1);
  EXPECT_EQ(log.count(), 0u);
}

TEST(H2, WithAnEmptyRangeNothingIsRead) { tnla_h2(0, 2, 2, nullptr, 1, 2.0, nullptr, 1, 2, 3); }

// --- TnLaHouseholder ------------------------------------------------------------------------------------

void expect_object_as_defined(Random& random, Indices at, Entries entries) {
  SCOPED_TRACE(testing::Message() << at);
  const AssertionLog log;
  for (const int incr : kIncrements) {
    Block v = strided(random, at.n, incr, Gaps::nan, entries);
    Block expected_v = v;
    const Reflection expected(at.pivot, at.zero, at.n, expected_v.start(), incr);
    const TnLaHouseholder reflection(at.pivot, at.zero, at.n, v.start(), incr);
    EXPECT_SAME_BLOCK(v.values, expected_v.values);
    expect_holds(reflection, expected);
    expect_applies(reflection, expected, strided(random, at.n, 1, Gaps::nan, Entries::uniform), 1);
    expect_applies(reflection, expected, strided(random, at.n, -2, Gaps::finite, entries), -2);
    expect_applies(reflection, expected, strided(random, at.n, 3, Gaps::finite, entries), 3);
  }
  EXPECT_EQ(log.count(), 0u);
}

TEST(Householder, FollowsItsDefinitionForAllIndices) {
  Random random(3);
  for (const Indices at : all_indices(8)) {
    expect_object_as_defined(random, at, Entries::uniform);
    expect_object_as_defined(random, at, Entries::any);
  }
}

TEST(Householder, FollowsItsDefinitionForLongVectors) {
  for (std::uint64_t seed = 0; seed < 100; ++seed) {
    SCOPED_TRACE(seed);
    Random random(seed);
    expect_object_as_defined(random, random_indices(random, 60),
                             seed % 4 == 0 ? Entries::any : Entries::uniform);
  }
}

// Takes the reflection of v with the pivot 0 and the range j_zero ..., and compares what it leaves in v.
TnLaHouseholder reflection_of(std::vector<double> v, int j_zero, const std::vector<double>& left) {
  const TnLaHouseholder reflection(0, j_zero, static_cast<int>(v.size()), v.data(), 1);
  EXPECT_SAME_BLOCK(v, left);
  return reflection;
}

TEST(Householder, KnownVector) {
  const TnLaHouseholder h = reflection_of({3, 4}, 1, {-5, 0});
  EXPECT_SAME(inside(h).scale, 1.0 / -40.0);
  EXPECT_SAME(inside(h).u[0], 8.0);
  EXPECT_SAME(inside(h).u[1], 4.0);
  std::vector<double> w = {3, 4};
  h.apply(w.data(), 1);
  EXPECT_SAME(w[0], -5.0);
  EXPECT_SAME(w[1], 0.0);
}

TEST(Householder, GapIsLeftAloneAndHeldAsZero) {
  const TnLaHouseholder h = reflection_of({3, 9, 4}, 2, {-5, 9, 0});
  EXPECT_SAME(inside(h).u[1], 0.0);
}

TEST(Householder, NegativeZerosInTheRangeBecomePositive) { reflection_of({2, -0.0}, 1, {-2, 0.0}); }

void expect_identity(const TnLaHouseholder& h) {
  EXPECT_SAME(inside(h).scale, 0.0);
  std::vector<double> w = {1, -0.0, kNaN};
  const std::vector<double> before = w;
  h.apply(w.data(), 1);
  EXPECT_SAME_BLOCK(w, before);
}

TEST(Householder, AZeroColumnGivesTheIdentityAndIsStillKeptAndCleared) {
  const TnLaHouseholder h = reflection_of({1e-30, -0.0, -1e-21}, 1, {1e-30, 0.0, 0.0});
  expect_identity(h);
  EXPECT_SAME(inside(h).u[0], 0.0);
  EXPECT_SAME(inside(h).u[1], -0.0);
  EXPECT_SAME(inside(h).u[2], -1e-21);
}

TEST(Householder, AnEmptyRangeGivesTheIdentity) { expect_identity(reflection_of({3, 4, 5}, 3, {3, 4, 5})); }

// The scale is then 1 / (inf * 0), but the range is looked at first.
TEST(Householder, AnEmptyRangeIsNotAppliedEvenIfItsPivotIsInfinite) {
  const TnLaHouseholder h = reflection_of({kInf, 4}, 2, {kInf, 4});
  EXPECT_SAME(inside(h).scale, kNaN);
  std::vector<double> w = {kInf, 2};
  h.apply(w.data(), 1);
  EXPECT_SAME(w[0], kInf);
  EXPECT_SAME(w[1], 2.0);
}

TEST(Householder, ANaNScaleIsApplied) {
  const TnLaHouseholder h = reflection_of({kNaN, 1}, 1, {kNaN, 0});
  EXPECT_SAME(inside(h).scale, kNaN);
  std::vector<double> w = {0, 0};
  h.apply(w.data(), 1);
  EXPECT_SAME(w[0], kNaN);
  EXPECT_SAME(w[1], kNaN);
}

// s * up overflows, and its reciprocal is -0.
TEST(Householder, AScaleOfNegativeZeroIsTheIdentity) {
  const TnLaHouseholder h = reflection_of({kHuge, kHuge}, 1, {-kInf, 0});
  EXPECT_SAME(inside(h).scale, -0.0);
  std::vector<double> w = {1, 2};
  h.apply(w.data(), 1);
  EXPECT_SAME(w[0], 1.0);
  EXPECT_SAME(w[1], 2.0);
}

// What the object holds as its scale, and s * up as it decides about it.
struct Scale {
  double held;
  double product;
};

Scale scale_of(std::vector<double> v) {
  const TnLaHouseholder h(0, 1, 2, v.data(), 1);
  return {inside(h).scale, v[0] * inside(h).u[0]};
}

// With next to nothing at the pivot, s * up is about minus the square of the range's length.
TEST(Householder, AProductOfExactlyTheThresholdIsApplied) {
  int n_at = 0;
  int n_next_below = 0;
  for (int step = -40; step <= 40; ++step) {
    for (int pivot = 0; pivot < 8; ++pivot) {
      const double unit = 0x1p-86;  // the last digit of 1e-10
      const Scale scale = scale_of({-pivot * unit, 1e-10 + step * unit});
      if (scale.product == -1e-20) ++n_at;
      if (scale.product == -ulp_below(1e-20)) ++n_next_below;
      EXPECT_SAME(scale.held, scale.product > -1e-20 ? 0.0 : 1.0 / scale.product);
    }
  }
  EXPECT_GT(n_at, 0);
  EXPECT_GT(n_next_below, 0);
}

// A pivot between other vectors' entries: rows of a 2 x 3 matrix, reduced and reflected in place.
TEST(Householder, WorksOnRowsOfAMatrix) {
  std::vector<double> a = {1, 3, 2, 4, 5, 0};  // rows (1, 2, 5) and (3, 4, 0)
  const TnLaHouseholder h(0, 1, 3, a.data() + 1, 2);
  h.apply(a.data(), 2);
  // u = (8, 4, 0), scale -1/40; row 0 . u = 16, times the scale -0.4.
  const std::vector<double> expected = {
      1 + (16 * (1.0 / -40)) * 8, -5, 2 + (16 * (1.0 / -40)) * 4, 0, 5, 0};
  EXPECT_SAME_BLOCK(a, expected);
}

// Applying costs n products and sums of relative error 2^-53 each, in the sum and again in the update,
// and u.u * scale = -2 holds to about as much.
TEST(Householder, IsItsOwnInverseAndKeepsLengths) {
  Random random(5);
  for (int n = 2; n <= 40; ++n) {
    std::vector<double> v = random.vector(static_cast<std::size_t>(n));
    const TnLaHouseholder h(0, 1, n, v.data(), 1);
    const std::vector<double> before = random.vector(static_cast<std::size_t>(n));
    std::vector<double> w = before;
    h.apply(w.data(), 1);
    double q_before = 0.0;
    double q = 0.0;
    for (std::size_t i = 0; i < w.size(); ++i) {
      q_before += before[i] * before[i];
      q += w[i] * w[i];
    }
    EXPECT_NEAR(q, q_before, 8 * n * 0x1p-53 * q_before);
    h.apply(w.data(), 1);
    for (std::size_t i = 0; i < w.size(); ++i) EXPECT_NEAR(w[i], before[i], 8 * n * 0x1p-53 * q_before);
  }
}

TEST(Householder, CopiesAreDeep) {
  Random random(6);
  std::vector<double> v = {3, 4};
  std::vector<double> expected_v = v;
  const Reflection expected(0, 1, 2, expected_v.data(), 1);
  auto* const original = new TnLaHouseholder(0, 1, 2, v.data(), 1);
  const TnLaHouseholder copy(*original);
  std::vector<double> other = {1, 2, 3, 4};
  TnLaHouseholder assigned(1, 2, 4, other.data(), 1);
  assigned = *original;
  delete original;
  for (const TnLaHouseholder* h : {&copy, static_cast<const TnLaHouseholder*>(&assigned)}) {
    expect_holds(*h, expected);
    expect_applies(*h, expected, strided(random, 2, 2, Gaps::finite, Entries::uniform), 2);
  }
}

// --- Preconditions --------------------------------------------------------------------------------------

// Whatever these address lies in the block.
const Indices kWrongIndices[] = {{-1, 1, 4}, {1, 1, 4}, {2, 1, 4}, {3, 0, 4},
                                 {1, 5, 4},  {0, 6, 4}, {5, 4, 4}, {-2, -1, 4}};

TEST(HouseholderAssertions, FreeFunctionsCarryOnAfterOneCall) {
  for (const Indices& at : kWrongIndices) {
    SCOPED_TRACE(testing::Message() << at);
    expect_asserts({kSource, kSource}, [&at] {
      Random random(7);
      Block v = strided(random, 8, 1, Gaps::finite, Entries::uniform);
      Block c = strided(random, 8, 1, Gaps::finite, Entries::uniform);
      Block expected_v = v;
      Block expected_c = c;
      double up = kUntouched;
      double expected_up = kUntouched;
      reference::h1(at.pivot, at.zero, at.n, expected_v.start(), 1, expected_up);
      reference::h2(at.pivot, at.zero, at.n, expected_v.start(), 1, expected_up, expected_c.start(), 1, 1,
                    1);
      tnla_h1(at.pivot, at.zero, at.n, v.start(), 1, up);
      tnla_h2(at.pivot, at.zero, at.n, v.start(), 1, up, c.start(), 1, 1, 1);
      EXPECT_SAME(up, expected_up);
      EXPECT_SAME_BLOCK(v.values, expected_v.values);
      EXPECT_SAME_BLOCK(c.values, expected_c.values);
    });
  }
}

TEST(HouseholderAssertions, AreMadeBeforeTheEarlyReturns) {
  double up = kUntouched;
  expect_asserts({kSource}, [&up] { tnla_h1(4, 4, 4, nullptr, 1, up); });
  expect_asserts({kSource}, [&up] { tnla_h2(4, 4, 4, nullptr, 1, up, nullptr, 1, 1, 1); });
  expect_asserts({kSource}, [&up] { tnla_h2(1, 1, 4, nullptr, 1, up, nullptr, 1, 1, 0); });
}

// The pivot lies in the object's vector, so that construction carries on as the free function does.
TEST(HouseholderAssertions, AnObjectCarriesOnAfterOneCall) {
  for (const Indices& at : {Indices{1, 1, 4}, Indices{2, 1, 4}, Indices{3, 0, 4}, Indices{1, 5, 4}}) {
    SCOPED_TRACE(testing::Message() << at);
    expect_asserts({kSource}, [&at] {
      Random random(8);
      Block v = strided(random, 6, 1, Gaps::finite, Entries::uniform);
      Block expected_v = v;
      const Reflection expected(at.pivot, at.zero, at.n, expected_v.start(), 1);
      const TnLaHouseholder h(at.pivot, at.zero, at.n, v.start(), 1);
      EXPECT_SAME_BLOCK(v.values, expected_v.values);
      expect_holds(h, expected);
      expect_applies(h, expected, strided(random, 6, 1, Gaps::finite, Entries::uniform), 1);
    });
  }
}

void expect_refused(Indices at, const Files& files) {
  SCOPED_TRACE(testing::Message() << at);
  expect_asserts(files, [&at] {
    Random random(9);
    Block v = strided(random, 8, 1, Gaps::finite, Entries::uniform);
    const std::vector<double> before = v.values;
    const TnLaHouseholder h(at.pivot, at.zero, at.n, v.start(), 1);
    EXPECT_SAME_BLOCK(v.values, before);
    EXPECT_EQ(inside(h).u, std::vector<double>(static_cast<std::size_t>(at.n), 0.0));
    EXPECT_SAME(inside(h).scale, 0.0);
    h.apply(v.start(), 1);
    EXPECT_SAME_BLOCK(v.values, before);
  });
}

TEST(HouseholderAssertions, APivotOutsideTheObjectsVectorGivesTheIdentity) {
  expect_refused({4, 5, 4}, {kArray, kSource});
  expect_refused({5, 2, 4}, {kArray, kSource});
  expect_refused({-1, 2, 4}, {kArray, kSource});
  expect_refused({0, 0, 0}, {kArray, kSource});
}

TEST(HouseholderAssertions, ANegativeStartOfTheRangeGivesTheIdentity) {
  expect_refused({2, -1, 4}, {kSource});
}

// --- Output ---------------------------------------------------------------------------------------------

std::string printed(const TnLaHouseholder& h, int indent) {
  std::ostringstream text;
  TnJournal journal(text);
  h.debug(journal, indent);
  return text.str();
}

TEST(HouseholderDebug, WritesEachEntryAndTheScale) {
  std::vector<double> v = {7, 3, 9, 4};
  const TnLaHouseholder h(1, 3, 4, v.data(), 1);
  EXPECT_EQ(printed(h, 0),
            "Housholder transformation begin {\n\n"
            "  0\n"
            "  8 ... j_pivot_\n"
            "  0\n"
            "  4 ... j_zero_\n"
            "\n"
            "  -2./<u_, u_> = -0.025\n"
            "\n"
            "TnLaHouseholder end   }\n");
}

TEST(HouseholderDebug, IndentsEveryLine) {
  std::vector<double> v = {3, 4};
  const TnLaHouseholder h(0, 1, 2, v.data(), 1);
  EXPECT_EQ(printed(h, 3),
            "   Housholder transformation begin {\n\n"
            "     8 ... j_pivot_\n"
            "     4 ... j_zero_\n"
            "\n"
            "     -2./<u_, u_> = -0.025\n"
            "\n"
            "   TnLaHouseholder end   }\n");
}

TEST(HouseholderDebug, MarksOneEntryTwiceWhereBothIndicesMeet) {
  std::vector<double> v = {3, 4};
  const TnLaHouseholder h(1, 1, 2, v.data(), 1);
  EXPECT_NE(printed(h, 0).find(" ... j_pivot_ ... j_zero_\n"), std::string::npos);
}

TEST(HouseholderDebug, AnEmptyRangeHasNoMark) {
  std::vector<double> v = {3, 4};
  const TnLaHouseholder h(1, 2, 2, v.data(), 1);
  EXPECT_EQ(printed(h, 0).find("j_zero_"), std::string::npos);
}

}  // namespace
