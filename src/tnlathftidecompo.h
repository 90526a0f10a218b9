#pragma once

#include "tnarray_i.h"
#include "tnla_matrix_vector_i.h"
#include "tnlahouseholder_i.h"

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
// The object owns a copy of A and its reflections.  std::bad_alloc leaves nothing behind.
//
// Source: Lawson and Hanson, Solving Least Squares Problems, chapter 14 (HFTI).  Departures: the absolute
// tolerance, and the reference value of the recompute test in choose_pivot (see there).
template <class M>
class TnLaTHFTIDecompo {
 public:
  // tol: diagonal entries of R smaller in magnitude do not count towards the rank.
  TnLaTHFTIDecompo(const M& A, double tol);
  TnLaTHFTIDecompo(const TnLaTHFTIDecompo&) = delete;
  TnLaTHFTIDecompo& operator=(const TnLaTHFTIDecompo&) = delete;
  virtual ~TnLaTHFTIDecompo();

  int rank() const { return rank_; }

  // X = the n x p solution of A X = B of minimal length; zero where the rank is 0.  Asserted: B has m
  // rows.  X must not be B.
  void solve(const M& B, M& X) const;

  // Z = an orthonormal basis of the null space in n x (n - rank); 0 x 0 if there is none.  Only the ones
  // from which the basis is made are written before it is turned: Z must hold zeros (or be empty).
  void null_space(M& Z) const;

 private:
  TnLaTHFTIDecompo();
  void triangularize();
  int pseudo_rank(double tol) const;
  void compress();
  void undo_interchanges(double* x, std::size_t n_cols) const;

  M* A_;
  int rank_;
  TnArray<TnLaHouseholder*> left_;   // Q: on columns, in the order of creation
  TnArray<TnLaHouseholder*> right_;  // K: on rows k-1 ... 0, in the order of creation
  TnArray<int> perm_;                // perm_[j]: the column that step j brought to place j
};
