// SPDX-License-Identifier: MIT

#pragma once

#include "tnarray_i.h"
#include "tnla_export.h"

// A x = b for a symmetric positive definite A, by the Cholesky factor A = L L'.
//
// A is n x n and b has n elements, both given as plain arrays; A column by column: element (i, j) is array
// element j * n + i.
//
//     TnLaCholesky cholesky(n);
//     cholesky.a(A.array());
//     cholesky.b(load);        const TnArray<double>& x = cholesky.x();
//     cholesky.b(next_load);   cholesky.x();                             // the factor is kept
//
//  (1) The factor is computed at the first x() after a(), and kept for every b() that follows.
//  (2) A pivot below 1e-10 counts as not positive definite.  The bound is absolute: it looks at the pivot
//      before its square root, and knows nothing of the scale of A.  A NaN passes.
//  (3) Such a matrix is no error.  Every x() then solves by the rank-revealing tnla_linearsolve with the
//      tolerance 1e-10, and does not report it: an indefinite A gets its solution, a singular one the
//      solution of minimal length.  This bound is absolute too: scale A so that its diagonal is near 1.
//  (4) The factor is taken from the upper triangle of A alone; (3) looks at all of it.  Give both.
//  (5) A wrong length in a() or b(), and an x() without A or b, are asserted, naming
//      src/tnlacholesky.cpp: one call of the hook each.  What the object then does is said with the
//      operation, and done also while no handler is installed.
//  (6) std::bad_alloc leaves the object usable and loses no memory.  After a failed a() or b() there is
//      still no A or no b; after a failed x() the next one starts again where that one failed.
//
// The object owns copies of A and b, and the solution.  It holds 2 n^2 numbers, and some 32 n more while it
// makes a factor; a factor costs n^3 / 3 flops, a solution 2 n^2.
//
// Source: Golub and Van Loan, Matrix Computations, section 4.2, with an absolute bound for the pivots.
class TNLA_API TnLaCholesky {
 public:
  // A solver for systems of order n, as yet without A and b.
  explicit TnLaCholesky(int n);
  TnLaCholesky(const TnLaCholesky&) = delete;
  TnLaCholesky& operator=(const TnLaCholesky&) = delete;
  virtual ~TnLaCholesky();

  // Sets A and drops the factor.  Asserted: n * n values; otherwise there is no A.
  void a(const TnArray<double>& values);

  // Sets b; the factor stays.  Asserted: n values; otherwise there is no b.
  void b(const TnArray<double>& values);

  // The solution, computed anew at every call; valid until the next call.  Asserted: A is there, then b;
  // otherwise an empty array.
  const TnArray<double>& x();

 private:
  TNLA_HIDDEN bool factorize();
  TNLA_HIDDEN void substitute();
  TNLA_HIDDEN void solve_without_factor();
  TNLA_HIDDEN void init(double* values, int n) const;

  bool factor_ok_;
  int n_;
  double* matrix_;
  double* rhs_;
  double* factor_;       // L below its diagonal, and L' above
  double* working_rhs_;  // a copy of rhs_; null after b()
  double* diagonal_;     // of L
  TnArray<double> solution_;

  friend struct TnLaLayout;
};
