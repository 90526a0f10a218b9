// SPDX-License-Identifier: MIT

#include "kernels/reductions.h"
#include "tnla_debug.h"
#include "tnla_small_loops.h"
#include "tnla_util_i.h"
#include "tnlatsmallmat_i.h"

namespace {

constexpr char kFile[] = "src/tnlatsmallmat.cpp";

// What needs no speed is there once, for all sizes.

[[gnu::noinline]] void swap_rows_of(double* elements, std::size_t n, std::size_t a, std::size_t b) {
  if (a == b || a >= n || b >= n) return;
  for (std::size_t j = 0; j < n; ++j) std::swap(elements[a + j * n], elements[b + j * n]);
}

[[gnu::noinline]] void swap_cols_of(double* elements, std::size_t n, std::size_t a, std::size_t b) {
  if (a == b || a >= n || b >= n) return;
  std::swap_ranges(elements + a * n, elements + (a + 1) * n, elements + b * n);
}

[[gnu::noinline]] void set_diagonal_of(double* elements, std::size_t n, double value, int offset) {
  std::size_t i = offset < 0 ? static_cast<std::size_t>(-tnla_kernels::Index{offset}) : 0;
  std::size_t j = offset > 0 ? static_cast<std::size_t>(offset) : 0;
  for (; i < n && j < n; ++i, ++j) elements[i + j * n] = value;
}

}  // namespace

template <std::size_t Rows, std::size_t Cols, class T>
TnLaTSmallMat<Rows, Cols, T>::TnLaTSmallMat(std::size_t rows, std::size_t cols, double value)
    : elements_{} {
  TN_ASSERT(kFile, rows == Rows && cols == rows);
  if (value != 0.0) set_diagonal(value, 0);
}

template <std::size_t Rows, std::size_t Cols, class T>
TnLaTSmallMat<Rows, Cols, T> TnLaTSmallMat<Rows, Cols, T>::operator*(double s) const {
  TnLaTSmallMat result(Unwritten::elements);
  tnla_small::scale<size>(elements_, s, result.elements_);
  return result;
}

template <std::size_t Rows, std::size_t Cols, class T>
typename TnLaTSmallMat<Rows, Cols, T>::Vec TnLaTSmallMat<Rows, Cols, T>::operator*(const Vec& x) const {
  Vec y;
  tnla_small::multiply<Rows>(elements_, x.data(), y.data());
  return y;
}

template <std::size_t Rows, std::size_t Cols, class T>
TnLaTSmallMat<Rows, Cols, T> TnLaTSmallMat<Rows, Cols, T>::operator+(const TnLaTSmallMat& other) const {
  TnLaTSmallMat result(Unwritten::elements);
  tnla_small::add<size>(elements_, other.elements_, result.elements_);
  return result;
}

template <std::size_t Rows, std::size_t Cols, class T>
TnLaTSmallMat<Rows, Cols, T> TnLaTSmallMat<Rows, Cols, T>::operator-(const TnLaTSmallMat& other) const {
  TnLaTSmallMat result(Unwritten::elements);
  tnla_small::subtract<size>(elements_, other.elements_, result.elements_);
  return result;
}

template <std::size_t Rows, std::size_t Cols, class T>
TnLaTSmallMat<Rows, Cols, T> TnLaTSmallMat<Rows, Cols, T>::operator-() const {
  return *this * -1.0;
}

template <std::size_t Rows, std::size_t Cols, class T>
void TnLaTSmallMat<Rows, Cols, T>::operator*=(double s) {
  tnla_small::scale<size>(elements_, s, elements_);
}

template <std::size_t Rows, std::size_t Cols, class T>
void TnLaTSmallMat<Rows, Cols, T>::operator+=(const TnLaTSmallMat& other) {
  tnla_small::add<size>(elements_, other.elements_, elements_);
}

template <std::size_t Rows, std::size_t Cols, class T>
void TnLaTSmallMat<Rows, Cols, T>::operator-=(const TnLaTSmallMat& other) {
  tnla_small::subtract<size>(elements_, other.elements_, elements_);
}

template <std::size_t Rows, std::size_t Cols, class T>
typename TnLaTSmallMat<Rows, Cols, T>::Vec TnLaTSmallMat<Rows, Cols, T>::row_vec(std::size_t i) const {
  TN_ASSERT(kFile, i < Rows);
  Vec row;
  if (i >= Rows) return row;
  for (std::size_t j = 0; j < Cols; ++j) row.data()[j] = elements_[i + j * Rows];
  return row;
}

template <std::size_t Rows, std::size_t Cols, class T>
typename TnLaTSmallMat<Rows, Cols, T>::Vec TnLaTSmallMat<Rows, Cols, T>::col_vec(std::size_t j) const {
  TN_ASSERT(kFile, j < Cols);
  Vec column;
  if (j < Cols) column.initialize(elements_ + j * Rows);
  return column;
}

template <std::size_t Rows, std::size_t Cols, class T>
void TnLaTSmallMat<Rows, Cols, T>::set_diagonal(double value, int offset) {
  set_diagonal_of(elements_, Rows, value, offset);
}

template <std::size_t Rows, std::size_t Cols, class T>
void TnLaTSmallMat<Rows, Cols, T>::swap_rows(std::size_t a, std::size_t b) {
  swap_rows_of(elements_, Rows, a, b);
}

template <std::size_t Rows, std::size_t Cols, class T>
void TnLaTSmallMat<Rows, Cols, T>::swap_cols(std::size_t a, std::size_t b) {
  swap_cols_of(elements_, Rows, a, b);
}

template <std::size_t Rows, std::size_t Cols, class T>
void TnLaTSmallMat<Rows, Cols, T>::swap(std::size_t a, std::size_t b, bool rows) {
  if (rows) {
    swap_rows(a, b);
  } else {
    swap_cols(a, b);
  }
}

template <std::size_t Rows, std::size_t Cols, class T>
void TnLaTSmallMat<Rows, Cols, T>::resize(std::size_t rows, std::size_t cols, bool /*keep*/) {
  TN_ASSERT(kFile, rows == Rows);
  TN_ASSERT(kFile, cols == Cols);
}

template <std::size_t Rows, std::size_t Cols, class T>
void TnLaTSmallMat<Rows, Cols, T>::insert_rows(std::size_t /*pos*/, int /*count*/) {}

template <std::size_t Rows, std::size_t Cols, class T>
void TnLaTSmallMat<Rows, Cols, T>::remove_cols(std::size_t /*pos*/, int /*count*/) {}

template <std::size_t Rows, std::size_t Cols, class T>
double TnLaTSmallMat<Rows, Cols, T>::sq_norm() const {
  return tnla_sq_norm(static_cast<int>(size), array().data(), nullptr);
}

template <std::size_t Rows, std::size_t Cols, class T>
double TnLaTSmallMat<Rows, Cols, T>::mx_norm() const {
  return tnla_kernels::largest_magnitude(size, elements_);
}

template <std::size_t Rows, std::size_t Cols, class T>
void TnLaTSmallMat<Rows, Cols, T>::debug(TnJournal& journal, int digits, bool flag, int indent) const {
  tnla_debug_small_matrix(journal, kFile, elements_, static_cast<int>(Rows), digits, flag, indent);
}

template <std::size_t Rows, std::size_t Cols, class T>
TnArray<double> TnLaTSmallMat<Rows, Cols, T>::array() const {
  return tnla_debug_array(elements_, size);
}

template class TnLaTSmallMat<1, 1, double>;
template class TnLaTSmallMat<2, 2, double>;
template class TnLaTSmallMat<3, 3, double>;
template class TnLaTSmallMat<4, 4, double>;
template class TnLaTSmallMat<5, 5, double>;
template class TnLaTSmallMat<6, 6, double>;
template class TnLaTSmallMat<7, 7, double>;
template class TnLaTSmallMat<8, 8, double>;
template class TnLaTSmallMat<9, 9, double>;
template class TnLaTSmallMat<10, 10, double>;
template class TnLaTSmallMat<11, 11, double>;
template class TnLaTSmallMat<12, 12, double>;
