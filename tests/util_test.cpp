// SPDX-License-Identifier: MIT

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <string>
#include <type_traits>
#include <vector>

#include "reference/vector_reference.h"
#include "support/assertions.h"
#include "support/bits.h"
#include "support/values.h"
#include "tnla_util_i.h"

namespace {

using reference::with_square_sum;
using Vector = std::vector<double>;

constexpr double kEps = std::numeric_limits<double>::epsilon();

// Its square is 1 + 2^-26 + 2^-54, which rounds to 1 + 2^-26: a fused operation sees the difference.
constexpr double kInexactSquare = 1.0 + 0x1p-27;

static_assert(std::is_same_v<decltype(&tnla_sq_norm), double (*)(int, const double*, const double*)>);
static_assert(std::is_same_v<decltype(&tnla_norm), double (*)(int, const double*, const double*)>);
static_assert(std::is_same_v<decltype(&tnla_normalize), double (*)(int, double*)>);
static_assert(std::is_same_v<decltype(&tnla_ortho_vec), void (*)(int, const double*, double*)>);
static_assert(std::is_same_v<decltype(&tnla_crossprod),
                             void (*)(int, const double*, const double*, double*, bool, bool, bool)>);

int size_of(const Vector& x) { return static_cast<int>(x.size()); }

Vector reversed(Vector x) {
  std::reverse(x.begin(), x.end());
  return x;
}

// A result array with room around it that nobody may write to.
class Guarded {
 public:
  explicit Guarded(const Vector& values) : block_(kRoom, kGuard) {
    block_.insert(block_.end(), values.begin(), values.end());
    block_.insert(block_.end(), kRoom, kGuard);
  }
  double* data() { return block_.data() + kRoom; }
  const Vector& block() const { return block_; }

 private:
  static constexpr std::size_t kRoom = 9;
  static constexpr double kGuard = -7.25e77;
  Vector block_;
};

void expect_same_block(const Guarded& actual, const Guarded& expected) {
  ASSERT_EQ(actual.block().size(), expected.block().size());
  EXPECT_SAME_ARRAY(actual.block().size(), actual.block().data(), expected.block().data());
}

Vector random_vector(Random& random, int n) { return reference::draw(random, static_cast<std::size_t>(n)); }

template <class Check>
void for_random_sizes(Check check) {
  for (int n = 0; n <= 40; ++n) {
    for (std::uint64_t seed = 1; seed <= 6; ++seed) {
      SCOPED_TRACE("n = " + std::to_string(n) + ", seed " + std::to_string(seed));
      Random random(seed * 1000 + static_cast<std::uint64_t>(n));
      check(n, random);
    }
  }
}

// --- tnla_sq_norm and tnla_norm ------------------------------------------------------------------------

double sq_norm(const Vector& x) { return tnla_sq_norm(size_of(x), x.data(), nullptr); }

double sq_norm(const Vector& x, const Vector& y) {
  EXPECT_EQ(x.size(), y.size());
  return tnla_sq_norm(size_of(x), x.data(), y.data());
}

TEST(SqNorm, IsTheSumOfSquares) {
  for_random_sizes([](int n, Random& random) {
    const Vector x = random_vector(random, n);
    EXPECT_SAME(sq_norm(x), reference::sq_norm(n, x.data()));
    EXPECT_SAME(tnla_norm(n, x.data(), nullptr), reference::norm(n, x.data()));
  });
}

TEST(SqNorm, OfTwoArraysIsTheirSquaredDistance) {
  for_random_sizes([](int n, Random& random) {
    const Vector x = random_vector(random, n);
    Vector y = random_vector(random, n);
    EXPECT_SAME(sq_norm(x, y), reference::sq_norm(n, x.data(), y.data()));
    EXPECT_SAME(tnla_norm(n, x.data(), y.data()), reference::norm(n, x.data(), y.data()));
    EXPECT_SAME(sq_norm(x, x), reference::sq_norm(n, x.data(), x.data()));
    for (std::size_t i = 0; i < y.size(); ++i) y[i] = x[i] + y[i] * 1e-12;
    EXPECT_SAME(sq_norm(x, y), reference::sq_norm(n, x.data(), y.data()));
  });
}

TEST(SqNorm, AddsInAscendingOrderWithOneAccumulator) {
  const Vector x = reference::large_before_small(1.0, 0x1p-27, 16);
  ASSERT_TRUE(reference::tells_orders_apart(reference::large_before_small(1.0, 0x1p-54, 16)));
  const Vector zeros(x.size(), 0.0);
  EXPECT_SAME(sq_norm(x), 1.0);
  EXPECT_SAME(sq_norm(reversed(x)), 1.0 + 0x1p-50);
  EXPECT_SAME(sq_norm(x, zeros), 1.0);
  EXPECT_SAME(sq_norm(reversed(x), zeros), 1.0 + 0x1p-50);
  EXPECT_SAME(sq_norm(zeros, reversed(x)), 1.0 + 0x1p-50);
}

TEST(SqNorm, RoundsASquareBeforeItIsAdded) {
  const Vector x = {12288.0, kInexactSquare};
#ifndef _WIN32  // where std::fma of mingw-w64 rounds more than once
  ASSERT_EQ(reference::fused_sum(x, x), 12288.0 * 12288.0 + 1.0 + 0x1p-25);
#endif
  EXPECT_SAME(sq_norm(x), 12288.0 * 12288.0 + 1.0);
  EXPECT_SAME(sq_norm(x, {0.0, 0.0}), 12288.0 * 12288.0 + 1.0);
}

TEST(SqNorm, BelowTheZeroThresholdIsZero) {
  EXPECT_SAME(sq_norm({1e-21, 0.0}), 0.0);
  EXPECT_SAME(sq_norm(with_square_sum(ulp_below(1e-40))), 0.0);
  EXPECT_SAME(sq_norm(with_square_sum(1e-40)), 1e-40);
  EXPECT_SAME(sq_norm(with_square_sum(ulp_above(1e-40))), ulp_above(1e-40));
  EXPECT_SAME(sq_norm({-0.0}), 0.0);
}

TEST(SqNorm, DistanceBelowTheZeroThresholdIsZero) {
  EXPECT_SAME(sq_norm({0.0}, {1e-21}), 0.0);
  EXPECT_SAME(sq_norm({0.0}, {1e-13}), 1e-13 * 1e-13);
  EXPECT_SAME(sq_norm({0.0, 0.0}, with_square_sum(ulp_below(1e-40))), 0.0);
  EXPECT_SAME(sq_norm({0.0, 0.0}, with_square_sum(1e-40)), 1e-40);
}

// |x - y|^2 for an x of length `length` along the first axis, and a y that differs from it along the
// others.
double distance_from(double length, double squared_distance) {
  const Vector off = with_square_sum(squared_distance);
  return sq_norm({length, 0.0, 0.0}, {length, off[0], off[1]});
}

TEST(SqNorm, DistanceBelowTheRelativeThresholdIsZero) {
  EXPECT_SAME(sq_norm({1.0}, {1.0 + 1e-13}), 0.0);
  EXPECT_SAME(distance_from(1.0, ulp_below(1e-24)), 0.0);
  EXPECT_SAME(distance_from(1.0, 1e-24), 1e-24);
  EXPECT_SAME(distance_from(1.0, ulp_above(1e-24)), ulp_above(1e-24));
  EXPECT_SAME(distance_from(2.0, ulp_below(4.0 * 1e-24)), 0.0);
  EXPECT_SAME(distance_from(2.0, 4.0 * 1e-24), 4.0 * 1e-24);
  EXPECT_SAME(distance_from(-0.5, 0.25 * 1e-24), 0.25 * 1e-24);
}

TEST(SqNorm, OnlyTheFirstArrayIsTheReferenceOfTheRelativeTest) {
  const double step = 6000 * 0x1p-53;  // y is shorter than x by this much
  const Vector off = with_square_sum(1e-24 * (1.0 - step) - step * step);
  const Vector x = {1.0, 0.0, 0.0};
  const Vector y = {1.0 - step, off[0], off[1]};
  EXPECT_SAME(sq_norm(x, y), 0.0);
  EXPECT_SAME(sq_norm(y, x), step * step + off[0] * off[0] + off[1] * off[1]);
}

TEST(SqNorm, ReferenceSumOfTheRelativeTestIsAscendingToo) {
  Vector x = reference::large_before_small(1.0, 0x1p-27, 16);  // x . x = 1 from the front, more otherwise
  const auto distance_of = [](Vector from) {
    Vector to = from;
    for (const double off : with_square_sum(1e-24)) {
      from.push_back(0.0);
      to.push_back(off);
    }
    return sq_norm(from, to);
  };
  EXPECT_SAME(distance_of(x), 1e-24);
  EXPECT_SAME(distance_of(reversed(x)), 0.0);
}

TEST(SqNorm, EmptyArraysGiveZero) {
  const double y = 3.0;
  for (const int n : {0, -1, -40}) {
    EXPECT_SAME(tnla_sq_norm(n, nullptr, nullptr), 0.0);
    EXPECT_SAME(tnla_sq_norm(n, &y, &y), 0.0);
    EXPECT_SAME(tnla_norm(n, nullptr, nullptr), 0.0);
    EXPECT_SAME(tnla_norm(n, &y, &y), 0.0);
  }
}

TEST(SqNorm, NaNAndInfinityPropagate) {
  EXPECT_SAME(sq_norm({1.0, -kInf}), kInf);
  EXPECT_SAME(sq_norm({kInf, kNaN}), kNaN);
  EXPECT_SAME(sq_norm({1e200}), kInf);
  EXPECT_SAME(sq_norm({1e200}, {0.0}), kInf);
  EXPECT_SAME(sq_norm({1e200}, {1e200}), 0.0);  // the reference is infinite, the distance is not
  EXPECT_SAME(sq_norm({kInf}, {kInf}), kNaN);
  EXPECT_SAME(sq_norm({1.0}, {-kInf}), kInf);
  EXPECT_SAME(sq_norm({1.0}, {kNaN}), kNaN);
}

TEST(Norm, IsTheSquareRootWithTheSameZeroRules) {
  const Vector x = {3.0, 4.0};
  const Vector y = {-3.0, 12.0};
  EXPECT_SAME(tnla_norm(2, x.data(), nullptr), 5.0);
  EXPECT_SAME(tnla_norm(2, x.data(), y.data()), 10.0);
  EXPECT_SAME(tnla_norm(2, with_square_sum(ulp_below(1e-40)).data(), nullptr), 0.0);
  EXPECT_SAME(tnla_norm(2, with_square_sum(1e-40).data(), nullptr), std::sqrt(1e-40));
}

// --- tnla_scalprod -------------------------------------------------------------------------------------

double scalprod(const Vector& x, const Vector& y, bool unit_x = false, bool unit_y = false) {
  EXPECT_EQ(x.size(), y.size());
  return tnla_scalprod(size_of(x), x.data(), y.data(), unit_x, unit_y);
}

TEST(Scalprod, AgreesWithThePlainLoopForAllFlags) {
  for_random_sizes([](int n, Random& random) {
    const Vector x = random_vector(random, n);
    const Vector y = random_vector(random, n);
    for (const bool unit_x : {false, true}) {
      for (const bool unit_y : {false, true}) {
        EXPECT_SAME(scalprod(x, y, unit_x, unit_y),
                    reference::scalprod(n, x.data(), y.data(), unit_x, unit_y));
        EXPECT_SAME(scalprod(x, x, unit_x, unit_y),
                    reference::scalprod(n, x.data(), x.data(), unit_x, unit_y));
      }
    }
  });
}

TEST(Scalprod, AddsInAscendingOrderWithOneAccumulator) {
  const Vector x = reference::large_before_small(1.0, 0x1p-53, 16);
  ASSERT_TRUE(reference::tells_orders_apart(x));
  const Vector ones(x.size(), 1.0);
  EXPECT_SAME(scalprod(x, ones), 1.0);
  EXPECT_SAME(scalprod(reversed(x), ones), 1.0 + 0x1p-49);
  EXPECT_SAME(scalprod({kHuge, kHuge, -kHuge}, {1.0, 1.0, 1.0}), kInf);
}

TEST(Scalprod, RoundsAProductBeforeItIsAdded) {
  const Vector x = {1.0, kInexactSquare};
  const Vector y = {-(1.0 + 0x1p-26), kInexactSquare};
  ASSERT_EQ(reference::fused_sum(x, y), 0x1p-54);
  EXPECT_SAME(scalprod(x, y), 0.0);
}

TEST(Scalprod, FlagsDefaultToFalse) {
  const Vector x = {3.0, 4.0};
  const Vector y = {5.0, 12.0};
  EXPECT_SAME(tnla_scalprod(2, x.data(), y.data()), 63.0);
  EXPECT_SAME(tnla_scalprod(2, x.data(), y.data(), true),
              ((1.0 / 5.0) * 3.0) * 5.0 + ((1.0 / 5.0) * 4.0) * 12.0);
  const double fy = 1.0 / 13.0;
  EXPECT_SAME(scalprod(x, y, false, true), (fy * 3.0) * 5.0 + (fy * 4.0) * 12.0);
}

TEST(Scalprod, FactorMultipliesTheFirstVectorBeforeTheSecond) {
  const double f = 1.0 / std::sqrt(3e150 * 3e150);
  EXPECT_SAME(scalprod({3e150}, {1e200}, true, false), (f * 3e150) * 1e200);  // 3e350 would be infinite
  EXPECT_LT(scalprod({3e150}, {1e200}, true, false), 2e200);
}

TEST(Scalprod, MagnitudeBelowTheZeroThresholdIsZero) {
  for (const double sign : {1.0, -1.0}) {
    EXPECT_SAME(scalprod({ulp_below(1e-40)}, {sign}), 0.0);
    EXPECT_SAME(scalprod({1e-40}, {sign}), sign * 1e-40);
    EXPECT_SAME(scalprod({ulp_above(1e-40)}, {sign}), sign * ulp_above(1e-40));
  }
  EXPECT_SAME(scalprod({-0.0}, {1.0}), 0.0);
}

TEST(Scalprod, NumericallyZeroVectorKeepsTheFactorOne) {
  const Vector zero = {0.0, 0.0, 0.0};
  EXPECT_SAME(scalprod(zero, zero, true, true), 0.0);
  EXPECT_SAME(scalprod(zero, {1.0, 2.0, 3.0}, true, true), 0.0);
  const Vector tiny = with_square_sum(ulp_below(1e-40));
  const Vector large = {1e30, 1e30};
  const double sum = tiny[0] * 1e30 + tiny[1] * 1e30;
  EXPECT_SAME(scalprod(tiny, large, true, false), sum);
  EXPECT_SAME(scalprod(large, tiny, false, true), sum);
  const Vector small = with_square_sum(1e-40);
  const double f = 1.0 / std::sqrt(1e-40);
  EXPECT_SAME(scalprod(small, large, true, false), (f * small[0]) * 1e30 + (f * small[1]) * 1e30);
  EXPECT_SAME(scalprod(large, small, false, true), (f * 1e30) * small[0] + (f * 1e30) * small[1]);
}

TEST(Scalprod, ParallelUnitVectorsGiveAboutOne) {
  // Two factors, their product, the terms and the sum: fewer than ten roundings.
  EXPECT_NEAR(scalprod({3.0, 4.0, 12.0}, {1.5, 2.0, 6.0}, true, true), 1.0, 10 * kEps);
  EXPECT_NEAR(scalprod({3.0, 4.0, 12.0}, {-1.5, -2.0, -6.0}, true, true), -1.0, 10 * kEps);
}

TEST(Scalprod, EmptyArraysGiveZero) {
  for (const int n : {0, -1}) {
    EXPECT_SAME(tnla_scalprod(n, nullptr, nullptr), 0.0);
    EXPECT_SAME(tnla_scalprod(n, nullptr, nullptr, true, true), 0.0);
  }
}

// --- tnla_lincomb --------------------------------------------------------------------------------------

// One call by the library and one by the plain loop: the same on two copies of the same storage.  Vectors
// x, y and res start at these places of the storage.
void expect_combined(int n, const Vector& storage, int x, double a, int y, double b, int res, int flags) {
  SCOPED_TRACE("flags " + std::to_string(flags) + ", places " + std::to_string(x) + ", " +
               std::to_string(y) + ", " + std::to_string(res));
  Guarded actual(storage);
  Guarded expected(storage);
  const bool unit_x = (flags & 1) != 0, unit_y = (flags & 2) != 0, unit_res = (flags & 4) != 0;
  double* const p = actual.data();
  double* const q = expected.data();
  tnla_lincomb(n, p + x, a, p + y, b, p + res, unit_x, unit_y, unit_res);
  reference::lincomb(n, q + x, a, q + y, b, q + res, unit_x, unit_y, unit_res);
  expect_same_block(actual, expected);
}

TEST(Lincomb, AgreesWithThePlainLoopForAllFlags) {
  for_random_sizes([](int n, Random& random) {
    Vector storage = random_vector(random, n);
    const Vector y = random_vector(random, n);
    storage.insert(storage.end(), y.begin(), y.end());
    storage.resize(3 * static_cast<std::size_t>(n), kNaN);  // what res held does not matter
    const double a = random.any();
    const double b = random.uniform();
    for (int flags = 0; flags < 8; ++flags) expect_combined(n, storage, 0, a, n, b, 2 * n, flags);
  });
}

TEST(Lincomb, ResultMayBeAnInput) {
  for_random_sizes([](int n, Random& random) {
    const Vector storage = random.vector(2 * static_cast<std::size_t>(n));
    const double a = random.uniform();
    for (int flags = 0; flags < 8; ++flags) {
      expect_combined(n, storage, 0, a, n, -0.75, 0, flags);
      expect_combined(n, storage, 0, a, n, -0.75, n, flags);
      expect_combined(n, storage, 0, a, 0, 0.75, 0, flags);
      expect_combined(n, storage, 0, a, 0, 0.75, n, flags);
    }
  });
}

TEST(Lincomb, OverlappingArraysAreWorkedOnElementByElementFromTheFront) {
  constexpr int kRoom = 8;
  for (const int n : {1, 2, 3, 4, 5, 7, 8, 9, 15, 16, 17, 33, 40}) {
    Random random(static_cast<std::uint64_t>(n));
    SCOPED_TRACE("n = " + std::to_string(n));
    const Vector storage = random.vector(3 * static_cast<std::size_t>(n) + 2 * kRoom);
    for (int shift = -kRoom; shift <= kRoom; ++shift) {
      const int x = kRoom;
      const int apart = 2 * n + 2 * kRoom;
      expect_combined(n, storage, x, 1.25, apart, -0.5, x + shift, 0);
      expect_combined(n, storage, apart, 1.25, x, -0.5, x + shift, 0);
      expect_combined(n, storage, x, 1.25, x, -0.5, x + shift, 7);
    }
  }
}

TEST(Lincomb, OverlapByOneRunsAlongTheArray) {
  Vector forward = {1.0, 0.0, 0.0, 0.0};  // every element is made from the one before, just written
  tnla_lincomb(3, forward.data(), 2.0, forward.data(), 1.0, forward.data() + 1);
  EXPECT_EQ(forward, Vector({1.0, 3.0, 9.0, 27.0}));
  Vector backward = {1.0, 2.0, 3.0, 4.0};  // and here from the one behind, not yet written
  tnla_lincomb(3, backward.data() + 1, 2.0, backward.data() + 1, 1.0, backward.data());
  EXPECT_EQ(backward, Vector({6.0, 9.0, 12.0, 4.0}));
}

Vector lincomb(const Vector& x, double a, const Vector& y, double b) {
  Vector res(x.size());
  tnla_lincomb(size_of(x), x.data(), a, y.data(), b, res.data());
  return res;
}

TEST(Lincomb, FlagsDefaultToFalse) {
  EXPECT_EQ(lincomb({3.0, 4.0}, 2.0, {5.0, 12.0}, -1.0), Vector({1.0, -4.0}));
}

TEST(Lincomb, RoundsBothProductsBeforeTheyAreAdded) {
  const Vector x = {kInexactSquare};
  EXPECT_SAME(lincomb(x, kInexactSquare, x, -kInexactSquare)[0], 0.0);
  EXPECT_SAME(lincomb(x, -kInexactSquare, x, kInexactSquare)[0], 0.0);
  EXPECT_SAME(lincomb({-0.0}, 1.0, {0.0}, -1.0)[0], -0.0);
}

TEST(Lincomb, UnitFlagDividesTheCoefficientByTheLength) {
  const Vector x = {3.0, 4.0};
  const Vector zero = {0.0, 0.0};
  ASSERT_NE(3.0 / 5.0, 3.0 * (1.0 / 5.0));
  const Vector expected = {(3.0 / 5.0) * 3.0, (3.0 / 5.0) * 4.0};
  Vector res(2);
  tnla_lincomb(2, x.data(), 3.0, zero.data(), 1.0, res.data(), true);
  EXPECT_SAME_ARRAY(2, res.data(), expected.data());
  tnla_lincomb(2, zero.data(), 1.0, x.data(), 3.0, res.data(), false, true);
  EXPECT_SAME_ARRAY(2, res.data(), expected.data());
}

TEST(Lincomb, NumericallyZeroVectorKeepsItsCoefficient) {
  const Vector zero = {0.0, 0.0};
  for (const double q : {ulp_below(1e-40), 1e-40}) {
    const Vector x = with_square_sum(q);
    const double a = q < 1e-40 ? 7.0 : 7.0 / std::sqrt(1e-40);
    const Vector expected = {a * x[0], a * x[1]};
    Vector res(2);
    tnla_lincomb(2, x.data(), 7.0, zero.data(), 7.0, res.data(), true, true);
    EXPECT_SAME_ARRAY(2, res.data(), expected.data());
    tnla_lincomb(2, zero.data(), 7.0, x.data(), 7.0, res.data(), true, true);
    EXPECT_SAME_ARRAY(2, res.data(), expected.data());
  }
}

TEST(Lincomb, UnitResultIsNormalisedAtTheEnd) {
  const Vector x = {3.0, 0.0};
  const Vector y = {0.0, 4.0};
  Vector res(2);
  tnla_lincomb(2, x.data(), 1.0, y.data(), 1.0, res.data(), false, false, true);
  EXPECT_EQ(res, Vector({3.0 / 5.0, 4.0 / 5.0}));
}

TEST(Lincomb, EmptyArraysWriteNothing) {
  for (const int n : {0, -1}) {
    double untouched = 5.0;
    tnla_lincomb(n, nullptr, 1.0, nullptr, 1.0, &untouched, true, true, true);
    EXPECT_SAME(untouched, 5.0);
  }
}

// --- tnla_crossprod ------------------------------------------------------------------------------------

void expect_crossed(const Vector& u, const Vector& w, int flags) {
  SCOPED_TRACE("flags " + std::to_string(flags));
  Guarded actual(Vector(u.size(), 0.5));
  Guarded expected(Vector(u.size(), 0.5));
  const bool unit_u = (flags & 1) != 0, unit_w = (flags & 2) != 0, unit_res = (flags & 4) != 0;
  tnla_crossprod(size_of(u), u.data(), w.data(), actual.data(), unit_u, unit_w, unit_res);
  reference::crossprod(size_of(u), u.data(), w.data(), expected.data(), unit_u, unit_w, unit_res);
  expect_same_block(actual, expected);
}

TEST(Crossprod, AgreesWithThePlainStepsForAllFlags) {
  for_random_sizes([](int n, Random& random) {
    const Vector u = random_vector(random, n);
    const Vector w = random_vector(random, n);
    for (int flags = 0; flags < 8; ++flags) {
      expect_crossed(u, w, flags);
      expect_crossed(u, u, flags);
    }
  });
}

TEST(Crossprod, AgreesWithThePlainStepsForAllLengths) {
  for (const double u_scale : {0.0, 1e-21, 2e-11, 1e-10, 1e150}) {
    for (const double w_scale : {0.0, 1e-21, 2e-11, 1e-10, 1e150}) {
      for (const int n : {3, 4, 7}) {
        SCOPED_TRACE(testing::Message() << "n = " << n << ", scales " << u_scale << ", " << w_scale);
        Random random(static_cast<std::uint64_t>(n));
        Vector u = random.vector(static_cast<std::size_t>(n));
        Vector w = random.vector(static_cast<std::size_t>(n));
        for (double& element : u) element *= u_scale;
        for (double& element : w) element *= w_scale;
        for (int flags = 0; flags < 8; ++flags) expect_crossed(u, w, flags);
      }
    }
  }
}

Vector crossprod(const Vector& u, const Vector& w) {
  Vector res(u.size(), kNaN);
  tnla_crossprod(size_of(u), u.data(), w.data(), res.data());
  return res;
}

TEST(Crossprod, OfThreeDimensionsIsTheOrdinaryOne) {
  const Vector e0 = {1, 0, 0}, e1 = {0, 1, 0}, e2 = {0, 0, 1};
  EXPECT_EQ(crossprod(e0, e1), e2);
  EXPECT_EQ(crossprod(e1, e2), e0);
  EXPECT_EQ(crossprod(e2, e0), e1);
  EXPECT_EQ(crossprod(e1, e0), Vector({0, 0, -1}));
  EXPECT_EQ(crossprod({1, 2, 3}, {5, 7, 11}), Vector({1, 4, -3}));
}

TEST(Crossprod, OfThreeDimensionsRoundsEachProduct) {
  const Vector c(3, kInexactSquare);
  const Vector zero(3, 0.0);
  EXPECT_SAME_ARRAY(3, crossprod(c, c).data(), zero.data());
}

TEST(Crossprod, BelowThreeDimensionsDoesNothing) {
  for (const int n : {-1, 0, 1, 2}) {
    const double u[] = {1.0, 0.0};
    const double w[] = {0.0, 1.0};
    const double untouched[] = {5.0, -6.0};
    double res[] = {5.0, -6.0};
    for (int flags = 0; flags < 8; ++flags) {
      tnla_crossprod(n, u, w, res, (flags & 1) != 0, (flags & 2) != 0, (flags & 4) != 0);
      EXPECT_SAME_ARRAY(2, res, untouched);
    }
    tnla_crossprod(n, nullptr, nullptr, nullptr, true, true, true);
  }
}

TEST(Crossprod, UnitFlagOfANumericallyZeroVectorMakesTheResultZero) {
  const Vector tiny = {1e-21, 0.0, 0.0};
  const Vector e1 = {0.0, 1.0, 0.0};
  const Vector zero(3, 0.0);
  Vector res(3);
  tnla_crossprod(3, tiny.data(), e1.data(), res.data(), true);
  EXPECT_EQ(res, zero);
  tnla_crossprod(3, e1.data(), tiny.data(), res.data(), false, true);
  EXPECT_EQ(res, zero);
  tnla_crossprod(3, tiny.data(), e1.data(), res.data(), false, true);
  EXPECT_EQ(res, Vector({0.0, 0.0, 1e-21}));
}

TEST(Crossprod, UnitFlagsScaleByTheReciprocalLengths) {
  const Vector u = {7.0, 0.0, 0.0};
  const Vector w = {0.0, 3.0, 0.0};
  Vector res(3);
  tnla_crossprod(3, u.data(), w.data(), res.data(), true, true);
  EXPECT_SAME(res[2], (21.0 * (1.0 / 7.0)) * (1.0 / 3.0));
  tnla_crossprod(3, u.data(), w.data(), res.data(), false, false, true);
  EXPECT_EQ(res, Vector({0.0, 0.0, 1.0}));
}

TEST(Crossprod, OfTwoAxesInFourDimensionsIsTheThird) {
  const Vector e0 = {1, 0, 0, 0}, e1 = {0, 1, 0, 0};
  EXPECT_EQ(crossprod(e0, e1), Vector({0, 0, 1, 0}));
}

TEST(Crossprod, IsOrthogonalAndAsLongAsTheParallelogramIsLarge) {
  for (int n = 3; n <= 40; ++n) {
    SCOPED_TRACE("n = " + std::to_string(n));
    Random random(static_cast<std::uint64_t>(n));
    const Vector u = random.vector(static_cast<std::size_t>(n));
    const Vector w = random.vector(static_cast<std::size_t>(n));
    const Vector r = crossprod(u, w);
    const double uu = sq_norm(u), ww = sq_norm(w), uw = scalprod(u, w);
    // Four reflections, each of which errs by about 2n roundings, on what is at most |u| |w| long.
    const double error = 8.0 * n * kEps * std::sqrt(uu * ww);
    EXPECT_NEAR(scalprod(r, u), 0.0, error * std::sqrt(uu));
    EXPECT_NEAR(scalprod(r, w), 0.0, error * std::sqrt(ww));
    EXPECT_NEAR(sq_norm(r), uu * ww - uw * uw, 2.0 * error * std::sqrt(uu * ww));
  }
}

// --- tnla_normalize ------------------------------------------------------------------------------------

TEST(Normalize, AgreesWithThePlainLoop) {
  for_random_sizes([](int n, Random& random) {
    const Vector x = random_vector(random, n);
    Guarded actual(x);
    Guarded expected(x);
    EXPECT_SAME(tnla_normalize(n, actual.data()), reference::normalize(n, expected.data()));
    expect_same_block(actual, expected);
  });
}

void expect_normalized(Vector x, double length, const Vector& expected) {
  EXPECT_SAME(tnla_normalize(size_of(x), x.data()), length);
  EXPECT_SAME_ARRAY(x.size(), x.data(), expected.data());
}

TEST(Normalize, DividesByTheLength) {
  ASSERT_NE(3.0 / 5.0, 3.0 * (1.0 / 5.0));
  expect_normalized({3.0, 4.0}, 5.0, {3.0 / 5.0, 4.0 / 5.0});
  expect_normalized({-3.0, -0.0, 4.0}, 5.0, {-3.0 / 5.0, -0.0, 4.0 / 5.0});
}

TEST(Normalize, NumericallyZeroVectorBecomesZero) {
  expect_normalized({-0.0, 0.0}, 0.0, {0.0, 0.0});
  expect_normalized({1e-21, -1e-22}, 0.0, {0.0, 0.0});
  expect_normalized(with_square_sum(ulp_below(1e-40)), 0.0, {0.0, 0.0});
}

TEST(Normalize, ThresholdItselfIsALength) {
  const Vector x = with_square_sum(1e-40);
  const double length = std::sqrt(1e-40);
  expect_normalized(x, length, {x[0] / length, x[1] / length});
}

TEST(Normalize, NaNAndInfinityPropagate) {
  expect_normalized({kNaN, 1.0}, kNaN, {kNaN, kNaN});
  expect_normalized({kInf, -1.0}, kInf, {kNaN, -0.0});
  expect_normalized({1e200, 1.0}, kInf, {0.0, 0.0});  // the sum of squares overflows
}

TEST(Normalize, EmptyArrayWritesNothing) {
  for (const int n : {0, -1}) {
    double untouched = 5.0;
    EXPECT_SAME(tnla_normalize(n, &untouched), 0.0);
    EXPECT_SAME(untouched, 5.0);
  }
}

// --- tnla_ortho_vec ------------------------------------------------------------------------------------

TEST(OrthoVec, AgreesWithThePlainLoop) {
  for_random_sizes([](int n, Random& random) {
    const Vector x = random_vector(random, n);
    Guarded actual(Vector(x.size(), 0.5));
    Guarded expected(Vector(x.size(), 0.5));
    tnla_ortho_vec(n, x.data(), actual.data());
    reference::ortho_vec(n, x.data(), expected.data());
    expect_same_block(actual, expected);
  });
}

TEST(OrthoVec, ResultMayBeTheInput) {
  for_random_sizes([](int n, Random& random) {
    const Vector x = random_vector(random, n);
    Guarded actual(x);
    Guarded expected(x);
    tnla_ortho_vec(n, actual.data(), actual.data());
    if (n > 1) reference::ortho_vec(n, x.data(), expected.data());
    expect_same_block(actual, expected);
  });
}

void expect_ortho(const Vector& x, const Vector& expected) {
  Vector res(x.size(), kNaN);
  tnla_ortho_vec(size_of(x), x.data(), res.data());
  EXPECT_SAME_ARRAY(x.size(), res.data(), expected.data());
}

// e_k - (x_k / x.x) x, normalised.
Vector axis_without(const Vector& x, std::size_t k) {
  const double c = -x[k] / reference::sq_norm(size_of(x), x.data());
  Vector res = x;
  for (double& element : res) element = c * element;
  res[k] += 1.0;
  reference::normalize(size_of(res), res.data());
  return res;
}

TEST(OrthoVec, StartsFromTheAxisOfTheSmallestElement) {
  expect_ortho({3.0, 0.0, 4.0}, {-0.0, 1.0, -0.0});
  expect_ortho({0.0, 2.0}, {1.0, -0.0});
  expect_ortho({2.0, 0.0}, {-0.0, 1.0});
  expect_ortho({-3.0, 2.0, -1.0}, axis_without({-3.0, 2.0, -1.0}, 2));
  expect_ortho({1.0, -2.0, 3.0}, axis_without({1.0, -2.0, 3.0}, 0));
}

TEST(OrthoVec, TakesTheFirstOfEquals) {
  expect_ortho({1.0, 1.0, 1.0}, axis_without({1.0, 1.0, 1.0}, 0));
  expect_ortho({2.0, -1.0, 1.0, -1.0}, axis_without({2.0, -1.0, 1.0, -1.0}, 1));
  expect_ortho({1.0, ulp_below(1.0)}, axis_without({1.0, ulp_below(1.0)}, 1));
}

TEST(OrthoVec, OfANumericallyZeroVectorIsTheFirstAxis) {
  expect_ortho({0.0, 0.0}, {1.0, 0.0});
  expect_ortho({-0.0, 1e-21, -0.0}, {1.0, 0.0, 0.0});
  expect_ortho(with_square_sum(ulp_below(1e-40)), {1.0, 0.0});
  expect_ortho(with_square_sum(1e-40), axis_without(with_square_sum(1e-40), 1));
}

TEST(OrthoVec, NaNAndOverflowPropagate) {
  expect_ortho({1.0, kNaN}, {kNaN, kNaN});
  expect_ortho({kNaN, 1.0}, {kNaN, kNaN});
  expect_ortho({1e200, 1.0, -1e200}, {-0.0, 1.0, 0.0});  // the factor is -1 / inf
}

TEST(OrthoVec, BelowTwoDimensionsDoesNothing) {
  for (const int n : {-1, 0, 1}) {
    const double x = 3.0;
    double res = 5.0;
    tnla_ortho_vec(n, &x, &res);
    EXPECT_SAME(res, 5.0);
  }
}

TEST(OrthoVec, IsAUnitVectorOrthogonalToTheGivenOne) {
  for (int n = 2; n <= 40; ++n) {
    SCOPED_TRACE("n = " + std::to_string(n));
    Random random(static_cast<std::uint64_t>(n));
    const Vector x = random.vector(static_cast<std::size_t>(n));
    Vector res(x.size());
    tnla_ortho_vec(n, x.data(), res.data());
    // Sums of n terms, with a rounding each, and a handful before them.
    const double error = 2.0 * (n + 4) * kEps;
    EXPECT_NEAR(sq_norm(res), 1.0, error);
    EXPECT_NEAR(scalprod(res, x), 0.0, error * std::sqrt(sq_norm(x)));
  }
}

// --- All of them ---------------------------------------------------------------------------------------

TEST(Kernels, NeverCallTheAssertionHook) {
  AssertionLog log;
  const Vector values = {0.0, kNaN, kInf, 1e-300, -1.0};
  Vector res(values.size());
  const double* const x = values.data();
  for (int n = -1; n <= 5; ++n) {
    tnla_sq_norm(n, x, x);
    tnla_norm(n, x, nullptr);
    tnla_scalprod(n, x, x, true, true);
    tnla_lincomb(n, x, kNaN, x, 0.0, res.data(), true, true, true);
    tnla_crossprod(n, x, x, res.data(), true, true, true);
    tnla_ortho_vec(n, x, res.data());
    tnla_normalize(n, res.data());
  }
  EXPECT_EQ(log.files(), Files());
}

}  // namespace
