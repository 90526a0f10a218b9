// SPDX-License-Identifier: MIT

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <limits>
#include <new>
#include <utility>
#include <vector>

#include "reference/band_reference.h"
#include "support/assertions.h"
#include "support/band_problem.h"
#include "support/decomposition_types.h"
#include "support/expect_asserts.h"
#include "support/values.h"
#include "tnlablkbndsolver_i.h"

// Derived classes that answer what cannot be, and sizes that do not fit together: the results are defined,
// and the address sanitizer sees that no foreign memory is touched.

namespace {

constexpr char kSource[] = "src/tnlablkbndsolver.cpp";
constexpr int kMaxInt = std::numeric_limits<int>::max();
constexpr int kMinInt = std::numeric_limits<int>::min();

// --- Answers that do not fit -------------------------------------------------------------------------

// Delivers a problem and then spoils the answer.
class Spoiler : public BandTable {
 public:
  using BandTable::BandTable;

  void get_block_equations(int block, int first_row, TnLaDblMat& G, int& count,
                           int& first_unknown) const override {
    BandTable::get_block_equations(block, first_row, G, count, first_unknown);
    if (spoil_block && block == spoilt_block) spoil_block(G, count, first_unknown);
  }

  void get_exceptional_equations(TnLaDblMat& first, TnLaDblMat& last, TnLaDblMat& rhs,
                                 int& count) const override {
    BandTable::get_exceptional_equations(first, last, rhs, count);
    if (spoil_exceptional) spoil_exceptional(first, last, rhs, count);
  }

  int spoilt_block = 0;
  std::function<void(TnLaDblMat& G, int& count, int& first_unknown)> spoil_block;
  std::function<void(TnLaDblMat& first, TnLaDblMat& last, TnLaDblMat& rhs, int& count)> spoil_exceptional;
};

BandProblem sample(int n, int n_exceptional) {
  Random random(static_cast<std::uint64_t>(n));
  return random_band_problem(random, {n, 2, 2}, BandValues::uniform, n_exceptional);
}

// One call of the hook and false; without what has been spoilt the solver solves as a new one does.
void expect_refuses(Spoiler& solver) {
  expect_asserts({kSource}, [&solver] { EXPECT_FALSE(answer_of(solver).solved); });
  const auto spoil_block = std::exchange(solver.spoil_block, nullptr);
  const auto spoil_exceptional = std::exchange(solver.spoil_exceptional, nullptr);
  expect_asserts({},
                 [&solver] { expect_same_answer(answer_of(solver), reference_answer(solver.problem)); });
  solver.spoil_block = spoil_block;
  solver.spoil_exceptional = spoil_exceptional;
  EXPECT_FALSE(answer_of(solver).solved);
}

// In each block of a problem that is solved in each way, with a new solver and with one that has a work
// matrix already.
template <class F>
void expect_refuses_block(F spoil) {
  for (const int n : {5, 6}) {
    for (const int n_exceptional : {0, 2}) {
      const BandProblem p = sample(n, n_exceptional);
      for (std::size_t b = 0; b < p.blocks.size(); ++b) {
        SCOPED_TRACE(testing::Message() << p << ", block " << b);
        Spoiler solver(p);
        solver.spoilt_block = static_cast<int>(b);
        solver.spoil_block = spoil;
        expect_refuses(solver);
      }
    }
  }
}

template <class F>
void expect_refuses_exceptional(F spoil) {
  for (const int n : {3, 5, 6, 20}) {
    Spoiler solver(sample(n, 2));
    SCOPED_TRACE(testing::Message() << solver.problem);
    solver.spoil_exceptional = spoil;
    expect_refuses(solver);
  }
}

TEST(BlockBandMisuse, ANegativeNumberOfEquations) {
  for (const int wrong : {-1, -3, kMinInt}) {
    expect_refuses_block([wrong](TnLaDblMat&, int& count, int&) { count = wrong; });
  }
}

TEST(BlockBandMisuse, ANegativeFirstUnknown) {
  for (const int wrong : {-1, -2, kMinInt}) {
    expect_refuses_block([wrong](TnLaDblMat&, int&, int& first) { first = wrong; });
  }
}

TEST(BlockBandMisuse, MoreEquationsThanTheWorkMatrixHasRoomFor) {
  expect_refuses_block([](TnLaDblMat& G, int& count, int&) { count = static_cast<int>(G.n_rows()) + 1; });
  expect_refuses_block([](TnLaDblMat&, int& count, int&) { count = kMaxInt; });
  expect_refuses_block([](TnLaDblMat&, int& count, int& first) { count = first = kMaxInt; });
}

// One row below the work matrix, after the rows that have been folded.
TEST(BlockBandMisuse, OneEquationMoreThanThereIsRoomFor) {
  const BandProblem p = diagonal_problem(2, 1, {1, 1, 1, 1});  // 4 + 1 rows
  for (int block = 0; block < p.n; ++block) {
    Spoiler solver(p);
    solver.spoilt_block = block;
    solver.spoil_block = [block](TnLaDblMat&, int& count, int&) { count = 5 - block + 1; };
    expect_refuses(solver);
    solver.spoil_block = [block](TnLaDblMat& G, int& count, int&) {
      count = 5 - block;  // the other rows repeat the first one
      const auto row = static_cast<std::size_t>(block);
      for (std::size_t i = row + 1; i < 5; ++i) {
        for (std::size_t c = 0; c < 3; ++c) G(i, c) = G(row, c);
      }
    };
    expect_asserts({}, [&solver] { EXPECT_TRUE(answer_of(solver).solved); });
  }
}

using Change = void (*)(TnLaDblMat& A);

constexpr Change kChangesOfShape[] = {
    [](TnLaDblMat& A) { A.resize(0, 0, false); },
    [](TnLaDblMat& A) { A.resize(A.n_rows() + 1, A.n_cols(), true); },
    [](TnLaDblMat& A) { A.resize(A.n_rows() - 1, A.n_cols(), true); },
    [](TnLaDblMat& A) { A.resize(A.n_rows(), A.n_cols() + 1, true); },
    [](TnLaDblMat& A) { A.resize(A.n_rows(), A.n_cols() - 1, true); },
    [](TnLaDblMat& A) { A.resize(1, 1, true); },
    [](TnLaDblMat& A) { A.resize(1, A.n_rows() * A.n_cols(), true); },
    [](TnLaDblMat& A) { A = TnLaDblMat(100, 100, 1.0); },
};

TEST(BlockBandMisuse, AWorkMatrixOfAnotherShape) {
  for (const Change change : kChangesOfShape) {
    expect_refuses_block([change](TnLaDblMat& G, int&, int&) { change(G); });
  }
}

TEST(BlockBandMisuse, AWorkMatrixOfAnotherShapeThatAnExceptionLeaves) {
  struct Thrown {};
  const BandProblem p = sample(5, 0);
  for (const Change change : kChangesOfShape) {
    Spoiler solver(p);
    solver.spoil_block = [change](TnLaDblMat& G, int&, int&) {
      change(G);
      throw Thrown();
    };
    TnLaDblMat x;
    EXPECT_THROW(solver.solve(x), Thrown);
    solver.spoil_block = nullptr;
    expect_asserts({}, [&] { expect_same_answer(answer_of(solver), reference_answer(p)); });
  }
}

// An answer that is wrong in several ways is one call of the hook.
TEST(BlockBandMisuse, EverythingAtOnce) {
  expect_refuses_block([](TnLaDblMat& G, int& count, int& first) {
    G.resize(0, 0, false);
    count = first = -1;
  });
}

TEST(BlockBandMisuse, AWorkMatrixThatGetsItsShapeBackIsTheSame) {
  const BandProblem p = sample(5, 0);
  Spoiler solver(p);
  solver.spoil_block = [](TnLaDblMat& G, int&, int&) {
    const TnLaDblMat old = G;
    G.resize(40, 40, false);
    G.resize(0, 0, false);
    G = old;
  };
  expect_asserts({}, [&] { expect_same_answer(answer_of(solver), reference_answer(p)); });
}

// Keeps the work matrix that it is handed, and changes its shape when it is not being asked for a block.
class Keeper : public BandTable {
 public:
  using BandTable::BandTable;

  void get_block_equations(int block, int first_row, TnLaDblMat& G, int& count,
                           int& first_unknown) const override {
    kept = &G;
    if (solves_itself) {
      solves_itself = false;
      TnLaDblMat x;
      solve(x);
    }
    BandTable::get_block_equations(block, first_row, G, count, first_unknown);
  }

  bool exceptional() const override {
    if (change_at_exceptional != nullptr) change_at_exceptional(*kept);
    return BandTable::exceptional();
  }

  void get_exceptional_equations(TnLaDblMat& first, TnLaDblMat& last, TnLaDblMat& rhs,
                                 int& count) const override {
    BandTable::get_exceptional_equations(first, last, rhs, count);
    if (change_at_equations != nullptr) change_at_equations(*kept);
  }

  mutable TnLaDblMat* kept = nullptr;
  mutable bool solves_itself = false;
  Change change_at_exceptional = nullptr;
  Change change_at_equations = nullptr;
};

TEST(BlockBandMisuse, AWorkMatrixThatGetsAnotherShapeAfterTheBlocks) {
  for (const Change change : kChangesOfShape) {
    for (const int n : {5, 6}) {
      for (const int n_exceptional : {0, 2}) {
        Keeper solver(sample(n, n_exceptional));
        SCOPED_TRACE(testing::Message() << solver.problem);
        solver.change_at_exceptional = change;
        expect_asserts({kSource}, [&solver] { EXPECT_FALSE(answer_of(solver).solved); });
        solver.change_at_exceptional = nullptr;
        solver.change_at_equations = change;
        if (n_exceptional > 0) {
          expect_asserts({kSource}, [&solver] { EXPECT_FALSE(answer_of(solver).solved); });
        }
        solver.change_at_equations = nullptr;
        expect_same_answer(answer_of(solver), reference_answer(solver.problem));
      }
    }
  }
}

// Another number of columns, or too few rows for the unknowns, is noticed; the matrix is then made anew.
TEST(BlockBandMisuse, AWorkMatrixThatGetsAnotherShapeBetweenTwoSolves) {
  for (const Change change : kChangesOfShape) {
    for (const int n_exceptional : {0, 2}) {
      Keeper solver(sample(6, n_exceptional));
      EXPECT_TRUE(answer_of(solver).solved);
      const std::size_t n_rows = solver.kept->n_rows();
      const std::size_t n_cols = solver.kept->n_cols();
      change(*solver.kept);
      const bool lacks_a_row = solver.kept->n_rows() < n_rows && solver.kept->n_cols() == n_cols;
      const BandAnswer answer = answer_of(solver);
      if (answer.solved || !lacks_a_row) expect_same_answer(answer, reference_answer(solver.problem));
    }
  }
}

// What an inner solve of the same object leaves to the outer one is not defined, but it is safe.
TEST(BlockBandMisuse, ASolveWithinASolve) {
  for (const Change change : kChangesOfShape) {
    Keeper solver(sample(6, 2));
    solver.solves_itself = true;
    solver.change_at_exceptional = change;
    EXPECT_FALSE(answer_of(solver).solved);
    solver.change_at_exceptional = nullptr;
    expect_same_answer(answer_of(solver), reference_answer(solver.problem));
  }
}

TEST(BlockBandMisuse, MoreExceptionalEquationsThanThereIsRoomFor) {
  expect_refuses_exceptional([](TnLaDblMat& first, TnLaDblMat&, TnLaDblMat&, int& count) {
    count = static_cast<int>(first.n_rows()) + 1;
  });
  expect_refuses_exceptional([](TnLaDblMat&, TnLaDblMat&, TnLaDblMat&, int& count) { count = kMaxInt; });
}

TEST(BlockBandMisuse, ExceptionalEquationsOfAnotherShape) {
  for (const Change change : kChangesOfShape) {
    expect_refuses_exceptional(
        [change](TnLaDblMat& first, TnLaDblMat&, TnLaDblMat&, int&) { change(first); });
    expect_refuses_exceptional(
        [change](TnLaDblMat&, TnLaDblMat& last, TnLaDblMat&, int&) { change(last); });
    expect_refuses_exceptional([change](TnLaDblMat&, TnLaDblMat&, TnLaDblMat& rhs, int&) { change(rhs); });
  }
  expect_refuses_exceptional([](TnLaDblMat& first, TnLaDblMat& last, TnLaDblMat& rhs, int& count) {
    first = last = rhs = TnLaDblMat();
    count = kMaxInt;
  });
}

// --- Bands that reach beyond the unknowns ------------------------------------------------------------

TEST(BlockBandMisuse, ATermBeyondTheLastUnknownIsReportedAndSkipped) {
  BandProblem p = band_problem({2, 2, 2}, 1);
  p.blocks = {equation(0, {2, 0, 4, 8}), equation(1, {4, 5, 8, 16})};  // 4 x1 + 5 (x2) = 8
  // Element (2, 0) of the 2 x 2 solution is in the array, and element (2, 1) is not.
  expect_asserts(
      {"interfaces/tnla_matrix_vector_i.h", "interfaces/tnla_matrix_vector_i.h", "interfaces/tnarray_i.h"},
      [&] {
        expect_same_answer(answer_of(p), {true, Matrix(2, 2, {2, 2, 4, 4})});
      });
  expect_answer_and_reports(p);
}

TEST(BlockBandMisuse, ABandThatReachesBeyondTheLastUnknown) {
  Random random(1);
  for (int bandwidth = 1; bandwidth <= 4; ++bandwidth) {
    for (const int n : {bandwidth, 2 * bandwidth, 3 * bandwidth - 1, 3 * bandwidth, 3 * bandwidth + 4}) {
      for (int beyond = 1; beyond <= bandwidth + 1; ++beyond) {
        for (const int count : {0, 1, 3}) {
          for (const int n_rhs : {0, 1, 3}) {
            BandProblem p = random_band_problem(random, {n, bandwidth, n_rhs}, BandValues::uniform, count);
            const int first = n - bandwidth + beyond;
            p.blocks.push_back({first, band_matrix(random, 1, bandwidth + n_rhs, BandValues::uniform)});
            p.blocks.push_back({first, band_matrix(random, 2, bandwidth + n_rhs, BandValues::uniform)});
            p.most += 3 + bandwidth;
            expect_answer_and_reports(p);
          }
        }
      }
    }
  }
}

TEST(BlockBandMisuse, FewerUnknownsThanTheBandIsWide) {
  Random random(2);
  for (int bandwidth = 1; bandwidth <= 4; ++bandwidth) {
    for (int n = 0; n < bandwidth; ++n) {
      for (int n_rhs = 0; n_rhs <= 3; ++n_rhs) {
        for (const int n_rows : {0, 1, n, bandwidth, bandwidth + 3}) {
          for (const int count : {0, 1, 3}) {
            BandProblem p = band_problem({n, bandwidth, n_rhs}, n_rows);
            p.blocks.push_back({0, band_matrix(random, n_rows, bandwidth + n_rhs, BandValues::uniform)});
            if (count > 0) fill_exceptional(random, count, BandValues::uniform, p);
            expect_answer_and_reports(p);
          }
        }
      }
    }
  }
}

// --- Sizes -------------------------------------------------------------------------------------------

TEST(BlockBandMisuse, ANegativeSizeIsBadAlloc) {
  for (const int wrong : {-1, kMinInt}) {
    expect_asserts({}, [wrong] {
      EXPECT_THROW(answer_of(band_problem({wrong, 2, 1}, 3)), std::bad_alloc);
      EXPECT_THROW(answer_of(band_problem({4, wrong, 1}, 3)), std::bad_alloc);
      EXPECT_THROW(answer_of(band_problem({4, 2, wrong}, 3)), std::bad_alloc);
      EXPECT_THROW(answer_of(band_problem({4, 2, 1}, wrong)), std::bad_alloc);
    });
  }
}

TEST(BlockBandMisuse, TooLargeASizeIsBadAlloc) {
  expect_asserts({}, [] {
    EXPECT_THROW(answer_of(band_problem({kMaxInt, kMaxInt, kMaxInt}, kMaxInt)), std::bad_alloc);
    EXPECT_THROW(answer_of(band_problem({kMaxInt, kMaxInt, kMaxInt}, 0)), std::bad_alloc);
  });
}

// It solves again once the number is a size again.
TEST(BlockBandMisuse, ANegativeNumberOfEquationsLaterIsBadAllocToo) {
  for (const int count : {0, 2}) {
    BandTable solver(sample(5, count));
    const int most = solver.problem.most;
    const BandAnswer answer = answer_of(solver);
    solver.problem.most = -1;
    EXPECT_THROW(answer_of(solver), std::bad_alloc);
    solver.problem.most = most;
    expect_same_answer(answer_of(solver), answer);
  }
}

TEST(BlockBandMisuse, NoSizeAtAll) {
  for (const int n : {0, 3}) {
    for (const int bandwidth : {0, 2}) {
      for (const int n_rhs : {0, 2}) {
        expect_asserts({}, [&] {
          expect_same_answer(answer_of(band_problem({n, bandwidth, n_rhs}, 0)),
                             {n == 0 || n_rhs == 0, reference::zeros(n, n_rhs)});
        });
      }
    }
  }
}

}  // namespace
