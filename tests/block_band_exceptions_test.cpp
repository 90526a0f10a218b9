// SPDX-License-Identifier: MIT

#include <gtest/gtest.h>

#include <cstddef>
#include <limits>
#include <memory>
#include <string>
#include <vector>

#include "support/allocation.h"
#include "support/band_problem.h"
#include "support/decomposition_types.h"
#include "support/trial.h"
#include "support/trial_worlds.h"
#include "support/values.h"
#include "tnlablkbndsolver_i.h"

// Exceptions on their way through the block band solver: out of an operation of the derived class, out of
// an allocation, out of the assertion handler.  Nothing is lost, and the next solve has the right bits.

namespace {

// --- A derived class that throws ---------------------------------------------------------------------

// While one lives, operation number `index` of a Thrower throws.
class ThrowingOperation {
 public:
  struct Thrown {};

  explicit ThrowingOperation(std::size_t index) { n_to_go() = index; }
  ~ThrowingOperation() { n_to_go() = kNever; }
  ThrowingOperation(const ThrowingOperation&) = delete;
  ThrowingOperation& operator=(const ThrowingOperation&) = delete;

  static void pass() {
    if (n_to_go() == kNever) return;
    if (n_to_go()-- == 0) throw Thrown();
  }

 private:
  static constexpr std::size_t kNever = std::numeric_limits<std::size_t>::max();
  static std::size_t& n_to_go() {
    static std::size_t n = kNever;
    return n;
  }
};

// May throw before it delivers, after it has spoilt what it was given, and after it has delivered.
// Allocates nothing.
class Thrower : public BandTable {
 public:
  using BandTable::BandTable;

  void get_block_equations(int block, int first_row, TnLaDblMat& G, int& count,
                           int& first_unknown) const override {
    ThrowingOperation::pass();
    for (std::size_t j = 0; j < G.n_cols(); ++j) {
      for (std::size_t i = static_cast<std::size_t>(first_row); i < G.n_rows(); ++i) G(i, j) = kNaN;
    }
    ThrowingOperation::pass();
    BandTable::get_block_equations(block, first_row, G, count, first_unknown);
    if (spoils) {
      G.resize(1, 1, false);
      count = -1;
    }
    ThrowingOperation::pass();
  }

  int max_block_equations() const override {
    ThrowingOperation::pass();
    return BandTable::max_block_equations();
  }

  bool exceptional() const override {
    ThrowingOperation::pass();
    return BandTable::exceptional();
  }

  void get_exceptional_equations(TnLaDblMat& first, TnLaDblMat& last, TnLaDblMat& rhs,
                                 int& count) const override {
    ThrowingOperation::pass();
    BandTable::get_exceptional_equations(first, last, rhs, count);
    if (spoils) rhs.resize(1, 1, false);
    ThrowingOperation::pass();
  }

  bool spoils = false;
};

// --- Trials ------------------------------------------------------------------------------------------

enum class Solve { plain, dense, structured };

BandProblem sample(Solve solve) {
  Random random(1);
  const int n = solve == Solve::dense ? 8 : 9;
  return random_band_problem(random, {n, 3, 2}, BandValues::uniform, solve == Solve::plain ? 0 : 2);
}

// The same with blocks, and exceptional equations, that reach beyond the last unknown.
BandProblem sample_beyond(Solve solve) {
  BandProblem p = sample(solve);
  Random random(2);
  p.blocks.push_back({p.n - 1, band_matrix(random, 3, 5, BandValues::uniform)});
  p.most += 5;
  return p;
}

template <Solve S>
struct World {
  Thrower solver{sample(S)};
  Thrower beyond{sample_beyond(S)};
  TnLaDblMat x = dense(before_solve());
  TnLaDblMat y = dense(before_solve());
  bool solved = false;
  bool solved_again = false;

  trial::Record inputs() const { return {}; }
  trial::Record steady() const { return {}; }
  trial::Record all() const { return trial::Record().add(x).add(y).add(solved).add(solved_again); }
  bool sound() const { return trial::is_sound(x) && trial::is_sound(y); }
  void restore() {
    const World fresh;
    x = fresh.x;
    y = fresh.y;
    solved = solved_again = solver.spoils = beyond.spoils = false;
  }
};

template <Solve S>
const trial::Operation<World<S>> kSolve = {"solve", [](World<S>& w) { w.solved = w.solver.solve(w.x); }};

template <Solve S>
const trial::Operation<World<S>> kSolveTwice = {"solve twice", [](World<S>& w) {
                                                  w.solved = w.solver.solve(w.x);
                                                  w.solved_again = w.solver.solve(w.y);
                                                }};

template <Solve S>
const trial::Operation<World<S>> kSolveAfterRefusal = {"refused solve, and another", [](World<S>& w) {
                                                         w.solver.spoils = true;
                                                         w.solved = w.solver.solve(w.x);
                                                         w.solver.spoils = false;
                                                         w.solved_again = w.solver.solve(w.y);
                                                       }};

template <Solve S>
const trial::Operation<World<S>> kSolveBeyond = {"solve with a band that reaches too far",
                                                 [](World<S>& w) { w.solved = w.beyond.solve(w.x); }};

// Calls f.template operator()<S>() for all.
template <class F>
void for_every_solve(F f) {
  f.template operator()<Solve::plain>();
  f.template operator()<Solve::dense>();
  f.template operator()<Solve::structured>();
}

// Returns the number of operations at which it can throw.
template <class W>
std::size_t expect_survives_throwing_operations(const trial::Operation<W>& operation) {
  SCOPED_TRACE(operation.name);
  const trial::Record expected = trial::undisturbed(operation);
  for (std::size_t k = 0; k < trial::kMostPlaces; ++k) {
    SCOPED_TRACE("throws at " + std::to_string(k));
    const bool disturbed = trial::disturbed_run(operation, expected, [k](auto&& run) {
      const ThrowingOperation throwing(k);
      try {
        run();
      } catch (const ThrowingOperation::Thrown&) {
        return trial::Run{true, true};
      }
      return trial::Run{false, false};
    });
    if (!disturbed) return k;
  }
  ADD_FAILURE() << "there is no end";
  return trial::kMostPlaces;
}

TEST(BlockBandExceptions, TheSamplesAreSolvedAsTheReferenceDoes) {
  for_every_solve([]<Solve S>() {
    World<S> w;
    kSolveTwice<S>.run(w);
    EXPECT_TRUE(w.solved);
    EXPECT_TRUE(w.solved_again);
    EXPECT_SAME_MATRIX(w.x, reference_answer(w.solver.problem).x);
    EXPECT_SAME_MATRIX(w.y, reference_answer(w.solver.problem).x);
  });
}

TEST(BlockBandExceptions, PassOutOfEveryOperationOfTheDerivedClass) {
  for_every_solve([]<Solve S>() {
    const BandProblem p = sample(S);
    // `most`, three places in every block, `exceptional`, two places in the delivery
    const std::size_t n_places = 1 + 3 * p.blocks.size() + 1 + (p.exceptional ? 2 : 0);
    EXPECT_EQ(expect_survives_throwing_operations(kSolve<S>), n_places);
    EXPECT_EQ(expect_survives_throwing_operations(kSolveTwice<S>), 2 * n_places);
    EXPECT_GT(expect_survives_throwing_operations(kSolveAfterRefusal<S>), n_places);
  });
}

TEST(BlockBandExceptions, PassOutOfEveryAllocation) {
  for_every_solve([]<Solve S>() {
    trial::expect_survives_exhaustion(kSolve<S>);
    trial::expect_survives_exhaustion(kSolveTwice<S>);
    trial::expect_survives_exhaustion(kSolveAfterRefusal<S>);
  });
}

TEST(BlockBandExceptions, PassOutOfTheAssertionHandler) {
  for_every_solve([]<Solve S>() {
    EXPECT_EQ(trial::expect_survives_throwing_handler(kSolve<S>), 0u);
    EXPECT_EQ(trial::expect_survives_throwing_handler(kSolveAfterRefusal<S>), 1u);
    EXPECT_GE(trial::expect_survives_throwing_handler(kSolveBeyond<S>), 2u);
  });
}

// --- Memory ------------------------------------------------------------------------------------------

TEST(BlockBandMemory, TheWorkMatrixIsMadeByTheFirstSolve) {
  const std::size_t alive = allocation::alive();
  {
    const BandProblem p = sample(Solve::plain);
    TnLaDblMat x(static_cast<std::size_t>(p.n), static_cast<std::size_t>(p.n_rhs), 0.0);
    const BandTable solver(p);
    const std::size_t before = allocation::made();
    EXPECT_TRUE(solver.solve(x));
    EXPECT_EQ(allocation::made(), before + 2);  // the matrix and its elements
    EXPECT_TRUE(solver.solve(x));
    EXPECT_EQ(allocation::made(), before + 2);
  }
  EXPECT_EQ(allocation::alive(), alive);
}

// However many equations there are.
TEST(BlockBandMemory, DoesNotGrowWithTheNumberOfBlocks) {
  BandProblem p = diagonal_problem(2, 1, {1, 1, 1});
  p.blocks.insert(p.blocks.begin(), 1000, p.blocks.front());
  TnLaDblMat x(3, 1, 0.0);
  const BandTable solver(p);
  const std::size_t before = allocation::made();
  EXPECT_TRUE(solver.solve(x));
  EXPECT_EQ(allocation::made(), before + 2);
}

TEST(BlockBandMemory, OfASolverThatHasNotSolvedIsNone) {
  const std::size_t alive = allocation::alive();
  {
    const BandTable solver({});
    EXPECT_EQ(allocation::alive(), alive);
  }
  EXPECT_EQ(allocation::alive(), alive);
}

TEST(BlockBandMemory, GoesWithTheSolverThroughItsBaseClass) {
  for_every_solve([]<Solve S>() {
    const std::size_t alive = allocation::alive();
    {
      std::unique_ptr<const TnLaBlkBndSolver> solver = std::make_unique<Thrower>(sample(S));
      TnLaDblMat x;
      EXPECT_TRUE(solver->solve(x));
      solver.reset();
      EXPECT_EQ(allocation::alive(), alive + 1);  // x
    }
    EXPECT_EQ(allocation::alive(), alive);
  });
}

}  // namespace
