// SPDX-License-Identifier: MIT

#pragma once

#include "tnla_export.h"
#include "tnla_matrix_vector_i.h"

// Banded linear least squares whose equations arrive block by block, with several right-hand sides.
//
// Every equation touches `bandwidth` consecutive unknowns.  A few exceptional equations may couple the
// first unknowns with the last ones, as a closed chain does.  Derive from the class and deliver the
// equations; solve() asks for the blocks one after the other and folds each into a triangle as soon as it
// is there, so that memory does not grow with the number of equations.
//
//     unknowns  0 1 2 3 4 5 6
//             [ x x x         ]  block 0: its unknowns begin at 0
//             [ x x x         ]
//             [   x x x       ]  block 1: at 1
//             [     x x x     ]  block 2: at 2
//             [     x x x     ]
//             [ f f       l l ]  exceptional: the first unknowns and the last ones
//
// N unknowns, NB the bandwidth, R right-hand sides, M the largest number of equations in a block.
//
//  (1) Band storage: a row holds the coefficients of NB consecutive unknowns in columns 0 ... NB-1, then
//      the R right-hand sides.  An equation with fewer coefficients is filled up with zeros.
//  (2) Blocks come with non-decreasing first unknowns and without a gap: a block with the first unknown f
//      and m equations turns r folded rows into f + min(r + m - f, NB), and the next block's first unknown
//      is at most that.  Neither is tested; what comes out is then the solution of something else.
//  (3) Without exceptional equations the result is false if an unknown has no equation, or a diagonal
//      element of the triangle is smaller than 1e-10 in magnitude; x is then resized and partly
//      overwritten.  The bound is absolute: scale the equations so that their lengths are near 1.  A NaN
//      passes.  R = 0 is true, and nothing is computed.
//  (4) With exceptional equations and N < 3 NB, the triangle and they are solved together as one dense
//      system by tnla_linearsolve, whose result it is.  From N = 3 NB on, unknown after unknown is
//      eliminated from them until 2 NB - 1 are left, which TnLaTQRDecompo solves: its false is the result,
//      with x as it was.  For the unknowns before those, the bound of (3) holds.
//  (5) Asserted in src/tnlablkbndsolver.cpp, one call each, and then false: neither the number of equations
//      nor their first unknown is negative, and they fit the matrix that they are written to; the matrices
//      keep their shape.  Exceptional equations that are announced and not given are asserted too; the
//      solve goes on without them.
//  (6) A band that reaches beyond the last unknown is asserted as an element access wherever such a
//      coefficient is met; the coefficient does not count.
//  (7) A solver can be used again, also after an exception out of an operation of the derived class, which
//      passes through solve() without a loss.  One thread at a time.  A negative size is std::bad_alloc.
//
// The solver owns a work matrix of (N + M) x (NB + R), made by the first solve() with the M of that time.
// The copies that a solve works on, at most about NB + M rows, 32 rows or twice the band, are on the stack
// up to 8 KB; more is allocated for its time.  A block of m equations costs at most about
// 2 NB (NB + 2 R) (NB + m) flops.  From N = 3 NB on, exceptional equations need a second matrix of
// N - 2 NB + 1 rows and NB columns for the time of a solve.
//
// Source: Lawson and Hanson, Solving Least Squares Problems, chapter 27 (sequential accumulation for banded
// problems), for several right-hand sides.
class TNLA_API TnLaBlkBndSolver {
 public:
  // N, the number of blocks, NB and R.  Allocates nothing yet.
  TnLaBlkBndSolver(int unknowns, int blocks, int bandwidth, int rhs_count);
  TnLaBlkBndSolver(const TnLaBlkBndSolver&) = delete;
  TnLaBlkBndSolver& operator=(const TnLaBlkBndSolver&) = delete;
  virtual ~TnLaBlkBndSolver();

  // Writes the equations of `block` into the rows from `first_row` on of G, the work matrix: every element
  // of these rows, because they hold what was there before.  `count` is their number and `first_unknown`
  // the unknown of column 0; both are 0 at the call.  The rows above first_row must stay.
  virtual void get_block_equations(int block, int first_row, TnLaDblMat& G, int& count,
                                   int& first_unknown) const = 0;

  // The largest number of equations in a block, or of exceptional ones.
  virtual int max_block_equations() const = 0;

  // Whether there are exceptional equations; false unless overridden.
  virtual bool exceptional() const;

  // Writes the exceptional equations into rows 0 ... count-1.  `first`, M x NB, holds the coefficients of
  // the unknowns 0 ... NB-1, `last`, M x NB, those of the unknowns N-NB ... N-1, `rhs`, M x R, the
  // right-hand sides.  All are 0 at the call.  Where the two ranges overlap the coefficients add.
  virtual void get_exceptional_equations(TnLaDblMat& first, TnLaDblMat& last, TnLaDblMat& rhs,
                                         int& count) const;

  // The least-squares solution, N x R: column k is that of right-hand side k.
  bool solve(TnLaDblMat& x) const;

 private:
  int unknowns_;
  int blocks_;
  int bandwidth_;
  int rhs_count_;
  mutable TnLaDblMat* work_;

  friend struct TnLaLayout;
};
