// SPDX-License-Identifier: MIT

#pragma once

#include "tnarray_i.h"
#include "tnjournal.h"
#include "tnla_export.h"

// Householder reflections H = I + scale * u * u' on strided vectors.
//
// A reflection acts on the entries j_pivot and j_zero ... n-1 of a vector; all others are neither read
// nor written.  Entry i of a vector v with the increment incr is v[i * incr].
//
//         v                     H v
//      j_pivot   [ p ]        [ s ]      |s| = length of (p, t), sign opposite to p
//                [ . ]        [ . ]      untouched
//      j_zero    [ t ]        [ 0 ]
//      n-1       [ t ]        [ 0 ]
//
//  (1) Everything below 1e-20 in magnitude counts as zero: such a column gives the identity, and so does
//      an empty range (j_zero == n).  That is a result, not an error.
//  (2) A reflection whose s * up is less than 1e-20 in magnitude is not applied either.  Since |s * up|
//      is at most 2 s^2, columns shorter than about 7e-11 are reduced by the construction while applying
//      the reflection does nothing.  Scale your problem so that its columns stay above that.
//  (3) A sum starts with the pivot's term and goes on in ascending order, with one accumulator.
//  (4) Asserted: 0 <= j_pivot < j_zero <= n.  The free functions carry on after a violation.
//
// Source: Lawson and Hanson, Solving Least Squares Problems, chapter 10 (H1 and H2), with the absolute
// threshold 1e-20 in place of their tests against 0.

// Takes the reflection from v.  On return v[j_pivot] holds s and `up` the pivot entry of u; the entries
// v[j_zero ... n-1] are left as they were: they are the rest of u.  Where (1) applies, v and up are left
// as they were.  About 4 (n - j_zero) flops, no allocation.
TNLA_API void tnla_h1(int j_pivot, int j_zero, int n, double* v, int incr, double& up);

// Applies the reflection that tnla_h1 left in u and up to n_vec vectors; vector k starts at
// c + k * stride_vec and has the increment incr_c.  About 4 (n - j_zero + 1) flops a vector, no
// allocation.  u and c must not overlap.
TNLA_API void tnla_h2(int j_pivot, int j_zero, int n, const double* u, int incr_u, const double& up,
                      double* c, int incr_c, int stride_vec, int n_vec);

// One reflection, taken from a column or row and kept.
class TNLA_API TnLaHouseholder {
 public:
  // Takes the reflection from v, and leaves H v there: s at the pivot, exact zeros in the range (also
  // where the reflection is the identity).  The object keeps u, n elements; v remains the caller's.
  // A pivot outside 0 ... n-1 or a negative j_zero is asserted, gives the identity and leaves v alone.
  // std::bad_alloc leaves v as it was.
  TnLaHouseholder(int j_pivot, int j_zero, int n, double* v, int incr);
  TnLaHouseholder(const TnLaHouseholder& other);
  TnLaHouseholder& operator=(const TnLaHouseholder& other);
  virtual ~TnLaHouseholder();

  // w = H w.  A vector whose product with u is exactly 0 is left alone; one whose product is NaN is not.
  void apply(double* w, int incr) const;

  // Writes the entries of u and the scale, one a line.
  void debug(TnJournal& journal, int indent) const;

 private:
  // A reflection that is finished: `range` is u from j_zero on.
  TNLA_HIDDEN TnLaHouseholder(int j_pivot, int j_zero, int n, const double* range, double up, double scale);

  int j_pivot_;
  int j_zero_;
  TnArray<double> u_;  // u_[j_pivot_] and u_[j_zero_ ...]; the other entries are zero and never used
  double scale_;       // 1 / (s * up) = -2 / (u . u); 0 for the identity

  friend struct TnLaAccess;
  friend struct TnLaLayout;
};
