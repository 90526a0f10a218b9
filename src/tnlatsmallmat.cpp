#include "kernels/reductions.h"
#include "tnarraydebug.h"
#include "tnla_debug.h"
#include "tnla_small_loops.h"
#include "tnla_util_i.h"
#include "tnlatsmallmat_i.h"

namespace {
constexpr char kFile[] = "src/tnlatsmallmat.cpp";
}

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
  std::size_t i = offset < 0 ? static_cast<std::size_t>(-tnla_kernels::Index{offset}) : 0;
  std::size_t j = offset > 0 ? static_cast<std::size_t>(offset) : 0;
  for (; i < Rows && j < Cols; ++i, ++j) elements_[i + j * Rows] = value;
}

template <std::size_t Rows, std::size_t Cols, class T>
void TnLaTSmallMat<Rows, Cols, T>::swap_rows(std::size_t a, std::size_t b) {
  if (a == b || a >= Rows || b >= Rows) return;
  for (std::size_t j = 0; j < Cols; ++j) std::swap(elements_[a + j * Rows], elements_[b + j * Rows]);
}

template <std::size_t Rows, std::size_t Cols, class T>
void TnLaTSmallMat<Rows, Cols, T>::swap_cols(std::size_t a, std::size_t b) {
  if (a == b || a >= Cols || b >= Cols) return;
  std::swap_ranges(elements_ + a * Rows, elements_ + (a + 1) * Rows, elements_ + b * Rows);
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
  const TnLaDebugLayout layout = tnla_debug_layout(digits, indent);
  TN_ASSERT(kFile, layout.width != 0);
  if (layout.width == 0) return;
  tn_arraydebug(journal, flag, kPrinterReserved, static_cast<int>(Rows), array(), layout.per_line,
                layout.width, digits, indent);
}

template <std::size_t Rows, std::size_t Cols, class T>
TnArray<double> TnLaTSmallMat<Rows, Cols, T>::array() const {
  TnArray<double> copy;
  copy.set_size(size, false);
  std::copy_n(elements_, size, copy.data());
  return copy;
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
