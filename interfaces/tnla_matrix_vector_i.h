// SPDX-License-Identifier: MIT

#pragma once

#include <cstddef>
#include <type_traits>

#include "tnarray_i.h"
#include "tnjournal.h"
#include "tnla_export.h"
#include "tnla_util_i.h"
#include "tnlatsmallmat_i.h"
#include "tnlatsmallvec_i.h"

// Dense matrices and vectors of any size.  (The small types, of fixed size, come along: a client of
// either often wants the other.)
//
// A matrix is column-major: element (i, j) of an m x n matrix is array element j * m + i.  A column is
// contiguous, a row has the increment m, and the leading dimension is always m.
//
//              j
//        [ 0  3  6 ]
//     i  [ 1  4  7 ]      m = n = 3: the numbers are the places in the array
//        [ 2  5  8 ]
//
//  (1) Both types are values: copies are deep, and every object owns its elements.
//  (2) A matrix is empty when n_rows * n_cols is 0; it keeps its shape all the same (0 x 5).
//  (3) A failed precondition ("asserted" below) is one call of the assertion hook, naming
//      src/tnla_matrix_vector.cpp unless said otherwise, and then the fallback given with the operation,
//      also while no handler is installed.
//  (4) Every sum of products has one accumulator, starts from +0.0 and takes its terms in ascending order.
//      Products are rounded before they are added.  NaN, infinity and overflow propagate.
//  (5) When memory is exhausted, or a size overflows, std::bad_alloc is thrown.  The object then has its
//      old value or a valid shape with other elements; nothing is leaked.
//  (6) Distinct objects may be used on distinct threads.

class TnLaDblVec;

// A dense matrix of any shape.
class TNLA_API TnLaDblMat {
 public:
  // --- Construction -----------------------------------------------------------------------------------

  // 0 x 0; does not allocate.
  TnLaDblMat();
  TnLaDblMat(const TnLaDblMat& other);
  // `value` on the diagonal, zero elsewhere: a scaled identity, or the zero matrix for value == 0.
  TnLaDblMat(std::size_t rows, std::size_t cols, double value);  // for a literal 0 write 0.0
  // rows * cols elements from p, column by column.
  TnLaDblMat(const double* p, std::size_t rows, std::size_t cols);
  // As many whole columns of `rows` elements as `a` holds; what is left over is dropped.
  TnLaDblMat(const TnArray<double>& a, std::size_t rows);
  // A matrix of one row or of one column.
  TnLaDblMat(const TnLaDblVec& v, bool as_row);
  ~TnLaDblMat();

  // Keeps its block if that suffices.
  TnLaDblMat& operator=(const TnLaDblMat& other);

  // --- Elements ---------------------------------------------------------------------------------------

  // Element (i, j).  Asserted: i < n_rows() and j < n_cols() (in this header), then the array's own index
  // check.  The access takes place all the same.
  double& operator()(std::size_t i, std::size_t j) {
    TN_ASSERT("interfaces/tnla_matrix_vector_i.h", i < n_rows_ && j < n_cols_);
    return array_[j * n_rows_ + i];
  }
  const double& operator()(std::size_t i, std::size_t j) const {
    TN_ASSERT("interfaces/tnla_matrix_vector_i.h", i < n_rows_ && j < n_cols_);
    return array_[j * n_rows_ + i];
  }

  // The shape; a matrix is empty where one of the two is 0.
  std::size_t n_rows() const { return n_rows_; }
  std::size_t n_cols() const { return n_cols_; }
  bool empty() const { return n_rows_ * n_cols_ == 0; }
  // The elements, column by column; array().data() is what a function on raw arrays wants.
  const TnArray<double>& array() const { return array_; }

  // Set all elements; the shape stays.
  void initialize(double v);         // for a literal 0 write 0.0
  void initialize(const double* p);  // n_rows * n_cols values, column by column
  // The same from the front of an array.  Asserted: it is long enough; otherwise each missing element is
  // asserted too, as an array index, and becomes 0.0.
  void initialize(const TnArray<double>& a);

  // --- Structure --------------------------------------------------------------------------------------

  // A new shape.  With `keep`, elements (i, j) inside both shapes stay and the others are zero; without,
  // all are zero.  In place if the number of rows stays.
  void resize(std::size_t rows, std::size_t cols, bool keep);

  // Insert `count` zero rows or columns before position `pos`; count < 1 does nothing.  Asserted:
  // pos <= number of rows (columns); otherwise nothing changes.
  void insert_rows(std::size_t pos, int count);
  void insert_cols(std::size_t pos, int count);
  void insert(std::size_t pos, int count, bool rows);

  // Remove `count` rows or columns from position `pos` on, or as many as there are; count < 1 does
  // nothing.  Asserted: pos < number of rows (columns); otherwise nothing changes.
  void remove_rows(std::size_t pos, int count);
  void remove_cols(std::size_t pos, int count);
  void remove(std::size_t pos, int count, bool rows);

  // Fold the rows (columns) from n on cyclically onto the first n, in ascending order, and drop them:
  // row t becomes A(t) + A(t + n) + A(t + 2n) + ...  Asserted: n >= 1 where there is something to fold;
  // otherwise nothing changes.
  void coilup_rows(std::size_t n);
  void coilup_cols(std::size_t n);
  void coilup(std::size_t n, bool rows);

  // Exchange two rows (columns).  Equal indices, or one out of range, do nothing and assert nothing.
  void swap_rows(std::size_t i, std::size_t j);
  void swap_cols(std::size_t i, std::size_t j);
  void swap(std::size_t i, std::size_t j, bool rows);

  void transpose();       // exchanges rows and columns; in place if square
  TnLaDblMat tr() const;  // a transposed copy

  // Sets the elements (i, i + offset); the others keep their values.
  void set_diagonal(double value, int offset);

  // A copy of one row or column.  Asserted: it exists and is not empty; otherwise an empty vector.
  TnLaDblVec row_vec(std::size_t i) const;
  TnLaDblVec col_vec(std::size_t j) const;

  // --- Arithmetic -------------------------------------------------------------------------------------

  // Element-wise.  Asserted: both non-empty and of one shape; otherwise a 0 x 0 matrix.
  TnLaDblMat operator+(const TnLaDblMat& B) const;
  TnLaDblMat operator-(const TnLaDblMat& B) const;
  // Asserted: not empty; otherwise a 0 x 1 matrix.
  TnLaDblMat operator*(double s) const;
  TnLaDblMat operator-() const;  // times -1
  // A B.  Asserted: neither is empty and the inner dimensions agree; otherwise a 0 x 0 matrix.
  TnLaDblMat operator*(const TnLaDblMat& B) const;
  // A x.  Asserted likewise; otherwise an empty vector.
  TnLaDblVec operator*(const TnLaDblVec& x) const;

  // In place.  Asserted as above; otherwise nothing changes.  The operand may be the matrix itself, or an
  // element of it.
  void operator+=(const TnLaDblMat& B);
  void operator-=(const TnLaDblMat& B);
  void operator*=(const double& s);
  void operator*=(const TnLaDblMat& B);  // A = A B

  // The sum of the squares of all elements in storage order, by tnla_sq_norm (0.0 below 1e-40).
  // Asserted: not empty; otherwise 0.0.
  double sq_norm() const;
  // The largest magnitude, where the first element counts with its sign: (-5) gives -5, and (-5, -1)
  // gives 1.  -999999999.0 for an empty matrix.
  double mx_norm() const;

  // --- Solving (see tnla_linearsolve_i.h) -------------------------------------------------------------

  // The determinant, from the QR decomposition.  0.0 if the matrix is not square, is 0 x 0, or fails the
  // full-rank test of TnLaTQRDecompo, which diag(1e11, 1) does; the element itself if it is 1 x 1.
  double det() const;
  // Replaces the matrix by its inverse, or by its pseudo-inverse of tolerance 1e-20 where tnla_inverse
  // says false.  That is not reported.  An empty matrix that is not 0 x 0 asserts as tnla_linearsolve and
  // tnla_inverse do, and gets an empty shape.
  void invert();
  // A copy, inverted.
  TnLaDblMat inv() const;

  // --- Output -----------------------------------------------------------------------------------------

  // Prints the matrix by tn_arraydebug in columns of digits + 10; `flag` names the rows.  An empty matrix
  // is one line that gives its shape.  Asserted where it is not empty: digits != -10; otherwise nothing is
  // written.
  void debug(TnJournal& journal, int digits, bool flag, int indent) const;

 private:
  double* data() { return array_.size() == 0 ? nullptr : array_.data(); }
  const double* data() const { return array_.size() == 0 ? nullptr : array_.data(); }

  std::size_t n_rows_ = 0;
  std::size_t n_cols_ = 0;
  TnArray<double> array_;

  friend struct TnLaAccess;
  friend struct TnLaLayout;
};

// A dense vector of any dimension.
class TNLA_API TnLaDblVec {
 public:
  // --- Construction -----------------------------------------------------------------------------------

  // Dimension 0; does not allocate.
  TnLaDblVec();
  TnLaDblVec(const TnLaDblVec& other);
  // The elements of `a`.
  TnLaDblVec(const TnArray<double>& a);
  // n zeros, with `value` at k if there is such an element: a scaled unit vector.  Asserted: n >= 0;
  // otherwise dimension 0.
  TnLaDblVec(int n, int k, double value);
  // n elements from p.  Asserted: n >= 0; otherwise dimension 0.
  TnLaDblVec(const double* p, int n);
  template <class P, std::enable_if_t<std::is_arithmetic_v<P>, int> = 0>
  TnLaDblVec(P, int) = delete;  // the first argument is a pointer to double; for none write nullptr
  ~TnLaDblVec();

  // Keeps its block if that suffices.
  TnLaDblVec& operator=(const TnLaDblVec& other);

  // --- Elements ---------------------------------------------------------------------------------------

  // Element i.  Asserted as an array index (a negative one fails too); the access takes place all the
  // same.
  double& operator()(int i) { return array_[static_cast<std::size_t>(i)]; }
  const double& operator()(int i) const { return array_[static_cast<std::size_t>(i)]; }

  // The number of elements; whether there are none; the elements as an array.
  int dim() const { return static_cast<int>(array_.size()); }
  bool empty() const { return dim() == 0; }
  const TnArray<double>& array() const { return array_; }

  // Set all elements; the dimension stays.  The array form as for matrices.
  void initialize(double v);  // for a literal 0 write 0.0
  void initialize(const double* p);
  void initialize(const TnArray<double>& a);

  // A new dimension.  With `keep` the first elements stay and new ones are zero; without, all are zero.
  // A negative n is std::bad_alloc.
  void resize(int n, bool keep);

  // Exchanges the elements one by one; each vector keeps its block.  Asserted: equal dimensions.
  // Otherwise the elements of this vector are exchanged with those that `other` has, and become 0.0 where
  // it has none.
  void swap(TnLaDblVec& other);

  // --- Arithmetic -------------------------------------------------------------------------------------

  // Element-wise.  Asserted: not empty, and of one dimension; otherwise an empty vector.
  TnLaDblVec operator+(const TnLaDblVec& y) const;
  TnLaDblVec operator-(const TnLaDblVec& y) const;
  TnLaDblVec operator*(const double& s) const;
  TnLaDblVec operator-() const;  // times -1
  // The scalar product, as tnla_scalprod without flags.  Asserted likewise; otherwise 0.0.
  double operator%(const TnLaDblVec& y) const;

  // In place.  Asserted likewise; otherwise nothing changes.  The operand may be the vector itself, or an
  // element of it.
  void operator+=(const TnLaDblVec& y);
  void operator-=(const TnLaDblVec& y);
  void operator*=(const double& s);
  // x = A x: the matrix multiplies from the left.  Asserted: A is not empty and has as many columns as x
  // has elements; otherwise x stays.
  void operator*=(const TnLaDblMat& A);

  // x . x, as tnla_scalprod without flags.  Asserted: not empty; otherwise 0.0.
  double sq_norm() const;
  // As for matrices.
  double mx_norm() const;

  // Times 1/|x| (a multiplication by the reciprocal, so that (3, 4) gives 0.6000000000000001 first; the
  // raw tnla_normalize divides and gives 0.6).  The zero vector if x . x is numerically zero.  Asserted:
  // not empty.
  void normalize();
  // A normalised copy.
  TnLaDblVec dir() const;
  // A unit vector orthogonal to x, by tnla_ortho_vec; the zero vector if the dimension is 1.  Asserted:
  // not empty; otherwise an empty vector.
  TnLaDblVec ort() const;

  // --- Output -----------------------------------------------------------------------------------------

  // Prints the vector by tn_arraydebug in columns of digits + 10.  An empty vector is one line that says
  // so.  Asserted where it is not empty: digits != -10; otherwise nothing is written.
  void debug(TnJournal& journal, int digits, int indent) const;

 private:
  double* data() { return array_.size() == 0 ? nullptr : array_.data(); }
  const double* data() const { return array_.size() == 0 ? nullptr : array_.data(); }

  TnArray<double> array_;

  friend struct TnLaAccess;
  friend struct TnLaLayout;
};

// Whether M is one of the 13 matrix types for which the decompositions and solvers exist.
template <class M>
inline constexpr bool TnLaTIsMatrix = false;
template <>
inline constexpr bool TnLaTIsMatrix<TnLaDblMat> = true;
template <std::size_t N>
inline constexpr bool TnLaTIsMatrix<TnLaTSmallMat<N, N, double>> = N >= 1 && N <= 12;

// s A and s x, as A * s and x * s.
TNLA_API TnLaDblMat operator*(double s, const TnLaDblMat& A);
TNLA_API TnLaDblVec operator*(const double& s, const TnLaDblVec& x);

// C = A B, written straight into C: C must be neither A nor B.  Asserted: no empty operand, and the inner
// dimensions agree; otherwise C becomes 0 x 1.
TNLA_API void tnla_mat_mat_prod(const TnLaDblMat& A, const TnLaDblMat& B, TnLaDblMat& C);

// The same on raw column-major blocks: A is m x k, B is k x n, C is m x n, each without a gap between its
// columns.  C must overlap neither A nor B.  Nothing is checked; 2 m k n flops, no allocation,
// and at most 72 KiB of stack.
TNLA_API void tnla_mat_mat_prod(std::size_t m, std::size_t k, std::size_t n, const double* A,
                                const double* B, double* C);

// The same with any steps: A(i, l) is A[i * a_row_step + l * a_col_step], and so on.  Steps (1, m) read a
// column-major A, (k, 1) a row-major one; exchange the two steps of an operand to use its transpose.
// m = 0 leaves C untouched; k = 0 sets it to zero.
TNLA_API void tnla_mat_mat_prod(std::size_t m, std::size_t k, std::size_t n, const double* A,
                                const double* B, double* C, int a_row_step, int a_col_step, int b_row_step,
                                int b_col_step, int c_row_step, int c_col_step);

// y = A x, written straight into y: y must not be x.  Asserted: A is not empty and has as many columns as
// x has elements; otherwise y becomes empty.
TNLA_API void tnla_mat_vec_prod(const TnLaDblMat& A, const TnLaDblVec& x, TnLaDblVec& y);

// The raw tnla_scalprod and tnla_lincomb on vectors.  Asserted: not empty, and of one dimension;
// otherwise 0.0, and an empty z.  z may be x or y.
TNLA_API double tnla_scalprod(const TnLaDblVec& x, const TnLaDblVec& y, bool norm_x = false,
                              bool norm_y = false);
TNLA_API void tnla_lincomb(const TnLaDblVec& x, double a, const TnLaDblVec& y, double b, TnLaDblVec& z);
