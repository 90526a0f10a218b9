// SPDX-License-Identifier: MIT

#pragma once

#include <cstddef>

#include "tnarray_i.h"
#include "tnjournal.h"
#include "tnla_export.h"
#include "tnlatsmallvec_i.h"

// An N x N matrix of doubles inside the object, N = 1 to 12: the fixed-size counterpart of TnLaDblMat.
//
// Column-major: element (i, j) is stored at i + j * N.  Access, copies and sizes are inline; arithmetic
// is in the module.  Nothing allocates, except sq_norm and debug, and the array they build.  Objects are
// plain values.
//
//  (1) The dimension never changes: resize only checks, insert_rows and remove_cols do nothing at all.
//  (2) Two objects of one type always fit, so the binary operators assert nothing.
//  (3) A failed assertion names src/tnlatsmallmat.cpp, and the operation goes on as stated.
template <std::size_t Rows, std::size_t Cols, class T>
class TNLA_API TnLaTSmallMat {
  static_assert(Rows == Cols, "a small matrix is square: use TnLaDblMat for other shapes");
  static_assert(Rows >= 1 && Rows <= 12, "a small matrix has 1 to 12 rows: use TnLaDblMat for other sizes");
  static_assert(std::is_same_v<T, double>,
                "a small matrix holds double: write TnLaTSmallMat<N, N, double>");

  using Vec = TnLaTSmallVec<static_cast<int>(Rows), T>;

 public:
  // The dimension of the vectors that the matrix takes and of those that it gives; the number of
  // elements.
  static constexpr std::size_t DimIn = Cols;
  static constexpr std::size_t DimOut = Rows;
  static constexpr std::size_t size = Rows * Cols;

  // All elements are zero.
  TnLaTSmallMat() : elements_{} {}
  TnLaTSmallMat(const TnLaTSmallMat& other) = default;
  // value * I (for -0.0 the zero matrix, as in the dense type).  Asserted, in one check: rows == N and cols
  // == rows.
  TnLaTSmallMat(std::size_t rows, std::size_t cols, double value);

  TnLaTSmallMat& operator=(const TnLaTSmallMat& other) = default;
  // Copies v into column 0; the other columns keep their values.
  TnLaTSmallMat& operator=(const Vec& v) {
    for (std::size_t i = 0; i < Rows; ++i) elements_[i] = v.data()[i];
    return *this;
  }

  // The shape, as a dense matrix tells it; never empty.
  std::size_t n_rows() const { return Rows; }
  std::size_t n_cols() const { return Cols; }
  bool empty() const { return false; }

  // Element (i, j).  Asserted: i < N, then j < N; the access takes place all the same.
  double& operator()(std::size_t i, std::size_t j) {
    TN_ASSERT("src/tnlatsmallmat.cpp", i < Rows);
    TN_ASSERT("src/tnlatsmallmat.cpp", j < Cols);
    return elements_[i + j * Rows];
  }
  const double& operator()(std::size_t i, std::size_t j) const {
    TN_ASSERT("src/tnlatsmallmat.cpp", i < Rows);
    TN_ASSERT("src/tnlatsmallmat.cpp", j < Cols);
    return elements_[i + j * Rows];
  }

  // Element by element.
  TnLaTSmallMat operator*(double s) const;
  // A x, every sum with one accumulator that starts from +0.0 and takes its terms in ascending order.
  Vec operator*(const Vec& x) const;
  // Element by element.
  TnLaTSmallMat operator+(const TnLaTSmallMat& other) const;
  TnLaTSmallMat operator-(const TnLaTSmallMat& other) const;
  TnLaTSmallMat operator-() const;  // times -1
  // The same in place.
  void operator*=(double s);
  void operator+=(const TnLaTSmallMat& other);
  void operator-=(const TnLaTSmallMat& other);

  // Row i or column j; the zero vector after a failed assertion.  Asserted: the index is below N.
  Vec row_vec(std::size_t i) const;
  Vec col_vec(std::size_t j) const;

  // Sets the elements (i, i + offset); the others keep their values.
  void set_diagonal(double value, int offset);

  // Exchange two rows or columns.  Equal indices, or one out of range, do nothing and assert nothing.
  void swap_rows(std::size_t a, std::size_t b);
  void swap_cols(std::size_t a, std::size_t b);
  void swap(std::size_t a, std::size_t b, bool rows);

  // For the sake of the dense interface.  resize asserts rows == N, then cols == N.
  void resize(std::size_t rows, std::size_t cols, bool keep);
  void insert_rows(std::size_t pos, int count);
  void remove_cols(std::size_t pos, int count);

  // The sum of the squares of all elements in storage order; 0.0 if it is below 1e-40.
  double sq_norm() const;
  // The largest magnitude, where element (0, 0) counts with its sign.
  double mx_norm() const;

  // Prints the matrix by tn_arraydebug in columns of digits + 10; `flag` names the rows.  Asserted:
  // digits != -10; otherwise nothing is written.
  void debug(TnJournal& journal, int digits, bool flag, int indent) const;

 private:
  // For a result, all of whose elements are written next.
  enum class Unwritten { elements };
  TNLA_HIDDEN explicit TnLaTSmallMat(Unwritten) {}

  double* data() { return elements_; }
  const double* data() const { return elements_; }
  TnArray<double> array() const;

  double elements_[Rows * Cols];

  friend struct TnLaAccess;
  friend struct TnLaLayout;
};

// s A, as A * s.
template <std::size_t Rows, std::size_t Cols, class T>
TnLaTSmallMat<Rows, Cols, T> operator*(const double& s, const TnLaTSmallMat<Rows, Cols, T>& m) {
  return m * s;
}

#ifndef _WIN32  // a DLL shows no inline function of a template: there a client makes its own
extern template class TnLaTSmallMat<1, 1, double>;
extern template class TnLaTSmallMat<2, 2, double>;
extern template class TnLaTSmallMat<3, 3, double>;
extern template class TnLaTSmallMat<4, 4, double>;
extern template class TnLaTSmallMat<5, 5, double>;
extern template class TnLaTSmallMat<6, 6, double>;
extern template class TnLaTSmallMat<7, 7, double>;
extern template class TnLaTSmallMat<8, 8, double>;
extern template class TnLaTSmallMat<9, 9, double>;
extern template class TnLaTSmallMat<10, 10, double>;
extern template class TnLaTSmallMat<11, 11, double>;
extern template class TnLaTSmallMat<12, 12, double>;
#endif
