// SPDX-License-Identifier: MIT

#pragma once

#include <cstddef>

#include "kernels/index.h"
#include "tnla_matrix_vector_i.h"
#include "tnla_workspace.h"

// The triangle into which the equations of a banded least-squares problem are folded, row by row of a work
// matrix G.  A row of G holds the coefficients of `bandwidth` consecutive unknowns, then the right-hand
// sides.
//
//     row   first unknown    the diagonal element is in column
//     r     min(r, front)    r - min(r, front)
//
// `front` is the first unknown of the latest block.  Rows from n_rows() on count as zero, whatever G holds.
//
// A fold reads its rows from G and leaves them there, so that a client may look at all of G, or change it,
// between two folds.
class TnLaBand {
 public:
  using Index = tnla_kernels::Index;

  // An empty triangle for n unknowns.  G is N + M rows high and has a column for every right-hand side;
  // blocks of up to `most` equations are folded at full speed.
  TnLaBand(TnLaDblMat& G, int n, int bandwidth, std::size_t most);

  TnLaDblMat& G() const { return G_; }
  Index n() const { return n_; }
  Index bandwidth() const { return bandwidth_; }
  Index n_rhs() const { return n_rhs_; }
  Index front() const { return front_; }
  Index n_rows() const { return n_rows_; }
  Index first_unknown(Index row) const { return row < front_ ? row : front_; }

  bool has_room_for(Index count) const { return count <= static_cast<Index>(G_.n_rows()) - n_rows_; }

  // Folds in `count` equations that begin at unknown `first`.  They are in the rows from n_rows() on.
  void fold(Index count, Index first);

  // Moves the front up: the rows behind the old one begin at the new one, or at their own unknown if that
  // comes before.  What leaves a row there is zero.
  void align(Index front);

  // The solution, n x n_rhs.  False where a row is missing or its diagonal element is too small; x then
  // keeps what has been written.
  bool back_substitute(TnLaDblMat& x);

  // Rows n_rows-1 ... 0 of the solution, where each begins at its own unknown and those behind them are
  // solved.  Row v of the coupling, unless it is null, holds its coefficients of the last `bandwidth`
  // unknowns.  Ends before a diagonal element that is too small; the result is how many rows are left then.
  Index substitute_together(Index n_rows, const double* coupling, TnLaDblMat& x);

 private:
  bool fold_copies(Index count, Index first);
  void align_rows(Index begin, Index end, Index front);
  void triangularize(Index top, Index height);
  void copy_right_side(Index k, Index begin, Index end, TnLaDblMat& x) const;
  bool substitute_column(Index k, Index begin, TnLaDblMat& x) const;

  TnLaDblMat& G_;
  Index n_;
  Index bandwidth_;
  Index n_rhs_;
  Index front_ = 0;
  Index n_rows_ = 0;
  Index stride_;    // of the copies of rows
  Index n_copies_;  // there is room for, none for a narrow band
  TnLaWorkspace scratch_;
};

// A diagonal element below it in magnitude ends a back substitution; a NaN does not.
inline constexpr double kSmallestBandDiagonal = 1e-10;

// Element (i, j), checked as operator() does; null if there is none.
double* tnla_element_or_null(TnLaDblMat& A, tnla_kernels::Index i, tnla_kernels::Index j);
