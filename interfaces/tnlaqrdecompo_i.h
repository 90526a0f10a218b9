// SPDX-License-Identifier: MIT

#pragma once

#include <cstddef>

#include "tnarray_i.h"
#include "tnla_export.h"
#include "tnla_matrix_vector_i.h"
#include "tnlahouseholder_i.h"

// The Householder QR decomposition A = Q R without column interchanges, and least squares by it.
//
// A is m x n, and m >= n is the intended case.  Q is a product of reflections, one for each column that
// has something below its diagonal.  M is TnLaDblMat or TnLaTSmallMat<N, N, double>.
//
//     full_rank():  min |R(i,i)| >= 1e-20  and  max |R(i,i)| / min |R(i,i)| <= 1e10
//
//  (1) The verdict looks at the diagonal of R alone: at the part of each column that is orthogonal to the
//      columns before it.  A harmless system whose columns differ by more than 1e10 in length is refused.
//      Dependence shows only where such a part falls 1e10 below the largest; the condition of a system
//      may be far worse than the spread of that diagonal.
//  (2) A column that shrinks below about 7e-11 while it is eliminated is zeroed, but its reflection is
//      not applied to the others (see tnlahouseholder_i.h): full_rank() may be true and X wrong.  Scale
//      the system so that its columns have a length near 1.
//  (3) The minimum of the test counts as 1e20 at most: an R with an entry above 1e30 and none below 1e20 on
//      its diagonal is refused, whatever the spread.  A NaN on the diagonal does not fail the test, which
//      forgets the entries before it; X then holds NaN.
//
// The object owns a copy of A and its reflections.  Factoring costs about 2 n^2 (m - n/3) flops, solving
// about 4 m n flops a right-hand side.  std::bad_alloc leaves nothing behind.
//
// Source: Golub and Van Loan, Matrix Computations, section 5.2.
template <class M>
class TNLA_API TnLaTQRDecompo {
  static_assert(TnLaTIsMatrix<M>, "M is TnLaDblMat or TnLaTSmallMat<N, N, double>, N = 1 to 12");

 public:
  // Decomposes a copy of A.
  explicit TnLaTQRDecompo(const M& A);
  TnLaTQRDecompo(const TnLaTQRDecompo&) = delete;
  TnLaTQRDecompo& operator=(const TnLaTQRDecompo&) = delete;
  virtual ~TnLaTQRDecompo();

  // R on and above the diagonal, exact zeros below.  Valid as long as the decomposition.
  const M& R() const;

  // Reflection i, in the order of application, and how many there are.  i < n_trafo() is asserted as an
  // array index.
  const TnLaHouseholder& T(int i) const;
  int n_trafo() const;

  // The verdict above; true when A has no diagonal at all.
  bool full_rank() const;

  // X = the n x p least-squares solution of A X = B, for the p columns of B.
  //
  // False, and X only resized to n x p (keeping what overlaps), if m < n or full_rank() is false.  B must
  // not be X.  Asserted: B has m rows.  Otherwise rows beyond m are not looked at, and columns that are
  // too short make the result false.
  bool solve(const M& B, M& X) const;

 private:
  TNLA_HIDDEN TnLaTQRDecompo();

  bool full_rank_;
  M* R_;
  TnArray<TnLaHouseholder*> trafos_;

  friend struct TnLaLayout;
};

extern template class TnLaTQRDecompo<TnLaDblMat>;
extern template class TnLaTQRDecompo<TnLaTSmallMat<1, 1, double>>;
extern template class TnLaTQRDecompo<TnLaTSmallMat<2, 2, double>>;
extern template class TnLaTQRDecompo<TnLaTSmallMat<3, 3, double>>;
extern template class TnLaTQRDecompo<TnLaTSmallMat<4, 4, double>>;
extern template class TnLaTQRDecompo<TnLaTSmallMat<5, 5, double>>;
extern template class TnLaTQRDecompo<TnLaTSmallMat<6, 6, double>>;
extern template class TnLaTQRDecompo<TnLaTSmallMat<7, 7, double>>;
extern template class TnLaTQRDecompo<TnLaTSmallMat<8, 8, double>>;
extern template class TnLaTQRDecompo<TnLaTSmallMat<9, 9, double>>;
extern template class TnLaTQRDecompo<TnLaTSmallMat<10, 10, double>>;
extern template class TnLaTQRDecompo<TnLaTSmallMat<11, 11, double>>;
extern template class TnLaTQRDecompo<TnLaTSmallMat<12, 12, double>>;
