// SPDX-License-Identifier: MIT

#include <gtest/gtest.h>

#include <cstddef>
#include <memory>
#include <stdexcept>

#include "client_module/band_client.h"
#include "support/allocation.h"
#include "support/assertions.h"
#include "support/band_problem.h"
#include "support/decomposition_types.h"
#include "support/expect_asserts.h"
#include "support/values.h"
#include "tnlablkbndsolver_i.h"

// A solver whose class is in another module than the caller, and the base class in a third one.

namespace {

// The same equations, delivered by a class of this program.
BandProblem closed_chain_of_ones(int n) {
  Random random(1);
  BandProblem p = closed_chain(n, 1.0, 1.0, random);
  for (BandBlock& block : p.blocks) block.rows(0, 2) = 1.0;
  p.rhs(0, 0) = n - 1;
  return p;
}

TEST(BandClientModule, SolvesAndIsDeletedAcrossTheBoundary) {
  for (const int n : {2, 5, 6, 30}) {
    const BandAnswer expected = reference_answer(closed_chain_of_ones(n));
    EXPECT_TRUE(expected.solved);
    const std::size_t alive = allocation::alive();
    {
      const std::unique_ptr<const TnLaBlkBndSolver> solver(band_client_closed_chain(n));
      EXPECT_GT(allocation::alive(), alive);
      for (int k = 0; k < 2; ++k) {
        expect_asserts({}, [&] { expect_same_answer(answer_of(*solver), expected); });
      }
    }
    EXPECT_EQ(allocation::alive(), alive);
  }
}

TEST(BandClientModule, OverridesTheVirtualOperations) {
  const std::unique_ptr<const TnLaBlkBndSolver> closed(band_client_closed_chain(3));
  EXPECT_TRUE(closed->exceptional());
  EXPECT_EQ(closed->max_block_equations(), 1);
  const std::unique_ptr<const TnLaBlkBndSolver> open(band_client_broken_chain());
  EXPECT_FALSE(open->exceptional());
}

TEST(BandClientModule, ThrowsThroughTheSolver) {
  const std::size_t alive = allocation::alive();
  {
    const std::unique_ptr<const TnLaBlkBndSolver> solver(band_client_broken_chain());
    TnLaDblMat x;
    EXPECT_THROW(solver->solve(x), std::out_of_range);
    EXPECT_THROW(solver->solve(x), std::out_of_range);
  }
  EXPECT_EQ(allocation::alive(), alive);
}

}  // namespace
