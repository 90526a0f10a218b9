// SPDX-License-Identifier: MIT

#pragma once

#include <cstddef>

#include "kernels/rank_revealing.h"
#include "tnla_matrix_vector_i.h"
#include "tnla_workspace.h"

// The rank-revealing decomposition Q A P = [R S; 0 e], and least squares of minimal length by it.
//
//            k     n-k
//      k  [  R      S  ]     R upper triangular, k = rank
//    m-k  [  0      e  ]     e: the diagonal entry in its corner is below tol
//
// Columns are interchanged (P) so that each step eliminates the longest one left.  Where k < n, the
// reflections K from the right turn [R S] into [W 0], W upper triangular; the unknowns beyond k are then
// set to zero, which makes the solution the shortest.  The tolerance is absolute.
//
// The object holds R or W, the reflections and the interchanges in one block, inside itself where the
// matrix is small.  std::bad_alloc leaves nothing behind, and X and Z as they were.
//
// Source: Lawson and Hanson, Solving Least Squares Problems, chapter 14 (HFTI).  Departures: the absolute
// tolerance, and the reference value of the recompute test of the pivot choice (kernels/rank_revealing.h).
//
// On plain column-major elements, A m x n.
class TnLaRankRevealing {
 public:
  using Index = tnla_kernels::Index;

  TnLaRankRevealing(Index m, Index n, const double* a, double tol);

  Index m() const { return m_; }
  Index n() const { return n_; }
  Index rank() const { return rank_; }

  // In bytes, of `scratch` for p right sides, and for the columns of the basis.
  std::size_t solve_scratch(Index p) const;
  std::size_t basis_scratch(Index n_cols) const;

  // X, n x p, from B, m x p, both without gaps between the columns.
  void solve(Index p, const double* b, double* x, double* scratch) const;

  // Turns the unit vectors of the free unknowns into the basis.
  void turn_back(Index n_cols, double* x, double* scratch) const;

 private:
  Index pseudo_rank(double tol) const;

  Index m_;
  Index n_;
  Index d_;  // the smaller one
  Index rank_;
  TnLaWorkspace block_;
  double* r_;  // below the diagonal the ranges of left_, right of the rank those of right_
  tnla_kernels::Reflections left_;   // Q: on columns, in the order of creation
  tnla_kernels::Reflections right_;  // K: number i on row i, created from the last to the first
  int* perm_;                        // perm_[j]: the column that step j brought to place j
};

// The same for the matrix types.
template <class M>
class TnLaTHFTIDecompo {
 public:
  // tol: diagonal entries of R smaller in magnitude do not count towards the rank.
  TnLaTHFTIDecompo(const M& A, double tol);
  TnLaTHFTIDecompo(const TnLaTHFTIDecompo&) = delete;
  TnLaTHFTIDecompo& operator=(const TnLaTHFTIDecompo&) = delete;
  virtual ~TnLaTHFTIDecompo() = default;

  int rank() const { return static_cast<int>(decomposition_.rank()); }

  // X = the n x p solution of A X = B of minimal length; zero where the rank is 0.  Asserted: B has m
  // rows.  X must not be B.
  void solve(const M& B, M& X) const;

  // Z = an orthonormal basis of the null space in n x (n - rank); 0 x 0 if there is none.  Only the ones
  // from which the basis is made are written before Z is turned, every column of it: Z must hold zeros (or
  // be empty).
  void null_space(M& Z) const;

 private:
  TnLaRankRevealing decomposition_;
};
