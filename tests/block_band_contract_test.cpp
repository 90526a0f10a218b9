// SPDX-License-Identifier: MIT

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "reference/band_reference.h"
#include "support/assertions.h"
#include "support/band_problem.h"
#include "support/decomposition_types.h"
#include "support/expect_asserts.h"
#include "support/values.h"
#include "support/virtual_table.h"
#include "tnlablkbndsolver_i.h"

// What the block band solver asks a derived class for, in which order and with which arguments, and what
// stays from one solve to the next.

namespace {

constexpr char kSource[] = "src/tnlablkbndsolver.cpp";
constexpr int kMinInt = std::numeric_limits<int>::min();

// Writes down every call, and what the arguments hold at it.
class Recorder : public BandTable {
 public:
  using BandTable::BandTable;

  void get_block_equations(int block, int first_row, TnLaDblMat& G, int& count,
                           int& first_unknown) const override {
    calls.push_back("block " + std::to_string(block) + " at row " + std::to_string(first_row));
    work_matrices.push_back(&G);
    works.push_back(plain(G));
    EXPECT_EQ(count, 0);
    EXPECT_EQ(first_unknown, 0);
    BandTable::get_block_equations(block, first_row, G, count, first_unknown);
  }

  int max_block_equations() const override {
    calls.emplace_back("most");
    return BandTable::max_block_equations();
  }

  bool exceptional() const override {
    calls.emplace_back("exceptional?");
    return BandTable::exceptional();
  }

  void get_exceptional_equations(TnLaDblMat& first, TnLaDblMat& last, TnLaDblMat& rhs,
                                 int& count) const override {
    calls.emplace_back("exceptional equations");
    EXPECT_SAME_MATRIX(first, reference::zeros(problem.most, problem.bandwidth));
    EXPECT_SAME_MATRIX(last, reference::zeros(problem.most, problem.bandwidth));
    EXPECT_SAME_MATRIX(rhs, reference::zeros(problem.most, problem.n_rhs));
    EXPECT_EQ(count, 0);
    BandTable::get_exceptional_equations(first, last, rhs, count);
  }

  void forget() const {
    calls.clear();
    work_matrices.clear();
    works.clear();
  }

  mutable std::vector<std::string> calls;
  mutable std::vector<const TnLaDblMat*> work_matrices;  // where G was at each call,
  mutable std::vector<Matrix> works;                     // and what it held
};

using Calls = std::vector<std::string>;

// NB = 3, three blocks of 3, 1 and 6 equations at the unknowns 0, 1 and 4.
BandProblem three_blocks(Random& random) {
  BandProblem p = band_problem({7, 3, 2}, 6);
  for (const auto& [first, count] : {std::pair<int, int>{0, 3}, {1, 1}, {4, 6}}) {
    p.blocks.push_back({first, band_matrix(random, count, 5, BandValues::uniform)});
  }
  return p;
}

// On the short path and the long one, with exceptional equations and without.
std::vector<BandProblem> samples(std::uint64_t seed) {
  Random random(seed);
  std::vector<BandProblem> all;
  for (const int n : {5, 9}) {
    for (const int count : {0, 2}) {
      all.push_back(random_band_problem(random, {n, 2, 2}, BandValues::uniform, count));
    }
  }
  return all;
}

// --- The class ------------------------------------------------------------------------------------------

TEST(BlockBandSolver, IsAnAbstractBaseClassThatIsNotCopied) {
  static_assert(std::is_abstract_v<TnLaBlkBndSolver>);
  static_assert(std::has_virtual_destructor_v<TnLaBlkBndSolver>);
  static_assert(!std::is_copy_constructible_v<TnLaBlkBndSolver>);
  static_assert(!std::is_copy_assignable_v<TnLaBlkBndSolver>);
  EXPECT_EQ(sizeof(TnLaBlkBndSolver), 2 * sizeof(void*) + 4 * sizeof(int));
}

#ifdef HAS_TABLE_PLACE
TEST(BlockBandSolver, OperationsStandInTheTableInTheirOrder) {
  EXPECT_EQ(table_place(&TnLaBlkBndSolver::get_block_equations), 2u);
  EXPECT_EQ(table_place(&TnLaBlkBndSolver::max_block_equations), 3u);
  EXPECT_EQ(table_place(&TnLaBlkBndSolver::exceptional), 4u);
  EXPECT_EQ(table_place(&TnLaBlkBndSolver::get_exceptional_equations), 5u);
}
#endif

// The least that a derived class has to do.
class Plain : public TnLaBlkBndSolver {
 public:
  Plain() : TnLaBlkBndSolver(1, 1, 1, 1) {}
  void get_block_equations(int /*block*/, int first_row, TnLaDblMat& G, int& count,
                           int& /*first_unknown*/) const override {
    const auto row = static_cast<std::size_t>(first_row);
    G(row, 0) = 2.0;
    G(row, 1) = 4.0;
    count = 1;
  }
  int max_block_equations() const override { return 1; }
};

TEST(BlockBandSolver, HasNoExceptionalEquationsUnlessTheyAreOverridden) {
  const Plain solver;
  EXPECT_FALSE(solver.exceptional());
  TnLaDblMat first = dense({1, 1, {1}});
  TnLaDblMat last = dense({1, 1, {2}});
  TnLaDblMat rhs = dense({1, 1, {3}});
  int count = -7;
  solver.get_exceptional_equations(first, last, rhs, count);
  EXPECT_SAME_MATRIX(first, Matrix(1, 1, {1}));
  EXPECT_SAME_MATRIX(last, Matrix(1, 1, {2}));
  EXPECT_SAME_MATRIX(rhs, Matrix(1, 1, {3}));
  EXPECT_EQ(count, -7);
  expect_same_answer(answer_of(solver), {true, Matrix(1, 1, {2.0})});
}

// --- Calls ----------------------------------------------------------------------------------------------

TEST(BlockBandSolver, AsksForTheBlocksInOrderAndForTheExceptionalEquationsLast) {
  Random random(1);
  Recorder solver(three_blocks(random));
  // 3 rows at 0; 4 at unknown 1 would make 1 + 3; 6 at unknown 4 make 4 + 3.
  const Calls blocks = {"most", "block 0 at row 0", "block 1 at row 3", "block 2 at row 4", "exceptional?"};
  EXPECT_TRUE(answer_of(solver).solved);
  EXPECT_EQ(solver.calls, blocks);

  fill_exceptional(random, 2, BandValues::uniform, solver.problem);
  solver.problem.most = 6;
  solver.forget();
  EXPECT_TRUE(answer_of(solver).solved);
  Calls with_exceptional = blocks;
  with_exceptional.emplace_back("exceptional equations");
  EXPECT_EQ(solver.calls, with_exceptional);
}

// Two unknowns and an equation for neither.
class WithoutBlocks : public TnLaBlkBndSolver {
 public:
  explicit WithoutBlocks(int blocks) : TnLaBlkBndSolver(2, blocks, 1, 1) {}
  void get_block_equations(int /*block*/, int /*first_row*/, TnLaDblMat& /*G*/, int& /*count*/,
                           int& /*first_unknown*/) const override {
    ADD_FAILURE() << "asked for a block";
  }
  int max_block_equations() const override { return 1; }
};

TEST(BlockBandSolver, WithoutBlocksAsksForNone) {
  for (const int blocks : {0, -1, kMinInt}) {
    expect_asserts({}, [&] {
      expect_same_answer(answer_of(WithoutBlocks(blocks)), {false, Matrix(2, 1)});
    });
  }
}

// As many as all equations so far, but for those that end behind the latest block's band.
TEST(BlockBandSolver, TellsWhereTheNextRowsBelong) {
  for (const BandProblem& p : samples(2)) {
    const Recorder solver(p);
    answer_of(solver);
    int n_rows = 0;
    for (std::size_t b = 0; b < p.blocks.size(); ++b) {
      EXPECT_EQ(solver.calls[1 + b], "block " + std::to_string(b) + " at row " + std::to_string(n_rows));
      const int first = p.blocks[b].first_unknown;
      n_rows = std::min(n_rows + static_cast<int>(p.blocks[b].rows.m), first + p.bandwidth);
    }
  }
}

// --- The work matrix ------------------------------------------------------------------------------------

TEST(BlockBandSolver, ShowsTheTriangleInTheWorkMatrix) {
  for (const BandProblem& p : samples(3)) {
    SCOPED_TRACE(testing::Message() << p);
    const Recorder solver(p);
    answer_of(solver);
    BandProblem folded = p;
    folded.exceptional = false;
    for (std::size_t b = 0; b < p.blocks.size(); ++b) {
      folded.blocks.assign(p.blocks.begin(), p.blocks.begin() + static_cast<std::ptrdiff_t>(b));
      reference::Band reference(folded);
      Matrix x;
      reference.solve(x);
      EXPECT_SAME_MATRIX(solver.works[b], reference.G());
      EXPECT_EQ(solver.work_matrices[b], solver.work_matrices[0]);
    }
    EXPECT_SAME_MATRIX(solver.works[0], reference::zeros(p.n + p.most, p.bandwidth + p.n_rhs));
  }
}

TEST(BlockBandSolver, KeepsTheWorkMatrixAsItIs) {
  for (const BandProblem& p : samples(4)) {
    SCOPED_TRACE(testing::Message() << p);
    Recorder solver(p);
    const BandAnswer answer = answer_of(solver);
    const TnLaDblMat* const work = solver.work_matrices[0];
    reference::Band reference(p);
    Matrix x;
    reference.solve(x);
    solver.forget();
    expect_same_answer(answer_of(solver), answer);
    EXPECT_EQ(solver.work_matrices[0], work);
    EXPECT_SAME_MATRIX(solver.works[0], reference.G());
  }
}

// Only the exceptional equations get more room.
TEST(BlockBandSolver, SizesTheWorkMatrixByTheFirstNumberOfEquations) {
  for (const BandProblem& p : samples(5)) {
    SCOPED_TRACE(testing::Message() << p);
    for (const int later : {p.most + 4, std::max(p.n_exceptional(), 1)}) {
      Recorder solver(p);
      const BandAnswer answer = answer_of(solver);
      solver.forget();
      solver.problem.most = later;
      expect_same_answer(answer_of(solver), answer);
      EXPECT_EQ(solver.works[0].m, static_cast<std::size_t>(p.n + p.most));
      EXPECT_EQ(solver.works[0].n, static_cast<std::size_t>(p.bandwidth + p.n_rhs));
    }
  }
}

TEST(BlockBandSolver, IsUsedAgainAsIfItWereNew) {
  for (const BandProblem& p : samples(6)) {
    for (const BandProblem& other : samples(7)) {
      if (other.n != p.n) continue;
      BandProblem second = other;
      second.blocks.resize(p.blocks.size(), {p.n - p.bandwidth, Matrix(0, 4)});
      second.most = std::max(p.most, second.most);
      BandTable solver(second);
      solver.problem = p;
      solver.problem.most = second.most;
      expect_same_answer(answer_of(solver), reference_answer(p));
      solver.problem = second;
      expect_same_answer(answer_of(solver), reference_answer(second));
    }
  }
}

// The last `missing` blocks come without an equation.
BandProblem without_last_equations(BandProblem p, std::size_t missing) {
  for (std::size_t b = p.blocks.size() - missing; b < p.blocks.size(); ++b) {
    p.blocks[b].first_unknown = b == 0 ? 0 : p.blocks[b - 1].first_unknown;
    p.blocks[b].rows = reference::zeros(0, p.bandwidth + p.n_rhs);
  }
  return p;
}

// What the work matrix holds there would do for a solution.
TEST(BlockBandSolver, DoesNotSeeTheRowsOfAnEarlierSolve) {
  Random random(8);
  int n_failed = 0;
  for (int bandwidth = 1; bandwidth <= 3; ++bandwidth) {
    for (const int n : {3 * bandwidth - 1, 3 * bandwidth, 3 * bandwidth + 3}) {
      for (const int count : {0, 1, 2 * bandwidth}) {
        BandProblem all = diagonal_problem(bandwidth, 1, std::vector<double>(static_cast<std::size_t>(n)));
        for (BandBlock& block : all.blocks) {
          block.rows = band_matrix(random, 1, bandwidth + 1, BandValues::uniform);
        }
        if (count > 0) fill_exceptional(random, count, BandValues::uniform, all);
        for (std::size_t missing = 0; missing <= all.blocks.size(); ++missing) {
          SCOPED_TRACE(testing::Message() << all << ", " << missing << " missing");
          BandTable solver(all);
          EXPECT_TRUE(answer_of(solver).solved);
          solver.problem = without_last_equations(all, missing);
          const BandAnswer answer = answer_of(solver);
          expect_same_answer(answer, reference_answer(solver.problem));
          n_failed += !answer.solved;
        }
      }
    }
  }
  EXPECT_GT(n_failed, 100);  // of 207
}

// --- Several solvers ------------------------------------------------------------------------------------

// Solves another problem each time it is asked for a block.
class Nested : public BandTable {
 public:
  Nested(const BandProblem& p, const BandTable& other) : BandTable(p), other_(other) {}

  void get_block_equations(int block, int first_row, TnLaDblMat& G, int& count,
                           int& first_unknown) const override {
    expect_same_answer(answer_of(other_), reference_answer(other_.problem));
    BandTable::get_block_equations(block, first_row, G, count, first_unknown);
    expect_same_answer(answer_of(other_), reference_answer(other_.problem));
  }

 private:
  const BandTable& other_;
};

TEST(BlockBandSolver, DoesNotDisturbAnother) {
  for (const BandProblem& p : samples(8)) {
    for (const BandProblem& q : samples(9)) {
      const BandTable other(q);
      expect_same_answer(answer_of(Nested(p, other)), reference_answer(p));
    }
  }
}

// --- Exceptional equations that are announced and not given ------------------------------------------

class AnnouncesInVain : public BandTable {
 public:
  AnnouncesInVain(const BandProblem& p, int count) : BandTable(p), count_(count) {}
  bool exceptional() const override { return true; }
  void get_exceptional_equations(TnLaDblMat& first, TnLaDblMat& /*last*/, TnLaDblMat& rhs,
                                 int& count) const override {
    first(0, 0) = 1.0;
    rhs(0, 0) = 1.0;
    count = count_;
  }

 private:
  int count_;
};

TEST(BlockBandSolver, GoesOnWithoutExceptionalEquationsThatAreNotGiven) {
  for (const int n : {5, 6}) {
    for (const double factor : {1.0, 0.0}) {
      std::vector<double> factors(static_cast<std::size_t>(n), 1.0);
      factors[1] = factor;
      const BandProblem p = diagonal_problem(2, 2, factors);
      const BandAnswer expected = reference_answer(p);
      EXPECT_EQ(expected.solved, factor != 0.0);
      for (const int given : {0, -1, kMinInt}) {
        expect_asserts({kSource},
                       [&] { expect_same_answer(answer_of(AnnouncesInVain(p, given)), expected); });
      }
    }
  }
}

// As a base class does that announces and leaves the delivery to the default.
TEST(BlockBandSolver, AnnouncesExceptionalEquationsInVainWithTheDefaultDelivery) {
  struct Announces : Plain {
    bool exceptional() const override { return true; }
  };
  expect_asserts({kSource}, [] {
    expect_same_answer(answer_of(Announces()), {true, Matrix(1, 1, {2.0})});
  });
}

}  // namespace
