// SPDX-License-Identifier: MIT

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <utility>
#include <vector>

#include "reference/band_reference.h"
#include "support/assertions.h"
#include "support/band_problem.h"
#include "support/bits.h"
#include "support/decomposition_types.h"
#include "support/values.h"
#include "tnlablkbndsolver_i.h"

// The results of the block band solver, bit for bit.

namespace {

constexpr int kMaxInt = std::numeric_limits<int>::max();

// Calls f(random, shape) for bandwidths 1 ... 5, for the shortest system, those around the length where the
// treatment of exceptional equations changes, and a long one.
template <class F>
void for_all_shapes(F f) {
  for (int bandwidth = 1; bandwidth <= 5; ++bandwidth) {
    const int turn = 3 * bandwidth;
    for (const int n : {bandwidth, bandwidth + 1, turn - 2, turn - 1, turn, turn + 1, turn + 13}) {
      for (int n_rhs = 0; n_rhs <= 3; ++n_rhs) {
        Random random(static_cast<std::uint64_t>(100 * n + 10 * bandwidth + n_rhs));
        f(random, BandShape{n, bandwidth, n_rhs});
      }
    }
  }
}

// --- Random problems ------------------------------------------------------------------------------------

TEST(BlockBand, FollowsItsDefinition) {
  for_all_shapes([](Random& random, BandShape shape) {
    for (int k = 0; k < 4; ++k) {
      EXPECT_TRUE(expect_follows_reference(random_band_problem(random, shape, BandValues::uniform, 0)));
    }
  });
}

TEST(BlockBand, FollowsItsDefinitionWithExceptionalEquations) {
  for_all_shapes([](Random& random, BandShape shape) {
    for (const int count : {1, 2, 5}) {
      EXPECT_TRUE(expect_follows_reference(random_band_problem(random, shape, BandValues::uniform, count)));
    }
  });
}

TEST(BlockBand, FollowsItsDefinitionWithManyZeros) {
  int n_solved = 0;
  int n_failed = 0;
  for_all_shapes([&](Random& random, BandShape shape) {
    for (const int count : {0, 1, 2, 3}) {
      for (int k = 0; k < 3; ++k) {
        const bool solved =
            expect_follows_reference(random_band_problem(random, shape, BandValues::sparse, count));
        ++(solved ? n_solved : n_failed);
      }
    }
  });
  EXPECT_GT(n_solved, 400);  // of 1680
  EXPECT_GT(n_failed, 400);
}

TEST(BlockBand, FollowsItsDefinitionForSpecialValues) {
  int n_solved = 0;
  for_all_shapes([&](Random& random, BandShape shape) {
    for (const int count : {0, 1, 3}) {
      n_solved += expect_follows_reference(random_band_problem(random, shape, BandValues::any, count));
    }
  });
  EXPECT_GT(n_solved, 100);  // of 420
}

TEST(BlockBand, FollowsItsDefinitionForLongSystems) {
  Random random(5);
  for (const int count : {0, 1, 4}) {
    EXPECT_TRUE(
        expect_follows_reference(random_band_problem(random, {200, 4, 2}, BandValues::uniform, count)));
    EXPECT_TRUE(
        expect_follows_reference(random_band_problem(random, {70, 20, 1}, BandValues::uniform, count)));
  }
}

// One special value at a time, in each place of a small problem.
TEST(BlockBand, FollowsItsDefinitionWhereverASpecialValueStands) {
  for (const int n : {5, 6}) {  // dense and structured
    for (const int count : {0, 2}) {
      Random random(6);
      const BandProblem plain_problem = random_band_problem(random, {n, 2, 2}, BandValues::uniform, count);
      for (const double special : special_values()) {
        const auto expect_takes = [&](auto matrix_of) {
          BandProblem problem = plain_problem;
          for (double& x : matrix_of(problem).a) {
            const double old = x;
            x = special;
            expect_follows_reference(problem);
            x = old;
          }
        };
        for (std::size_t b = 0; b < plain_problem.blocks.size(); ++b) {
          expect_takes([b](BandProblem& p) -> Matrix& { return p.blocks[b].rows; });
        }
        expect_takes([](BandProblem& p) -> Matrix& { return p.first; });
        expect_takes([](BandProblem& p) -> Matrix& { return p.last; });
        expect_takes([](BandProblem& p) -> Matrix& { return p.rhs; });
      }
    }
  }
}

// --- Where blocks begin ---------------------------------------------------------------------------------

BandProblem in_blocks(Random& random, BandShape shape, const std::vector<std::pair<int, int>>& blocks) {
  BandProblem p = band_problem(shape, 0);
  for (const auto& [first, count] : blocks) {
    p.blocks.push_back(
        {first, band_matrix(random, count, shape.bandwidth + shape.n_rhs, BandValues::uniform)});
    p.most = std::max(p.most, count);
  }
  return p;
}

// {first unknown, number of equations}
TEST(BlockBand, BlocksMayBeginAnywhereUpToTheRowsFoldedSoFar) {
  Random random(7);
  const std::vector<std::pair<int, int>> all[] = {
      {{0, 9}},                                                   // one block is all
      {{0, 3}, {3, 3}, {6, 3}},                                   // no overlap
      {{0, 3}, {1, 1}, {2, 1}, {3, 1}, {4, 1}, {5, 1}, {6, 1}},   // one unknown further each time
      {{0, 4}, {2, 2}, {4, 2}, {6, 3}},                           // two further
      {{0, 1}, {0, 1}, {0, 1}, {0, 3}, {3, 4}, {6, 5}},           // one first unknown several times
      {{0, 2}, {1, 2}, {3, 1}, {4, 2}, {6, 2}},                   // fewer rows than the band is wide
      {{0, 20}, {3, 20}, {6, 20}},                                // many equations
      {{0, 5}, {2, 0}, {2, 3}, {3, 0}, {5, 3}, {6, 1}, {6, 0}}};  // blocks without an equation
  for (const auto& blocks : all) {
    const BandShape shape{blocks.size() == 1 ? 3 : 9, 3, 2};
    EXPECT_TRUE(expect_follows_reference(in_blocks(random, shape, blocks)));
    BandProblem closed = in_blocks(random, shape, blocks);
    fill_exceptional(random, 2, BandValues::uniform, closed);
    EXPECT_TRUE(expect_follows_reference(closed));
  }
}

// The solution is another one, of which only the bits are defined, and the elements beyond the unknowns
// that are reported.
TEST(BlockBand, BlocksOutOfOrderOrBehindAGapAreTakenAsTheyCome) {
  Random random(8);
  const std::vector<std::pair<int, int>> all[] = {
      {{0, 3}, {3, 3}, {6, 3}, {2, 3}},          // back
      {{0, 3}, {2, 2}, {1, 1}, {0, 4}, {3, 9}},  // back twice
      {{4, 3}, {0, 3}, {3, 4}},                  // a gap at the start
      {{0, 3}, {5, 3}, {5, 3}},                  // one in the middle
      {{0, 2}, {6, 1}, {3, 2}, {6, 5}},          // a gap, and back
      {{0, 9}, {kMaxInt, 2}, {2, 3}, {kMaxInt, 1}, {kMaxInt, 0}},
      {{8, 4}}};
  for (const auto& blocks : all) {
    for (const int n : {8, 9}) {
      for (const int count : {0, 2}) {
        BandProblem p = in_blocks(random, {n, 3, 1}, blocks);
        p.most += 3;  // for rows beyond the unknowns
        if (count > 0) fill_exceptional(random, count, BandValues::uniform, p);
        SCOPED_TRACE(testing::Message() << "the first block at " << blocks[0].first);
        expect_answer_and_reports(p);
      }
    }
  }
}

TEST(BlockBand, ABlockMayHaveMoreEquationsThanAnnouncedIfThereIsRoom) {
  Random random(9);
  BandProblem p = in_blocks(random, {6, 2, 1}, {{0, 8}, {2, 6}, {4, 3}});  // rows 0 ... 7, 2 ... 7, 4 ... 6
  p.most = 2;
  const AssertionLog log;
  expect_same_answer(answer_of(p), reference_answer(p));
  EXPECT_TRUE(answer_of(p).solved);
  EXPECT_EQ(log.count(), 0u);
}

// --- Known solutions ------------------------------------------------------------------------------------

TEST(BlockBand, OneEquationForOneUnknown) {
  const BandAnswer answer = answer_of(diagonal_problem(1, 1, {0.5}));
  EXPECT_TRUE(answer.solved);
  EXPECT_SAME_MATRIX(answer.x, Matrix(1, 1, {2.0}));

  BandProblem p = band_problem({1, 1, 1}, 1);
  p.blocks = {equation(0, {2.0, 4.0})};
  EXPECT_SAME_MATRIX(answer_of(p).x, Matrix(1, 1, {2.0}));
}

// Without a block of more than one equation, and where no block begins before the one before has ended,
// nothing is reflected: the quotients are exact.
TEST(BlockBand, EachColumnIsTheSolutionForItsRightHandSide) {
  const BandAnswer answer = answer_of(diagonal_problem(1, 3, {1.0, -2.0, 0.25}));
  EXPECT_TRUE(answer.solved);
  EXPECT_SAME_MATRIX(answer.x, Matrix(3, 3, {1, -0.5, 4, 2, -1, 8, 3, -1.5, 12}));
}

TEST(BlockBand, CoefficientsAreThoseOfTheUnknownsFromTheFirstOneOn) {
  BandProblem p = band_problem({4, 3, 1}, 1);
  // 2 x3 = 8; x2 - x3 = 1; x1 + x2 + x3 = 10; x0 + 2 x1 - x2 = 2
  p.blocks = {equation(0, {1, 2, -1, 2}), equation(1, {1, 1, 1, 10}), equation(1, {0, 1, -1, 1}),
              equation(1, {0, 0, 2, 8})};
  const BandAnswer answer = answer_of(p);
  EXPECT_TRUE(answer.solved);
  const double rounding = 64 * 0x1p-53;  // about twenty operations on numbers up to 10 / 3
  EXPECT_LE(largest_difference(answer.x, Matrix(4, 1, {5, 1, 5, 4})), 10 * rounding);
}

TEST(BlockBand, WithoutRightHandSidesNothingIsComputed) {
  BandProblem p = diagonal_problem(2, 0, {1.0, 0.0, 1.0});
  EXPECT_TRUE(answer_of(p).solved);
  EXPECT_SAME_MATRIX(answer_of(p).x, Matrix(3, 0));
  p.blocks.clear();
  EXPECT_TRUE(answer_of(p).solved);
  EXPECT_SAME_MATRIX(answer_of(p).x, Matrix(3, 0));
}

// With exceptional equations the rank of the dense systems still counts.
TEST(BlockBand, WithoutRightHandSidesADenseSystemMayStillFail) {
  for (const int n : {3, 8}) {
    for (const double factor : {1.0, 0.0}) {
      std::vector<double> factors(static_cast<std::size_t>(n), 1.0);
      factors.back() = factor;
      BandProblem p = diagonal_problem(2, 0, factors);
      p.exceptional = true;
      p.first = p.last = Matrix(1, 2);
      p.rhs = Matrix(1, 0);
      EXPECT_EQ(expect_follows_reference(p), factor != 0.0);
    }
  }
}

TEST(BlockBand, WithoutUnknownsTheSolutionIsEmpty) {
  for (const int bandwidth : {0, 1, 2}) {
    for (const int n_rhs : {0, 2}) {
      const AssertionLog log;
      BandProblem p = band_problem({0, bandwidth, n_rhs}, 3);
      p.blocks = {{0, reference::zeros(3, bandwidth + n_rhs)}};
      EXPECT_TRUE(answer_of(p).solved);
      EXPECT_SAME_MATRIX(answer_of(p).x, reference::zeros(0, n_rhs));
      EXPECT_EQ(log.count(), 0u);
    }
  }
}

// {first unknown, number of equations}; all that an equation has are right-hand sides.
TEST(BlockBand, ABandWithoutWidthHasNoDiagonal) {
  Random random(12);
  for (const auto& blocks : std::vector<std::vector<std::pair<int, int>>>{{{0, 2}, {1, 1}}, {{1, 1}}, {}}) {
    for (const int n : {1, 2}) {
      for (const int count : {0, 1}) {
        const AssertionLog log;
        BandProblem p = in_blocks(random, {n, 0, 1}, blocks);
        if (count > 0) fill_exceptional(random, count, BandValues::uniform, p);
        EXPECT_FALSE(answer_of(p).solved);
        EXPECT_EQ(answer_of(p).x.m, static_cast<std::size_t>(n));
        EXPECT_EQ(answer_of(p).x.n, 1u);
        EXPECT_EQ(log.count(), 0u);
      }
    }
  }
}

// --- The size of a diagonal element ------------------------------------------------------------------

// NB = 2, one equation an unknown, so that the factors themselves are on the diagonal; the last row but
// one starts at its own unknown, the last one does not.
TEST(BlockBand, ADiagonalElementBelowTheBoundFails) {
  for (std::size_t i = 0; i < 4; ++i) {
    for (const double sign : {1.0, -1.0}) {
      const auto solves = [&](double factor) {
        std::vector<double> factors(4, 1.0);
        factors[i] = sign * factor;
        return expect_follows_reference(diagonal_problem(2, 2, factors));
      };
      EXPECT_TRUE(solves(1e-9)) << i;
      EXPECT_FALSE(solves(0.9e-10)) << i;
      EXPECT_FALSE(solves(0.0)) << i;
      EXPECT_TRUE(solves(kNaN)) << i;
      EXPECT_TRUE(solves(kInf)) << i;
    }
  }
}

TEST(BlockBand, ADiagonalElementEqualToTheBoundPasses) {
  for (std::size_t i = 0; i < 3; ++i) {
    std::vector<double> factors(3, 1.0);  // NB = 1: no equation is reflected
    factors[i] = -1e-10;
    EXPECT_TRUE(expect_follows_reference(diagonal_problem(1, 1, factors)));
    factors[i] = ulp_below(1e-10);
    EXPECT_FALSE(expect_follows_reference(diagonal_problem(1, 1, factors)));
  }
}

// The second equation of the last block, which begins at the unknown before its own.
TEST(BlockBand, ADiagonalElementEqualToTheBoundPassesBehindTheFront) {
  for (const double sign : {1.0, -1.0}) {
    const auto solves = [sign](double element) {
      BandProblem p = band_problem({2, 2, 1}, 2);
      p.blocks = {{0, Matrix(2, 3, {1, 0, 0, sign * element, 1, 1})}};  // no sum of products but 0
      return expect_follows_reference(p);
    };
    EXPECT_TRUE(solves(1e-10));
    EXPECT_FALSE(solves(ulp_below(1e-10)));
  }
}

TEST(BlockBand, AFailureLeavesWhatHasBeenWritten) {
  const BandProblem p = diagonal_problem(1, 2, {0.5, 0.0, 0.25, 0.5});
  const BandAnswer answer = answer_of(p);
  EXPECT_FALSE(answer.solved);
  EXPECT_SAME_MATRIX(answer.x, Matrix(4, 2, {1, 1, 4, 2, 2, 2, 2, 2}));
}

TEST(BlockBand, TheBoundHoldsForTheUnknownsThatAreEliminatedToo) {
  for (std::size_t i = 0; i < 3; ++i) {  // N = 6, NB = 2: unknowns 0 ... 2
    const auto solves = [i](double factor) {
      std::vector<double> factors(6, 1.0);
      factors[i] = factor;
      BandProblem p = diagonal_problem(2, 2, factors);
      p.exceptional = true;
      p.first = Matrix(1, 2);
      p.last = Matrix(1, 2, {1, 1});
      p.rhs = Matrix(1, 2, {1, 1});
      return expect_follows_reference(p);
    };
    EXPECT_TRUE(solves(1e-10)) << i;
    EXPECT_FALSE(solves(ulp_below(1e-10))) << i;
    EXPECT_FALSE(solves(0.0)) << i;
    EXPECT_TRUE(solves(kNaN)) << i;
  }
}

// --- Unknowns without an equation --------------------------------------------------------------------

TEST(BlockBand, AnUnknownWithoutAnEquationFails) {
  for (const int n : {5, 6, 9}) {
    for (int without = 0; without < n; ++without) {
      std::vector<double> factors(static_cast<std::size_t>(n), 1.0);
      factors[static_cast<std::size_t>(without)] = 0.0;
      BandProblem p = diagonal_problem(2, 1, factors);
      EXPECT_FALSE(expect_follows_reference(p));
      p.exceptional = true;  // equations that do not help
      p.most = 2;
      p.first = Matrix(2, 2, {without == 0 ? 0.0 : 1.0, 0, 0, without == 1 ? 0.0 : 1.0});
      p.last = Matrix(2, 2);
      p.rhs = Matrix(2, 1, {1, 1});
      EXPECT_FALSE(expect_follows_reference(p));
    }
  }
}

// Exceptional equations may stand in for the last bandwidth's rows, one for each.
TEST(BlockBand, RowsThatAreMissingAtTheEndFail) {
  Random random(10);
  for (const int n : {5, 6, 12}) {
    for (int missing = 1; missing <= n; ++missing) {
      for (int count = 0; count <= 3; ++count) {
        BandProblem p = diagonal_problem(2, 2, std::vector<double>(static_cast<std::size_t>(n), 1.0));
        p.blocks.resize(p.blocks.size() - static_cast<std::size_t>(missing));
        if (count > 0) fill_exceptional(random, count, BandValues::uniform, p);
        EXPECT_EQ(expect_follows_reference(p), missing <= std::min(count, p.bandwidth)) << missing;
      }
    }
  }
}

// The last block begins so early that its rows have to be moved before the elimination.
TEST(BlockBand, TheLastBandwidthMayBeLeftToTheExceptionalEquations) {
  Random random(11);
  for (const int n_rhs : {0, 1, 2}) {
    for (const auto& blocks : std::vector<std::vector<std::pair<int, int>>>{
             {{0, 3}, {3, 3}}, {{0, 4}, {2, 3}, {3, 7}}, {{0, 3}, {1, 1}, {2, 1}, {3, 1}}}) {
      for (const int count : {2, 3, 5}) {
        BandProblem p = in_blocks(random, {9, 3, n_rhs}, blocks);
        fill_exceptional(random, count, BandValues::uniform, p);
        EXPECT_EQ(expect_follows_reference(p), count >= 3);
        p.n = 8;  // the dense solve needs no such move
        EXPECT_EQ(expect_follows_reference(p), count >= 2);
      }
    }
  }
}

}  // namespace
