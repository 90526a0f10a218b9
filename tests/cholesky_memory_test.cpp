// SPDX-License-Identifier: MIT

// What the solver keeps and returns, seen by counting allocations, and how it goes on when it is disturbed.

#include <gtest/gtest.h>

#include <cfenv>
#include <cstddef>
#include <new>
#include <vector>

#include "support/allocation.h"
#include "support/cholesky_objects.h"
#include "support/expect_asserts.h"
#include "support/trial.h"
#include "tnlacholesky_i.h"

namespace {

using reference::diagonal;

constexpr char kSource[] = "src/tnlacholesky.cpp";

// --- What is kept ---------------------------------------------------------------------------------------

TEST(CholeskyMemory, TheFactorIsMadeAtTheFirstSolution) {
  const Array a = array(kDefinite);
  const Array b = array(kLoad);
  TnLaCholesky cholesky(3);
  EXPECT_EQ(allocations([] { const TnLaCholesky another(3); }), 0u);
  EXPECT_EQ(allocations([&] { cholesky.a(a); }), 1u);
  EXPECT_EQ(allocations([&] { cholesky.b(b); }), 1u);
  // The factor, its diagonal, the right side to work on, and the solution.
  EXPECT_EQ(allocations([&] { cholesky.x(); }), 4u);
  EXPECT_EQ(allocations([&] { cholesky.x(); }), 0u);
}

TEST(CholeskyMemory, ARightSideKeepsTheFactorAndAMatrixDoesNot) {
  const Array a = array(kNextDefinite);
  const Array b = array(kNextLoad);
  Loaded cholesky;
  cholesky.x();
  for (int i = 0; i < 3; ++i) {
    EXPECT_EQ(allocations([&] { cholesky.b(b); }), 0u);
    EXPECT_EQ(allocations([&] { cholesky.x(); }), 1u);
    EXPECT_EQ(allocations([&] { cholesky.a(a); }), 0u);
    EXPECT_EQ(allocations([&] { cholesky.x(); }), 2u);
    EXPECT_EQ(allocations([&] { cholesky.x(); }), 0u);
  }
  expect_solution(cholesky.x(), kNextDefinite, kNextLoad);
}

// The other solve makes the same matrices each time; only the first one makes a factor before.
TEST(CholeskyMemory, AFailedFactorIsKeptToo) {
  for (const Matrix& A : {kIndefinite, kSingular}) {
    const Array b = array(kNextLoad);
    Loaded cholesky(A);
    const std::size_t first = allocations([&] { cholesky.x(); });
    const std::size_t second = allocations([&] { cholesky.x(); });
    EXPECT_EQ(first, second + 4);
    cholesky.b(b);
    EXPECT_EQ(allocations([&] { cholesky.x(); }), second + 1);
    expect_solution(cholesky.x(), A, kNextLoad);
  }
}

// Whether the next solution raises a floating-point flag.
bool raises(int flag, TnLaCholesky& cholesky) {
  std::feclearexcept(FE_ALL_EXCEPT);
  cholesky.x();
  return std::fetestexcept(flag) != 0;
}

// A root is inexact, and nothing else: the right sides are zero.
TEST(CholeskyMemory, TheFactorIsComputedOnceForAMatrix) {
  Loaded cholesky(diagonal({2, 3, 5}), {0, 0, 0});
  EXPECT_TRUE(raises(FE_INEXACT, cholesky));
  EXPECT_FALSE(raises(FE_INEXACT, cholesky));
  cholesky.b(zeros(3));
  EXPECT_FALSE(raises(FE_INEXACT, cholesky));
  cholesky.a(array(diagonal({7, 3, 5})));
  EXPECT_TRUE(raises(FE_INEXACT, cholesky));
  EXPECT_FALSE(raises(FE_INEXACT, cholesky));
}

// Here it is the square of 1e-175, in the second pivot; the other solve squares 1e-100 and 1e150.
TEST(CholeskyMemory, AFactorThatFailsIsTriedOnceForAMatrix) {
  Loaded cholesky({2, 2, {1e150, 0, 1e-100, -1}}, {0, 0});
  EXPECT_TRUE(raises(FE_UNDERFLOW, cholesky));
  EXPECT_FALSE(raises(FE_UNDERFLOW, cholesky));
  cholesky.b(zeros(2));
  EXPECT_FALSE(raises(FE_UNDERFLOW, cholesky));
  cholesky.a(array({1e150, 0, 1e-100, -2}));
  EXPECT_TRUE(raises(FE_UNDERFLOW, cholesky));
}

// The matrix, the right side, the factor, its diagonal, the right side to work on, and the solution.
TEST(CholeskyMemory, WhatIsDroppedIsReturned) {
  const Array a = array(kDefinite);
  const Array b = array(kLoad);
  const std::size_t alive = allocation::alive();
  Array wrong = zeros(5);
  const auto blocks = [&] { return allocation::alive() - alive - 1; };  // `wrong` has one
  TnLaCholesky cholesky(3);
  cholesky.a(a);
  cholesky.b(b);
  EXPECT_EQ(blocks(), 2u);
  cholesky.x();
  EXPECT_EQ(blocks(), 6u);
  cholesky.b(b);
  EXPECT_EQ(blocks(), 5u);
  cholesky.x();
  cholesky.a(a);
  EXPECT_EQ(blocks(), 4u);
  cholesky.x();
  cholesky.a(wrong);
  EXPECT_EQ(blocks(), 3u);
  cholesky.b(wrong);
  EXPECT_EQ(blocks(), 1u);
  cholesky.x();
  EXPECT_EQ(blocks(), 0u);
}

// --- Memory that runs out, and handlers that throw ------------------------------------------------------

struct CholeskyWorld {
  const Array a = array(kDefinite), next_a = array(kNextDefinite), bad_a = array(kIndefinite),
              flat_a = array(kSingular), b = array(kLoad), next_b = array(kNextLoad), wrong = zeros(5);
  TnLaCholesky cholesky{3};
  trial::Results results;

  trial::Record inputs() const {
    trial::Record r;
    for (const Array* array : {&a, &next_a, &bad_a, &flat_a, &b, &next_b, &wrong}) r.add_whole(*array);
    return r;
  }
  static trial::Record steady() { return {}; }
  trial::Record all() const { return trial::Record().add(results.data(), results.size()); }
  bool sound() const { return results.fit(); }
  void restore() { results.clear(); }

  void solve() { results.keep(cholesky.x()); }
};

using World = CholeskyWorld;
using Operation = trial::Operation<World>;

TEST(CholeskyDisturbance, MemoryThatRunsOutLosesNothing) {
  const Operation operations[] = {
      {"by the factor", [](World& w) { w.cholesky.a(w.a), w.cholesky.b(w.b), w.solve(); }, 6},
      {"without it", [](World& w) { w.cholesky.a(w.bad_a), w.cholesky.b(w.b), w.solve(); }},
      {"of rank 1", [](World& w) { w.cholesky.a(w.flat_a), w.cholesky.b(w.b), w.solve(); }},
      {"next right side",
       [](World& w) {
         w.cholesky.a(w.a), w.cholesky.b(w.b), w.solve();
         w.cholesky.b(w.next_b), w.solve();
       }},
      {"next matrix",
       [](World& w) {
         w.cholesky.a(w.a), w.cholesky.b(w.b), w.solve();
         w.cholesky.a(w.bad_a), w.solve();
         w.cholesky.a(w.next_a), w.solve();
       }},
      {"after a wrong length",
       [](World& w) {
         w.cholesky.a(w.a), w.cholesky.b(w.b), w.solve();
         w.cholesky.a(w.wrong), w.cholesky.b(w.wrong), w.solve();
         w.cholesky.a(w.next_a), w.cholesky.b(w.next_b), w.solve();
       }},
  };
  for (const Operation& operation : operations) trial::expect_survives_exhaustion(operation);
}

TEST(CholeskyDisturbance, AHandlerThatThrowsLosesNothing) {
  const Operation operation = {"wrong lengths", [](World& w) {
                                 w.cholesky.a(w.a), w.cholesky.b(w.b), w.solve();
                                 w.cholesky.a(w.wrong), w.cholesky.b(w.wrong), w.solve();
                                 w.cholesky.a(w.next_a), w.solve();
                                 w.cholesky.b(w.next_b), w.solve();
                               }};
  EXPECT_EQ(trial::expect_survives_throwing_handler(operation), 4u);
}

// (6)
TEST(CholeskyDisturbance, AFailedSolutionGoesOnWhereItFailed) {
  constexpr std::size_t n_blocks = 4;
  for (std::size_t k = 0; k < n_blocks; ++k) {
    SCOPED_TRACE(k);
    Loaded cholesky;
    {
      const allocation::Failing failing(k);
      EXPECT_THROW(cholesky.x(), std::bad_alloc);
    }
    EXPECT_EQ(allocations([&] { cholesky.x(); }), n_blocks - k);
    expect_solution(cholesky.x(), kDefinite, kLoad);
  }
}

// (6): beyond some size the factor takes a block to work in, and returns it.
TEST(CholeskyDisturbance, AFailedSolutionOfManyUnknownsGoesOnWhereItFailed) {
  constexpr std::size_t n = 150;
  Matrix A = diagonal(std::vector<double>(n, 3.0));
  for (std::size_t i = 0; i + 1 < n; ++i) A(i, i + 1) = A(i + 1, i) = 0.7;
  const std::vector<double> b(n, 1.0);
  constexpr std::size_t n_blocks[] = {5, 4, 4, 2, 1};  // that the next one needs
  for (std::size_t k = 0; k < 5; ++k) {
    SCOPED_TRACE(k);
    Loaded cholesky(A, b);
    const std::size_t alive = allocation::alive();
    {
      const allocation::Failing failing(k);
      EXPECT_THROW(cholesky.x(), std::bad_alloc);
    }
    EXPECT_EQ(allocations([&] { cholesky.x(); }), n_blocks[k]);
    EXPECT_EQ(allocation::alive(), alive + 4);
    expect_solution(cholesky.x(), A, b);
  }
}

TEST(CholeskyDisturbance, AFailedSolutionWithoutFactorIsTriedAgain) {
  bool failed = true;
  for (std::size_t k = 0; failed; ++k) {
    ASSERT_LT(k, trial::kMostPlaces);
    Loaded cholesky(kIndefinite);
    {
      const allocation::Failing failing(k);
      try {
        cholesky.x();
      } catch (const std::bad_alloc&) {
        EXPECT_TRUE(failing.has_failed());
      }
      failed = failing.has_failed();
    }
    expect_solution(cholesky.x(), kIndefinite, kLoad);
  }
}

// (6)
TEST(CholeskyDisturbance, AFailedArgumentIsMissing) {
  const Array a = array(kDefinite);
  const Array b = array(kLoad);
  expect_asserts({kSource, kSource}, [&] {
    TnLaCholesky cholesky(3);
    {
      const allocation::Failing failing(0);
      EXPECT_THROW(cholesky.a(a), std::bad_alloc);
    }
    cholesky.b(b);
    expect_emptied(cholesky.x());
    cholesky.a(a);
    expect_solution(cholesky.x(), kDefinite, kLoad);
    TnLaCholesky another(3);
    another.a(a);
    {
      const allocation::Failing failing(0);
      EXPECT_THROW(another.b(b), std::bad_alloc);
    }
    expect_emptied(another.x());
    another.b(b);
    expect_solution(another.x(), kDefinite, kLoad);
  });
}

}  // namespace
