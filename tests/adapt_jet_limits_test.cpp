// SPDX-License-Identifier: MIT

// What stops the adaptation of a jet: a first derivative that is too short, shapes that do not fit,
// exceptions.

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <new>
#include <string>
#include <utility>
#include <vector>

#include "reference/jet_reference.h"
#include "support/allocation.h"
#include "support/bits.h"
#include "support/expect_asserts.h"
#include "support/jets.h"
#include "support/values.h"

namespace {

constexpr int kMaxInt = std::numeric_limits<int>::max();
constexpr int kMinInt = std::numeric_limits<int>::min();

// --- First derivatives that are too short ---------------------------------------------------------------

// A vector whose length is this to the last bit, and counts as such.
Vector with_length(double length) {
  for (double square = length * length * (1 - 4 * 0x1p-52); square < length * length * (1 + 4 * 0x1p-52);
       square = ulp_above(square)) {
    if (std::sqrt(square) == length && square >= 1e-40) return reference::with_square_sum(square);
  }
  ADD_FAILURE() << in_full(length) << " is no length";
  return {0.0, 0.0};
}

Matrix jet_with_first(const Vector& derivative) { return jet_of({{7, 8}, derivative, {3, 1}, {5, -1}}); }

Matrix opposite() { return jet_of({{0, 0}, {-2, -1}, {17, 0}, {7, 0}}); }

// Unchanged by a request to adapt up to `order`, with the orientation set or left at 0.
void expect_is_too_short(const Vector& derivative, int order, bool linear_only,
                         int orientation_afterwards) {
  SCOPED_TRACE((Request{order, linear_only}));
  const Matrix jet = jet_with_first(derivative);
  int orientation = 0;
  EXPECT_SAME_MATRIX(adapted(jet, opposite(), order, linear_only, &orientation), jet);
  EXPECT_EQ(orientation, orientation_afterwards);
}

void expect_is_long_enough(const Vector& derivative, int order, bool linear_only) {
  SCOPED_TRACE((Request{order, linear_only}));
  const Matrix jet = jet_with_first(derivative);
  expect_like_the_twin({order, linear_only, 0}, jet, opposite());
  int orientation = 0;
  const Matrix result = adapted(jet, opposite(), order, linear_only, &orientation);
  for (std::size_t k = 1; k <= static_cast<std::size_t>(order); ++k) {
    EXPECT_NE(column(result, k), column(jet, k));
  }
  EXPECT_EQ(orientation, -1);
}

TEST(AdaptJet, ALengthOfTenToTheMinusTwentyIsTooShort) {
  const Vector at_the_bound = with_length(1e-20);
  ASSERT_EQ(tnla_norm(2, at_the_bound.data(), nullptr), 1e-20);
  for (const Vector& derivative : {Vector{0, 0}, Vector{1e-21, 0}, at_the_bound}) {
    for (int order = 1; order <= 3; ++order) {
      expect_is_too_short(derivative, order, false, 0);
      expect_is_too_short(derivative, order, true, 0);
    }
  }
}

TEST(AdaptJet, TheNextLengthIsEnoughForALinearChange) {
  const Vector derivative = with_length(ulp_above(1e-20));
  ASSERT_EQ(tnla_norm(2, derivative.data(), nullptr), ulp_above(1e-20));
  expect_is_long_enough(derivative, 1, false);
  for (int order = 1; order <= 3; ++order) expect_is_long_enough(derivative, order, true);
  for (int order = 2; order <= 3; ++order) expect_is_too_short(derivative, order, false, -1);
}

TEST(AdaptJet, ASquaredLengthOfTenToTheMinusTwentyIsTooShortForTheSecondDerivative) {
  const Vector at_the_bound = reference::with_square_sum(1e-20);
  ASSERT_EQ(tnla_sq_norm(2, at_the_bound.data(), nullptr), 1e-20);
  for (const Vector& derivative : {Vector{1e-19, 0}, Vector{1e-15, 1e-14}, at_the_bound}) {
    for (int order = 2; order <= 3; ++order) expect_is_too_short(derivative, order, false, -1);
    for (int order = 1; order <= 3; ++order) expect_is_long_enough(derivative, order, true);
    expect_is_long_enough(derivative, 1, false);
  }
}

TEST(AdaptJet, TheNextSquaredLengthIsEnoughForTheSecondDerivative) {
  const Vector derivative = reference::with_square_sum(ulp_above(1e-20));
  for (int order = 1; order <= 3; ++order) expect_is_long_enough(derivative, order, false);
}

// --- Violated preconditions -----------------------------------------------------------------------------

struct Shape {
  std::size_t rows;
  std::size_t cols;
};

Matrix random_of_shape(Random& random, const Shape& shape) {
  return {shape.rows, shape.cols, random.vector(shape.rows * shape.cols)};
}

std::size_t n_violated(int order, const Shape& jet, const Shape& ref) {
  const auto lacks = [order](const Shape& shape) { return order >= static_cast<int>(shape.cols); };
  return (jet.rows != ref.rows ? 1u : 0u) + (lacks(jet) ? 1u : 0u) + (lacks(ref) ? 1u : 0u);
}

void expect_goes_on(int order, const Shape& jet_shape, const Shape& ref_shape) {
  SCOPED_TRACE(testing::Message() << "order " << order << ", jet " << jet_shape.rows << " x "
                                  << jet_shape.cols << ", reference " << ref_shape.rows << " x "
                                  << ref_shape.cols);
  Random random(jet_shape.rows * 1000 + jet_shape.cols * 100 + ref_shape.rows * 10 + ref_shape.cols);
  const Matrix jet = random_of_shape(random, jet_shape);
  const Matrix ref = random_of_shape(random, ref_shape);
  const Files files(n_violated(order, jet_shape, ref_shape), "src/tnla_util.cpp");
  for (const Request& request :
       {Request{order}, Request{order, false, 0, 0}, Request{order, true, -1, 0}}) {
    expect_asserts(files, [&] { expect_like_the_twin(request, jet, ref); });
  }
}

// With the rows of the jet, the derivatives that it has, and 0.0 beyond the end of the reference.
TEST(AdaptJet, GoesOnWhereTheShapesDoNotFit) {
  constexpr std::size_t kLargest = 5;
  for (std::size_t rows = 0; rows < kLargest; ++rows) {
    for (std::size_t cols = 0; cols <= kLargest; ++cols) {
      for (std::size_t ref_rows = 0; ref_rows < kLargest; ++ref_rows) {
        for (std::size_t ref_cols = 0; ref_cols <= kLargest; ++ref_cols) {
          for (const int order : {-1, 0, 1, 2, 3, 4, 6}) {
            expect_goes_on(order, {rows, cols}, {ref_rows, ref_cols});
          }
        }
      }
    }
  }
}

TEST(AdaptJet, GoesOnWithAnyOrder) {
  for (const int order : {kMinInt, kMaxInt - 1, kMaxInt}) {
    expect_goes_on(order, {3, 4}, {3, 4});
    expect_goes_on(order, {3, 6}, {2, 2});
    expect_goes_on(order, {3, 2}, {3, 4});
    expect_goes_on(order, {3, 0}, {3, 4});
  }
}

// Rows cost nothing where there is no column: there is no end to how many an empty reference may have.
TEST(AdaptJet, GoesOnBesideAReferenceOfAnyNumberOfEmptyRows) {
  constexpr std::size_t kMax = std::numeric_limits<std::size_t>::max();
  for (const std::size_t rows : {std::size_t{1} << 40, kMax / 3, kMax / 3 + 1, kMax / 2 + 1, kMax}) {
    for (int order = 1; order <= 3; ++order) expect_goes_on(order, {2, 4}, {rows, 0});
  }
}

TEST(AdaptJet, TakesTheJetItselfAlsoWhereItHasTooFewDerivatives) {
  for (std::size_t cols = 0; cols <= 5; ++cols) {
    Random random(cols);
    const Matrix jet = random_of_shape(random, {4, cols});
    for (int order = -1; order <= 6; ++order) {
      SCOPED_TRACE(std::to_string(cols) + " columns, order " + std::to_string(order));
      const Files files(n_violated(order, {4, cols}, {4, cols}), "src/tnla_util.cpp");
      expect_asserts(files, [&] {
        TnLaDblMat x = dense(jet);
        expect_adapts_like_the_twin({order, false, -1, 0}, x, x);
      });
    }
  }
}

// --- A client that changes the jet while it is asked
// ------------------------------------------------------

class ReshapingBehaviour : public TnOperationBehaviour {
 public:
  ReshapingBehaviour(TnLaDblMat& jet, std::size_t rows, std::size_t cols)
      : jet_(jet), rows_(rows), cols_(cols) {}

  std::int16_t behaviour_level(const TnString*, int, std::int16_t) override {
    jet_.resize(rows_, cols_, true);
    return 1;
  }

 private:
  TnLaDblMat& jet_;
  std::size_t rows_;
  std::size_t cols_;
};

// Derivatives beyond the order are not looked at, and one more does no harm.
TEST(AdaptJet, AJetThatTheBehaviourGivesAnotherShapeIsLeftAlone) {
  const Matrix jet = jet_of({{7, 8}, {1, 0}, {3, 1}, {5, -1}});
  const Matrix ref = jet_of({{0, 0}, {-2, 0}, {17, 0}, {7, 0}});
  for (const auto& [rows, cols] :
       {std::pair<std::size_t, std::size_t>{3, 4}, {1, 4}, {2, 3}, {2, 0}, {0, 0}, {3, 5}, {2, 5}}) {
    TnLaDblMat x = dense(jet);
    ReshapingBehaviour behaviour(x, rows, cols);
    tnla_util_adapt_jet(&behaviour, 3, x, dense(ref), false, nullptr);
    const bool fits = rows == 2 && cols > 3;
    EXPECT_SAME_MATRIX(x, reference::resized(fits ? adapted(jet, ref, 3) : jet, rows, cols));
  }
}

// --- Exceptions -----------------------------------------------------------------------------------------

class ThrowingBehaviour : public TnOperationBehaviour {
 public:
  std::int16_t behaviour_level(const TnString*, int, std::int16_t) override {
    throw std::string("refused");
  }
};

TEST(AdaptJet, AnExceptionOfTheBehaviourLeavesTheJetAsItWas) {
  const Matrix jet = jet_of({{7, 8}, {1, 0}, {3, 1}, {5, -1}});
  const Matrix ref = jet_of({{0, 0}, {-2, 0}, {17, 0}, {7, 0}});
  const TnLaDblMat r = dense(ref);
  TnLaDblMat x = dense(jet);
  ThrowingBehaviour behaviour;
  const std::size_t alive = allocation::alive();
  for (const bool linear_only : {false, true}) {
    EXPECT_THROW(tnla_util_adapt_jet(&behaviour, 3, x, r, linear_only, nullptr), std::string);
    EXPECT_EQ(allocation::alive(), alive);
    EXPECT_SAME_MATRIX(x, jet);
  }
  tnla_util_adapt_jet(&behaviour, 2, x, r, false, nullptr);
  EXPECT_SAME_MATRIX(x, adapted(jet, ref, 2));
}

// The second reference is too short, so that there is more to allocate.
TEST(AdaptJet, ExhaustedMemoryLeavesTheJetAsItWas) {
  const Matrix jet = jet_of({{7, 8}, {1, 0}, {3, 1}, {5, -1}});
  for (const Matrix& ref : {jet_of({{0, 0}, {-2, 0}, {17, 0}, {7, 0}}), jet_of({{0}, {-2}})}) {
    const TnLaDblMat r = dense(ref);
    TnLaDblMat x = dense(jet);
    const std::size_t alive = allocation::alive();
    const auto succeeds = [&](std::size_t allocations) {
      const allocation::Failing failing(allocations);
      try {
        tnla_util_adapt_jet(nullptr, 3, x, r, false, nullptr);
        return true;
      } catch (const std::bad_alloc&) {
        return false;
      }
    };
    std::size_t allocations = 0;
    for (; !succeeds(allocations); ++allocations) {
      ASSERT_LT(allocations, 10u);
      EXPECT_SAME_MATRIX(x, jet);
    }
    EXPECT_GT(allocations, 0u);
    EXPECT_EQ(allocation::alive(), alive);
    EXPECT_SAME_MATRIX(x, adapted(jet, ref, 3));
  }
}

}  // namespace
