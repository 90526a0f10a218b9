// SPDX-License-Identifier: MIT

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <utility>
#include <vector>

#include "reference/band_reference.h"
#include "support/band_problem.h"
#include "support/decomposition_types.h"
#include "support/values.h"

// Bands wide enough that their equations are folded in copies of their own, bit for bit; among them the
// problems for which the copies are given up.

namespace {

constexpr int kWidths[] = {5, 6, 7, 8, 9, 12, 15, 16, 17, 33};

template <class F>
void for_all_shapes(F f) {
  for (const int bandwidth : kWidths) {
    for (const int n : {bandwidth, 2 * bandwidth + 1, 3 * bandwidth, 3 * bandwidth + 40}) {
      for (const int n_rhs : {0, 1, 2, 5}) {
        Random random(static_cast<std::uint64_t>(1000 * n + 10 * bandwidth + n_rhs));
        f(random, BandShape{n, bandwidth, n_rhs});
      }
    }
  }
}

TEST(BlockBandWide, FollowsItsDefinition) {
  for_all_shapes([](Random& random, BandShape shape) {
    for (const int count : {0, 1, 5}) {
      EXPECT_TRUE(expect_follows_reference(random_band_problem(random, shape, BandValues::uniform, count)));
    }
  });
}

TEST(BlockBandWide, FollowsItsDefinitionWithManyZeros) {
  int n_solved = 0;
  for_all_shapes([&](Random& random, BandShape shape) {
    for (const int count : {0, 2}) {
      n_solved += expect_follows_reference(random_band_problem(random, shape, BandValues::sparse, count));
    }
  });
  EXPECT_GT(n_solved, 80);  // of 320
}

TEST(BlockBandWide, FollowsItsDefinitionForSpecialValues) {
  for_all_shapes([](Random& random, BandShape shape) {
    for (const int count : {0, 2}) {
      expect_follows_reference(random_band_problem(random, shape, BandValues::any, count));
    }
  });
}

// --- Blocks that are not as they should be --------------------------------------------------------------

// Folds one block after the other as they come: what the triangle holds is defined, and so is the answer.
BandProblem problem_of_blocks(const std::vector<std::pair<int, int>>& first_and_count, int most) {
  constexpr BandShape kShape = {24, 7, 2};
  Random random(11);
  BandProblem p = band_problem(kShape, most);
  for (const auto& [first, count] : first_and_count) {
    p.blocks.push_back(
        {first, band_matrix(random, count, kShape.bandwidth + kShape.n_rhs, BandValues::uniform)});
  }
  return p;
}

TEST(BlockBandWide, FollowsItsDefinitionWhereBlocksGoBack) {
  expect_follows_reference(problem_of_blocks({{0, 8}, {3, 8}, {1, 3}, {4, 9}, {2, 2}, {5, 8}}, 9));
}

TEST(BlockBandWide, FollowsItsDefinitionWhereBlocksLeaveAGap) {
  expect_follows_reference(problem_of_blocks({{0, 2}, {4, 5}, {9, 8}, {17, 12}}, 12));
}

TEST(BlockBandWide, FollowsItsDefinitionWhereBlocksHaveMoreEquationsThanAnnounced) {
  expect_follows_reference(problem_of_blocks({{0, 3}, {0, 12}, {2, 11}, {5, 3}}, 1));
}

// --- What a client sees and does -----------------------------------------------------------------------

// Looks at the work matrix at each call, compares it with that of the reference, and may change it.  The
// reference goes on from what it finds.
class Meddler : public BandTable {
 public:
  using Meddle = std::function<void(int first_row, int block, TnLaDblMat& G)>;

  Meddler(BandProblem p, Meddle meddle)
      : BandTable(std::move(p)), meddle_(std::move(meddle)), reference_(problem) {}

  void get_block_equations(int block, int first_row, TnLaDblMat& G, int& count,
                           int& first_unknown) const override {
    if (block > 0) reference_.fold(problem.blocks[static_cast<std::size_t>(block) - 1]);
    EXPECT_SAME_MATRIX(G, reference_.G()) << "before block " << block;
    meddle_(first_row, block, G);
    reference_.G() = plain(G);
    BandTable::get_block_equations(block, first_row, G, count, first_unknown);
  }

 private:
  Meddle meddle_;
  mutable reference::Band reference_;
};

BandProblem steady_problem(Random& random, int bandwidth, int per_block, int step) {
  BandProblem p = band_problem({3 * bandwidth + 20, bandwidth, 2}, per_block);
  for (int first = 0; first <= p.n - bandwidth; first += step) {
    p.blocks.push_back({first, band_matrix(random, per_block, bandwidth + 2, BandValues::uniform)});
  }
  return p;
}

template <class Change>
void expect_takes_the_work_matrix_as_it_is(Change change) {
  for (const int bandwidth : {4, 6, 9, 16}) {
    for (const auto& [per_block, step] : {std::pair<int, int>{1, 1}, {4, 1}, {6, 2}, {30, 3}}) {
      Random random(static_cast<std::uint64_t>(bandwidth));
      const BandProblem p = steady_problem(random, bandwidth, per_block, step);
      SCOPED_TRACE(testing::Message() << p);
      const Meddler solver(p, [&](int first_row, int block, TnLaDblMat& G) {
        if (block % 3 == 2) change(random, static_cast<std::size_t>(first_row), G);
      });
      TnLaDblMat x;
      solver.solve(x);
    }
  }
}

TEST(BlockBandWide, ShowsTheWorkMatrixAtEachCall) {
  expect_takes_the_work_matrix_as_it_is([](Random&, std::size_t, TnLaDblMat&) {});
}

TEST(BlockBandWide, GoesOnFromRowsThatAClientHasChanged) {
  expect_takes_the_work_matrix_as_it_is([](Random& random, std::size_t n_rows, TnLaDblMat& G) {
    for (std::size_t i = 0; i < n_rows; ++i) {
      for (std::size_t c = 0; c < G.n_cols(); ++c) G(i, c) *= 1.0 + random.uniform();
    }
  });
}

// Below the diagonal of the rows that go on too.
TEST(BlockBandWide, GoesOnFromAnyRows) {
  for (const double value : {0.5, -0.0, kTiny, kInf, kNaN}) {
    expect_takes_the_work_matrix_as_it_is([value](Random& random, std::size_t n_rows, TnLaDblMat& G) {
      if (n_rows > 0) G(n_rows - 1 - random.below(n_rows) / 4, random.below(G.n_cols())) = value;
    });
  }
}

// --- Where a substitution breaks off -------------------------------------------------------------------

// The unknowns without an equation are spread over rows that are substituted together.
TEST(BlockBandWide, AFailureLeavesWhatHasBeenWritten) {
  for (const int bandwidth : {1, 2, 7}) {
    for (const int n_rhs : {1, 2, 5}) {
      for (const int n_exceptional : {0, 1}) {
        for (std::size_t without = 0; without < 100; without += 9) {
          std::vector<double> factors(100, 0.5);
          factors[without] = 1e-11;
          BandProblem p = diagonal_problem(bandwidth, n_rhs, factors);
          Random random(without);
          if (n_exceptional > 0) fill_exceptional(random, n_exceptional, BandValues::uniform, p);
          const bool solved = expect_follows_reference(p);
          EXPECT_FALSE(n_exceptional == 0 && solved);
        }
      }
    }
  }
}

}  // namespace
