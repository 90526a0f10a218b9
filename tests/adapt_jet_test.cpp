// SPDX-License-Identifier: MIT

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <string>
#include <type_traits>
#include <vector>

#include "reference/jet_reference.h"
#include "support/bits.h"
#include "support/jets.h"
#include "support/values.h"

namespace {

constexpr int kMaxInt = std::numeric_limits<int>::max();
constexpr int kMinInt = std::numeric_limits<int>::min();

static_assert(
    std::is_same_v<decltype(&tnla_util_adapt_jet),
                   void (*)(TnOperationBehaviour*, int, TnLaDblMat&, const TnLaDblMat&, bool, int*)>);

// --- The twin -------------------------------------------------------------------------------------------

std::vector<Request> all_requests(int order) {
  std::vector<Request> all;
  for (const bool linear_only : {false, true}) {
    for (const Orientation& orientation : {Orientation(), Orientation(0), Orientation(1), Orientation(-1),
                                           Orientation(5), Orientation(kMinInt)}) {
      for (const Level& level : {Level(), Level(1), Level(0), Level(-5), Level(2)}) {
        all.push_back({order, linear_only, orientation, level});
      }
    }
  }
  return all;
}

// With columns beyond the order now and then.
Matrix random_jet(Random& random, std::size_t rows, int order) {
  const std::size_t cols = static_cast<std::size_t>(std::max(order, 0)) + 1 + random.below(3);
  return {rows, cols, reference::draw(random, rows * cols)};
}

template <class Check>
void for_random_jets(Check check) {
  for (std::size_t rows = 0; rows <= 9; ++rows) {
    for (int order = -1; order <= 6; ++order) {
      for (std::uint64_t seed = 1; seed <= 8; ++seed) {
        SCOPED_TRACE(std::to_string(rows) + " rows, order " + std::to_string(order) + ", seed " +
                     std::to_string(seed));
        Random random(seed * 1000 + rows * 10 + static_cast<std::uint64_t>(order + 1));
        check(random, rows, order);
      }
    }
  }
}

TEST(AdaptJet, HasTheBitsOfTheTwin) {
  for_random_jets([](Random& random, std::size_t rows, int order) {
    const Matrix jet = random_jet(random, rows, order);
    const Matrix ref = random_jet(random, rows, order);
    for (const Request& request : all_requests(order)) {
      SCOPED_TRACE(request);
      expect_like_the_twin(request, jet, ref);
    }
  });
}

TEST(AdaptJet, TakesTheJetItselfAsTheReference) {
  for_random_jets([](Random& random, std::size_t rows, int order) {
    const Matrix jet = random_jet(random, rows, order);
    for (const Request& request : all_requests(order)) {
      SCOPED_TRACE(request);
      TnLaDblMat x = dense(jet);
      expect_adapts_like_the_twin(request, x, x);
    }
  });
}

TEST(AdaptJet, PropagatesSpecialValues) {
  for (const double a : special_values()) {
    for (const double b : special_values()) {
      SCOPED_TRACE(in_full(a) + " in the jet, " + in_full(b) + " in the reference");
      for (std::size_t place = 2; place < 8; ++place) {  // in columns 1 to 3
        Matrix jet = jet_of({{1, 2}, {0.5, -0.25}, {3, -4}, {-5, 6}});
        Matrix ref = jet_of({{1, 2}, {-0.75, 0.125}, {7, 8}, {9, -1}});
        jet.a[place] = a;
        ref.a[place] = b;
        for (const Request& request : all_requests(3)) {
          SCOPED_TRACE(request);
          expect_like_the_twin(request, jet, ref);
        }
      }
    }
  }
}

// --- Examples worked out by hand ------------------------------------------------------------------------

TEST(AdaptJet, TakesTheLengthOfTheReferencesFirstDerivative) {
  const Matrix jet = jet_of({{7, 8}, {2, 0}});
  EXPECT_SAME_MATRIX(adapted(jet, jet_of({{0, 0}, {4, 0}}), 1), jet_of({{7, 8}, {4, 0}}));
  EXPECT_SAME_MATRIX(adapted(jet, jet_of({{0, 0}, {3, 4}}), 1), jet_of({{7, 8}, {5, 0}}));
  EXPECT_SAME_MATRIX(adapted(jet, jet_of({{0, 0}, {0, 0}}), 1), jet_of({{7, 8}, {0, 0}}));
}

TEST(AdaptJet, TakesTheComponentOfTheSecondDerivativeAlongTheFirst) {
  const Matrix jet = jet_of({{7, 8}, {1, 0}, {0, 1}});
  EXPECT_SAME_MATRIX(adapted(jet, jet_of({{0, 0}, {1, 0}, {5, 1}}), 2), jet_of({{7, 8}, {1, 0}, {5, 1}}));
  EXPECT_SAME_MATRIX(adapted(jet, jet_of({{0, 0}, {2, 0}, {5, 9}}), 2), jet_of({{7, 8}, {2, 0}, {5, 4}}));
}

// lambda = 2, mu2 = 5, mu3 = 7 - 3 * 2 * 5 * 3 = -83 for x'' = (3, 1), x''' = (0, 1):
// mu2 = 17 - 4 * 3, and x''' = 8 x''' + 30 x'' + mu3 x'.
TEST(AdaptJet, TakesTheComponentOfTheThirdDerivativeAlongTheFirst) {
  const Matrix jet = jet_of({{7, 8}, {1, 0}, {3, 1}, {0, 1}});
  const Matrix ref = jet_of({{0, 0}, {0, 2}, {17, 0}, {7, 0}});
  EXPECT_SAME_MATRIX(adapted(jet, ref, 3), jet_of({{7, 8}, {2, 0}, {17, 4}, {7, 38}}));
}

// The middle term of the third derivative is 30 x' then.
TEST(AdaptJet, ABehaviourBelowLevelOneTakesTheFirstDerivativeInPlaceOfTheSecond) {
  const Matrix jet = jet_of({{7, 8}, {1, 0}, {3, 1}, {0, 1}});
  const Matrix ref = jet_of({{0, 0}, {0, 2}, {17, 0}, {7, 0}});
  for (const int level : {0, -1, -5, -32768}) {
    Behaviour old(level);
    EXPECT_SAME_MATRIX(adapted(jet, ref, 3, false, nullptr, &old),
                       jet_of({{7, 8}, {2, 0}, {17, 4}, {-53, 8}}));
  }
  for (const int level : {1, 2, 32767}) {
    Behaviour present(level);
    EXPECT_SAME_MATRIX(adapted(jet, ref, 3, false, nullptr, &present),
                       jet_of({{7, 8}, {2, 0}, {17, 4}, {7, 38}}));
  }
}

TEST(AdaptJet, ALinearChangeScalesEveryDerivative) {
  const Matrix jet = jet_of({{7, 8}, {1, 0}, {3, 1}, {5, -1}, {9, 9}});
  const Matrix ref = jet_of({{0, 0}, {0, 4}, {kNaN, kNaN}, {kNaN, kNaN}});
  EXPECT_SAME_MATRIX(adapted(jet, ref, 3, true), jet_of({{7, 8}, {4, 0}, {48, 16}, {320, -64}, {9, 9}}));
}

// --- What stays -----------------------------------------------------------------------------------------

TEST(AdaptJet, AnOrderBelowOneChangesNothing) {
  const Matrix jet = jet_of({{7, 8}, {1, 0}, {3, 1}, {5, -1}});
  const Matrix ref = jet_of({{0, 0}, {-2, 0}, {1, 1}, {1, 1}});
  for (const int order : {0, -1, kMinInt}) {
    int orientation = 0;
    Behaviour behaviour(0);
    EXPECT_SAME_MATRIX(adapted(jet, ref, order, false, &orientation, &behaviour), jet);
    EXPECT_EQ(orientation, 0);
    EXPECT_EQ(behaviour.n_asked, 0);
  }
}

// Neither read nor written: the point, the derivatives beyond the order, those beyond the third.
TEST(AdaptJet, LooksAtTheDerivativesUpToTheOrderOnly) {
  const Matrix jet = jet_of({{7, 8}, {1, 2}, {3, 1}, {5, -1}, {6, 4}, {2, 2}});
  const Matrix ref = jet_of({{1, 1}, {-2, -2}, {1, 1}, {1, 1}, {1, 1}, {1, 1}});
  for (int order = 1; order <= 5; ++order) {
    SCOPED_TRACE(order);
    const Matrix result = adapted(jet, ref, order);
    Matrix noisy_jet = jet;
    Matrix noisy_ref = ref;
    Matrix noisy_result = result;
    for (std::size_t k = 0; k < 6; ++k) {
      if (k >= 1 && k <= 3 && k <= static_cast<std::size_t>(order)) {
        EXPECT_NE(column(result, k), column(jet, k));
        continue;
      }
      EXPECT_EQ(column(result, k), column(jet, k));
      for (Matrix* const m : {&noisy_jet, &noisy_ref, &noisy_result}) (*m)(0, k) = (*m)(1, k) = kNaN;
    }
    EXPECT_SAME_MATRIX(adapted(noisy_jet, noisy_ref, order), noisy_result);
  }
}

// --- The behaviour object -------------------------------------------------------------------------------

TEST(AdaptJet, AsksTheBehaviourOnceFromTheThirdDerivativeOn) {
  const Matrix jet = jet_of({{7}, {1}, {2}, {3}, {4}, {5}, {6}});
  for (const bool linear_only : {false, true}) {
    for (int order = -1; order <= 6; ++order) {
      Behaviour behaviour(1);
      adapted(jet, jet, order, linear_only, nullptr, &behaviour);
      EXPECT_EQ(behaviour.n_asked, order >= 3 ? 1 : 0) << order;
      EXPECT_EQ(behaviour.n_wrong, 0);
    }
  }
}

TEST(AdaptJet, AsksNothingWhereTheFirstDerivativeIsTooShort) {
  for (const double speed : {0.0, 1e-11}) {
    Behaviour behaviour(0);
    adapted(jet_of({{7}, {speed}, {2}, {3}}), jet_of({{7}, {1}, {2}, {3}}), 3, false, nullptr, &behaviour);
    EXPECT_EQ(behaviour.n_asked, 0) << speed;
  }
}

// --- Which way round ------------------------------------------------------------------------------------

// x' becomes 2 x' or -2 x', whichever reference of length 2 there is.
void expect_first_derivative(double sign, Orientation orientation, const Vector& ref_derivative,
                             Orientation orientation_afterwards) {
  const Matrix jet = jet_of({{7, 8}, {1, 0}});
  const Matrix result =
      adapted(jet, jet_of({{0, 0}, ref_derivative}), 1, false, orientation ? &*orientation : nullptr);
  EXPECT_SAME(result(0, 1), sign * 2.0);
  EXPECT_EQ(orientation, orientation_afterwards);
}

TEST(AdaptJet, WithoutAnOrientationFollowsTheReference) {
  expect_first_derivative(1, {}, {2, 0}, {});
  expect_first_derivative(-1, {}, {-2, 0}, {});
  expect_first_derivative(1, {}, {0, 2}, {});
}

TEST(AdaptJet, SetsAnOrientationOfZeroByTheReference) {
  expect_first_derivative(1, 0, {2, 0}, 1);
  expect_first_derivative(-1, 0, {-2, 0}, -1);
  expect_first_derivative(1, 0, {0, 2}, 1);
  expect_first_derivative(1, 0, {-0.0, 2}, 1);
}

TEST(AdaptJet, ObeysAnyOtherOrientationAndKeepsIt) {
  for (const int orientation : {1, 2, kMaxInt}) {
    expect_first_derivative(1, orientation, {2, 0}, orientation);
    expect_first_derivative(1, orientation, {-2, 0}, orientation);
  }
  for (const int orientation : {-1, -7, kMinInt}) {
    expect_first_derivative(-1, orientation, {2, 0}, orientation);
    expect_first_derivative(-1, orientation, {-2, 0}, orientation);
  }
}

TEST(AdaptJet, AScalarProductBelowTenToTheMinusFortyIsNone) {
  ASSERT_EQ(std::sqrt(4.0 + 1e-80), 2.0);
  expect_first_derivative(1, {}, {ulp_above(-1e-40), 2}, {});
  expect_first_derivative(1, 0, {ulp_above(-1e-40), 2}, 1);
  expect_first_derivative(-1, {}, {-1e-40, 2}, {});
  expect_first_derivative(-1, 0, {-1e-40, 2}, -1);
}

TEST(AdaptJet, ANanInTheFirstDerivativeDoesNotReverse) {
  int orientation = 0;
  adapted(jet_of({{0}, {kNaN}}), jet_of({{0}, {-1}}), 1, false, &orientation);
  EXPECT_EQ(orientation, 1);
}

// The same in the components of the higher derivatives.
TEST(AdaptJet, AComponentBelowTenToTheMinusFortyIsNone) {
  const double below = ulp_below(1e-40);
  const Matrix jet = jet_of({{0, 0}, {1, 0}, {0, 0}, {0, 0}});
  EXPECT_SAME_MATRIX(adapted(jet, jet_of({{0, 0}, {1, 0}, {below, 0}, {below, 0}}), 3), jet);
  const Matrix ref = jet_of({{0, 0}, {1, 0}, {1e-40, 0}, {1e-40, 0}});
  EXPECT_SAME_MATRIX(adapted(jet, ref, 3), ref);
}

// --- The meaning ----------------------------------------------------------------------------------------

// The jets are of integers, so that all rounding is the library's.  A product or sum rounds once, by at
// most u = 2^-53 of its terms' magnitudes.  On the longest way to an element of the third derivative lie
//
//     lambda     n + 3     two norms, of n squares each, and their quotient
//     mu2       4n + 11    lambda twice, a combination, a scalar product, |x'|^2, their quotient
//     the rest  3n + 12    lambda once more, two combinations, a scalar product, |x'|^2, their quotient
//                          and a last combination
//
// roundings, and fewer on all others: 8n + 32 are more.
double n_roundings(const Matrix& jet) { return 8.0 * static_cast<double>(jet.m) + 32.0; }

double length(const Vector& x) { return reference::norm(static_cast<int>(x.size()), x.data()); }

// What the magnitudes of all terms of the adapted derivative k add up to, at most.
double magnitude(std::size_t k, const Matrix& jet, const Matrix& ref) {
  const auto c = [&](std::size_t i) { return length(column(jet, i)); };
  const auto r = [&](std::size_t i) { return length(column(ref, i)); };
  const double lambda = r(1) / c(1);
  if (k == 1) return r(1);
  const double scaled = lambda * lambda * c(2);
  const double mu2 = (r(2) + scaled) / c(1);
  if (k == 2) return scaled + mu2 * c(1);
  const double third = lambda * lambda * lambda * c(3) + 3.0 * lambda * mu2 * c(2);
  return third + (r(3) + third);
}

double tolerance(std::size_t k, const Matrix& jet, const Matrix& ref) {
  return n_roundings(jet) * 0x1p-53 * magnitude(k, jet, ref);
}

double small_integer(Random& random) { return static_cast<double>(random.below(19)) - 9.0; }

// Point, x', x'', x''' in integers; x' is not 0.
Matrix integer_jet(Random& random, std::size_t rows) {
  Matrix jet(rows, 4);
  for (double& x : jet.a) x = small_integer(random);
  if (jet(0, 1) == 0.0) jet(0, 1) = 5.0;
  return jet;
}

// x(phi(s)), where phi' = p1 and so on: the chain rule, in integers again.
Matrix composed(const Matrix& x, double p1, double p2, double p3) {
  Matrix result = x;
  for (std::size_t i = 0; i < x.m; ++i) {
    result(i, 1) = x(i, 1) * p1;
    result(i, 2) = x(i, 2) * p1 * p1 + x(i, 1) * p2;
    result(i, 3) = x(i, 3) * p1 * p1 * p1 + 3.0 * x(i, 2) * p1 * p2 + x(i, 1) * p3;
  }
  return result;
}

Matrix in_a_random_parameter(Random& random, const Matrix& x) {
  const double speed = static_cast<double>(1 + random.below(4));
  const double direction = random.below(2) == 0 ? 1.0 : -1.0;
  const double p2 = small_integer(random);
  return composed(x, speed * direction, p2, small_integer(random));
}

template <class Check>
void for_integer_jets(Check check) {
  for (std::size_t rows = 1; rows <= 6; ++rows) {
    for (std::uint64_t seed = 1; seed <= 100; ++seed) {
      SCOPED_TRACE(std::to_string(rows) + " rows, seed " + std::to_string(seed));
      Random random(seed * 10 + rows);
      check(random, integer_jet(random, rows));
    }
  }
}

TEST(AdaptJet, TwoJetsOfOneCurveAgreeAfterwards) {
  for_integer_jets([](Random& random, const Matrix& curve) {
    const Matrix jet = in_a_random_parameter(random, curve);
    const Matrix ref = in_a_random_parameter(random, curve);
    for (int order = 1; order <= 3; ++order) {
      const Matrix result = adapted(jet, ref, order);
      for (std::size_t k = 0; k < 4; ++k) {
        const bool adapts = k >= 1 && k <= static_cast<std::size_t>(order);
        const double allowed = adapts ? tolerance(k, jet, ref) : 0.0;
        for (std::size_t i = 0; i < jet.m; ++i) {
          EXPECT_NEAR(result(i, k), adapts ? ref(i, k) : jet(i, k), allowed) << "column " << k;
        }
      }
    }
  });
}

// Of any two jets.  The length and the components are computed with as few roundings again.
TEST(AdaptJet, SpeedAndComponentsAlongTheCurveAreThoseOfTheReferenceAfterwards) {
  for_integer_jets([](Random& random, const Matrix& jet) {
    const Matrix ref = integer_jet(random, jet.m);
    const Matrix result = adapted(jet, ref, 3);
    EXPECT_NEAR(length(column(result, 1)), length(column(ref, 1)), 2.0 * tolerance(1, jet, ref));
    const Vector direction = column(jet, 1);
    for (const std::size_t k : {2u, 3u}) {
      EXPECT_NEAR(reference::along(column(result, k), direction),
                  reference::along(column(ref, k), direction),
                  2.0 * tolerance(k, jet, ref) * length(direction));
    }
  });
}

}  // namespace
