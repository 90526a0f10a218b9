// SPDX-License-Identifier: MIT

#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <ostream>
#include <utility>
#include <vector>

#include "reference/band_reference.h"
#include "support/assertions.h"
#include "support/decomposition_types.h"
#include "support/expect_asserts.h"
#include "support/values.h"
#include "tnlablkbndsolver_i.h"

// Banded problems to solve, and a solver to which they are given as tables.

using reference::BandBlock;
using reference::BandProblem;

namespace reference {
inline std::ostream& operator<<(std::ostream& out, const BandProblem& p) {
  return out << "N " << p.n << ", NB " << p.bandwidth << ", R " << p.n_rhs << ", M " << p.most << ", "
             << p.blocks.size() << " blocks, " << p.n_exceptional() << " exceptional equations";
}
}  // namespace reference

// Writes A into the rows from `row` on of the target.
inline void write_rows(const Matrix& A, std::size_t row, TnLaDblMat& target) {
  for (std::size_t j = 0; j < A.n; ++j) {
    for (std::size_t i = 0; i < A.m; ++i) target(row + i, j) = A(i, j);
  }
}

// Delivers a problem, without an allocation.  The problem may be exchanged between two solves, but for its
// sizes and the number of its blocks.
class BandTable : public TnLaBlkBndSolver {
 public:
  explicit BandTable(BandProblem p)
      : TnLaBlkBndSolver(p.n, static_cast<int>(p.blocks.size()), p.bandwidth, p.n_rhs),
        problem(std::move(p)) {}

  void get_block_equations(int block, int first_row, TnLaDblMat& G, int& count,
                           int& first_unknown) const override {
    const BandBlock& given = problem.blocks[static_cast<std::size_t>(block)];
    write_rows(given.rows, static_cast<std::size_t>(first_row), G);
    count = static_cast<int>(given.rows.m);
    first_unknown = given.first_unknown;
  }

  int max_block_equations() const override { return problem.most; }

  bool exceptional() const override { return problem.exceptional; }

  void get_exceptional_equations(TnLaDblMat& first, TnLaDblMat& last, TnLaDblMat& rhs,
                                 int& count) const override {
    write_rows(problem.first, 0, first);
    write_rows(problem.last, 0, last);
    write_rows(problem.rhs, 0, rhs);
    count = problem.n_exceptional();
  }

  BandProblem problem;
};

// What a solve answers and leaves in x.
struct BandAnswer {
  bool solved = false;
  Matrix x;
};

// What x holds before a solve, so that it shows where it is not written.
inline Matrix before_solve() { return {3, 2, {91, 92, 93, 94, 95, 96}}; }

inline BandAnswer answer_of(const TnLaBlkBndSolver& solver, const Matrix& before = before_solve()) {
  TnLaDblMat x = dense(before);
  const bool solved = solver.solve(x);
  return {solved, plain(x)};
}

inline BandAnswer answer_of(const BandProblem& problem) { return answer_of(BandTable(problem)); }

inline BandAnswer reference_answer(const BandProblem& problem) {
  BandAnswer answer{false, before_solve()};
  answer.solved = reference::Band(problem).solve(answer.x);
  return answer;
}

inline void expect_same_answer(const BandAnswer& actual, const BandAnswer& expected) {
  EXPECT_EQ(actual.solved, expected.solved);
  EXPECT_SAME_MATRIX(actual.x, expected.x);
}

// Bits, and no report.  Returns whether the problem has been solved.
inline bool expect_follows_reference(const BandProblem& problem) {
  SCOPED_TRACE(testing::Message() << problem);
  const AssertionLog log;
  const BandAnswer actual = answer_of(problem);
  EXPECT_EQ(log.count(), 0u);
  expect_same_answer(actual, reference_answer(problem));
  return actual.solved;
}

// Bits, and the elements beyond the unknowns that are reported, one by one.
inline void expect_answer_and_reports(const BandProblem& problem) {
  SCOPED_TRACE(testing::Message() << problem);
  BandAnswer expected{false, before_solve()};
  reference::Band reference(problem);
  expected.solved = reference.solve(expected.x);
  expect_asserts(reference.reports(), [&] { expect_same_answer(answer_of(problem), expected); });
}

// --- Problems -------------------------------------------------------------------------------------------

struct BandShape {
  int n;
  int bandwidth;
  int n_rhs;
};

// Without an equation.
inline BandProblem band_problem(BandShape shape, int most) {
  BandProblem p;
  p.n = shape.n;
  p.bandwidth = shape.bandwidth;
  p.n_rhs = shape.n_rhs;
  p.most = most;
  return p;
}

// The single equation of one block: NB coefficients, then R right-hand sides.
inline BandBlock equation(int first_unknown, const std::vector<double>& row) {
  return {first_unknown, Matrix(1, row.size(), row)};
}

enum class BandValues { uniform, any, sparse };

inline double band_value(Random& random, BandValues values) {
  if (values == BandValues::any) return random.any();
  if (values == BandValues::sparse && random.below(4) != 0) return random.below(2) == 0 ? 0.0 : -0.0;
  return random.uniform();
}

inline Matrix band_matrix(Random& random, int m, int n, BandValues values) {
  Matrix A = reference::zeros(m, n);
  for (double& x : A.a) x = band_value(random, values);
  return A;
}

// Blocks of no, one, few and many equations, several of them with one first unknown, until every unknown
// has an equation.  The first unknown goes up by one, by more, or by so much that two blocks have no
// unknown in common.
inline void fill_blocks(Random& random, BandValues values, BandProblem& p) {
  constexpr std::size_t kMostBlocks = 1000;
  const int sizes[] = {0, 1, 1, 2, 3, p.bandwidth, 2 * p.bandwidth + 3};
  int first = 0;
  int n_rows = 0;
  while (p.blocks.size() < kMostBlocks && (n_rows < p.n || random.below(3) != 0)) {
    const int room = std::max(0, std::min(n_rows, p.n - p.bandwidth) - first);
    const int steps[] = {0, 1, 2, room};
    first += std::min(room, steps[random.below(4)]);
    const int count = sizes[random.below(7)];
    p.blocks.push_back({first, band_matrix(random, count, p.bandwidth + p.n_rhs, values)});
    n_rows = first + std::min(n_rows + count - first, p.bandwidth);
    p.most = std::max(p.most, count);
  }
}

inline void fill_exceptional(Random& random, int count, BandValues values, BandProblem& p) {
  p.exceptional = true;
  p.first = band_matrix(random, count, p.bandwidth, values);
  p.last = band_matrix(random, count, p.bandwidth, values);
  p.rhs = band_matrix(random, count, p.n_rhs, values);
  p.most = std::max(p.most, count) + static_cast<int>(random.below(3));
}

// n >= bandwidth >= 1.  No exceptional equations for count == 0.
inline BandProblem random_band_problem(Random& random, BandShape shape, BandValues values, int count) {
  BandProblem p = band_problem(shape, 0);
  fill_blocks(random, values, p);
  if (count > 0) fill_exceptional(random, count, values, p);
  return p;
}

// One equation for every unknown i: factors[i] x(i) = 1, 2, ... for the right-hand sides 0, 1, ...
inline BandProblem diagonal_problem(int bandwidth, int n_rhs, const std::vector<double>& factors) {
  BandProblem p = band_problem({static_cast<int>(factors.size()), bandwidth, n_rhs}, 1);
  for (int i = 0; i < p.n; ++i) {
    // The last blocks begin where the band ends with the unknowns.
    const int first = std::min(i, p.n - bandwidth);
    BandBlock block{first, reference::zeros(1, bandwidth + n_rhs)};
    reference::at(block.rows, 0, i - first) = factors[static_cast<std::size_t>(i)];
    for (int k = 0; k < n_rhs; ++k) reference::at(block.rows, 0, bandwidth + k) = k + 1.0;
    p.blocks.push_back(block);
  }
  return p;
}

// x(i+1) - x(i) = d for all neighbours, with another d for each; one equation a block, NB = 2, R = 1.
inline BandProblem open_chain(int n, Random& random) {
  BandProblem p = band_problem({n, 2, 1}, 1);
  for (int i = 0; i + 1 < n; ++i) p.blocks.push_back(equation(i, {-1.0, 1.0, random.uniform()}));
  return p;
}

// The chain closed by f x(0) + l x(N-1) = d.
inline BandProblem closed_chain(int n, double f, double l, Random& random) {
  BandProblem p = open_chain(n, random);
  p.exceptional = true;
  p.first = Matrix(1, 2, {f, 0.0});
  p.last = Matrix(1, 2, {0.0, l});
  p.rhs = Matrix(1, 1, {random.uniform()});
  return p;
}
