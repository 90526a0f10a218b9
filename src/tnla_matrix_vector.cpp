// SPDX-License-Identifier: MIT

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <new>
#include <utility>

#include "kernels/kernel_set.h"
#include "kernels/reductions.h"
#include "tnarraydebug.h"
#include "tnla_access.h"
#include "tnla_debug.h"
#include "tnla_matrix_vector_i.h"
#include "tnla_util.h"

using tnla_kernels::Index;

namespace {

constexpr char kFile[] = "src/tnla_matrix_vector.cpp";

// What mx_norm answers where there is no element.
constexpr double kNoNorm = -999999999.0;

Index length(const TnArray<double>& a) { return static_cast<Index>(a.size()); }

// a + b; std::bad_alloc if that overflows.
std::size_t grown(std::size_t a, int b) {
  const std::size_t count = static_cast<std::size_t>(b);
  if (a > std::numeric_limits<std::size_t>::max() - count) throw std::bad_alloc();
  return a + count;
}

// rows * cols; std::bad_alloc if that overflows.
std::size_t element_count(std::size_t rows, std::size_t cols) {
  std::size_t count = 0;
  if (__builtin_mul_overflow(rows, cols, &count)) throw std::bad_alloc();
  return count;
}

void copy_values(const double* from, std::size_t n, double* to) {
  if (n > 0) std::memmove(to, from, n * sizeof(double));
}

// The first n elements of `a` into `to`, which may be the same place.  Each one that `a` does not hold is
// an index out of range of its own and becomes 0.0.
void copy_front(const TnArray<double>& a, std::size_t n, double* to) {
  const std::size_t held = std::min(n, a.size());
  copy_values(a.data(), held, to);
  for (std::size_t i = held; i < n; ++i) {
    TN_ASSERT("interfaces/tnarray_i.h", false);
    to[i] = 0.0;
  }
}

double mx_norm_of(const TnArray<double>& a) {
  return a.size() == 0 ? kNoNorm : tnla_kernels::largest_magnitude(length(a), a.data());
}

bool is_filled(const TnLaDblMat& A) { return A.n_rows() != 0 && A.n_cols() != 0; }

bool same_filled_shape(const TnLaDblMat& A, const TnLaDblMat& B) {
  return is_filled(A) && is_filled(B) && A.n_rows() == B.n_rows() && A.n_cols() == B.n_cols();
}

bool is_filled(const TnLaDblVec& x) { return x.dim() >= 1; }

bool same_filled_dim(const TnLaDblVec& x, const TnLaDblVec& y) {
  return is_filled(x) && x.array().size() == y.array().size();
}

bool can_multiply(const TnLaDblMat& A, const TnLaDblMat& B) {
  return is_filled(A) && B.n_cols() != 0 && A.n_cols() == B.n_rows();
}

bool can_multiply(const TnLaDblMat& A, const TnLaDblVec& x) {
  return is_filled(A) && A.n_cols() == x.array().size();
}

using ElementwiseKernel = void (*)(Index n, const double* x, const double* y, double* out);

// Objects whose elements are to be written.
TnLaDblVec unwritten(std::size_t n) {
  TnLaDblVec result;
  TnLaAccess::resize_to_overwrite(result, n);
  return result;
}

TnLaDblMat unwritten(std::size_t rows, std::size_t cols) {
  TnLaDblMat result;
  TnLaAccess::resize_to_overwrite(result, rows, cols, element_count(rows, cols));
  return result;
}

TnLaDblMat combined(const TnLaDblMat& A, const TnLaDblMat& B, ElementwiseKernel kernel) {
  TnLaDblMat result = unwritten(A.n_rows(), A.n_cols());
  kernel(length(A.array()), A.array().data(), B.array().data(), TnLaAccess::elements(result));
  return result;
}

TnLaDblVec combined(const TnLaDblVec& x, const TnLaDblVec& y, ElementwiseKernel kernel) {
  TnLaDblVec result = unwritten(x.array().size());
  kernel(length(x.array()), x.array().data(), y.array().data(), TnLaAccess::elements(result));
  return result;
}

}  // namespace

// --- Matrix: construction and elements ------------------------------------------------------------------

TnLaDblMat::TnLaDblMat() = default;

TnLaDblMat::TnLaDblMat(const TnLaDblMat& other) = default;

TnLaDblMat::TnLaDblMat(std::size_t rows, std::size_t cols, double value) : n_rows_(rows), n_cols_(cols) {
  array_.set_size(element_count(rows, cols), false);
  if (value != 0.0) set_diagonal(value, 0);
}

TnLaDblMat::TnLaDblMat(const double* p, std::size_t rows, std::size_t cols) : n_rows_(rows), n_cols_(cols) {
  TnLaAccess::resize_to_overwrite(array_, element_count(rows, cols));
  initialize(p);
}

TnLaDblMat::TnLaDblMat(const TnArray<double>& a, std::size_t rows)
    : n_rows_(rows), n_cols_(rows == 0 ? 0 : a.size() / rows), array_(a) {
  array_.set_size(n_rows_ * n_cols_, true);
}

TnLaDblMat::TnLaDblMat(const TnLaDblVec& v, bool as_row)
    : n_rows_(as_row ? 1 : v.array().size()), n_cols_(as_row ? v.array().size() : 1), array_(v.array()) {}

TnLaDblMat::~TnLaDblMat() = default;

TnLaDblMat& TnLaDblMat::operator=(const TnLaDblMat& other) {
  array_ = other.array_;  // first: it may throw, and the shape has to go with it
  n_rows_ = other.n_rows_;
  n_cols_ = other.n_cols_;
  return *this;
}

void TnLaDblMat::initialize(double v) { std::fill_n(data(), array_.size(), v); }

void TnLaDblMat::initialize(const double* p) { copy_values(p, array_.size(), data()); }

void TnLaDblMat::initialize(const TnArray<double>& a) {
  TN_ASSERT(kFile, a.size() >= n_rows_ * n_cols_);
  copy_front(a, array_.size(), data());
}

// --- Matrix: structure ----------------------------------------------------------------------------------

void TnLaDblMat::resize(std::size_t rows, std::size_t cols, bool keep) {
  const std::size_t count = element_count(rows, cols);
  if (rows == n_rows_) {  // the leading dimension stays, and so does every kept element's place
    array_.set_size(count, keep);
    n_cols_ = cols;
    if (!keep) initialize(0.0);
    return;
  }
  TnLaDblMat old;
  if (keep && count != 0) old = *this;
  array_.set_size(count, false);
  n_rows_ = rows;
  n_cols_ = cols;
  initialize(0.0);
  const std::size_t kept_rows = std::min(rows, old.n_rows_);
  const std::size_t kept_cols = std::min(cols, old.n_cols_);
  for (std::size_t j = 0; j < kept_cols; ++j) {
    copy_values(old.data() + j * old.n_rows_, kept_rows, data() + j * n_rows_);
  }
}

void TnLaDblMat::insert_rows(std::size_t pos, int count) {
  if (count < 1) return;
  TN_ASSERT(kFile, pos <= n_rows_);
  if (pos > n_rows_) return;
  const TnLaDblMat old(*this);
  resize(grown(n_rows_, count), n_cols_, false);
  const std::size_t below = pos + static_cast<std::size_t>(count);
  for (std::size_t j = 0; j < n_cols_; ++j) {
    const double* const from = old.data() + j * old.n_rows_;
    double* const to = data() + j * n_rows_;
    copy_values(from, pos, to);
    copy_values(from + pos, old.n_rows_ - pos, to + below);
  }
}

void TnLaDblMat::insert_cols(std::size_t pos, int count) {
  if (count < 1) return;
  TN_ASSERT(kFile, pos <= n_cols_);
  if (pos > n_cols_) return;
  const std::size_t new_cols = grown(n_cols_, count);
  const std::size_t gap = static_cast<std::size_t>(count) * n_rows_;
  const std::size_t moved = array_.size() - pos * n_rows_;
  array_.set_size(element_count(n_rows_, new_cols), true);
  n_cols_ = new_cols;
  double* const from = data() + pos * n_rows_;
  copy_values(from, moved, from + gap);
  std::fill_n(from, gap, 0.0);
}

void TnLaDblMat::insert(std::size_t pos, int count, bool rows) {
  if (rows) {
    insert_rows(pos, count);
  } else {
    insert_cols(pos, count);
  }
}

void TnLaDblMat::remove_rows(std::size_t pos, int count) {
  if (count < 1) return;
  TN_ASSERT(kFile, pos < n_rows_);
  if (pos >= n_rows_) return;
  const std::size_t removed = std::min(n_rows_ - pos, static_cast<std::size_t>(count));
  const TnLaDblMat old(*this);
  resize(n_rows_ - removed, n_cols_, false);
  for (std::size_t j = 0; j < n_cols_; ++j) {
    const double* const from = old.data() + j * old.n_rows_;
    double* const to = data() + j * n_rows_;
    copy_values(from, pos, to);
    copy_values(from + pos + removed, n_rows_ - pos, to + pos);
  }
}

void TnLaDblMat::remove_cols(std::size_t pos, int count) {
  if (count < 1) return;
  TN_ASSERT(kFile, pos < n_cols_);
  if (pos >= n_cols_) return;
  const std::size_t removed = std::min(n_cols_ - pos, static_cast<std::size_t>(count));
  const std::size_t behind = pos + removed;
  copy_values(data() + behind * n_rows_, (n_cols_ - behind) * n_rows_, data() + pos * n_rows_);
  n_cols_ -= removed;
  array_.set_size(n_rows_ * n_cols_, true);
}

void TnLaDblMat::remove(std::size_t pos, int count, bool rows) {
  if (rows) {
    remove_rows(pos, count);
  } else {
    remove_cols(pos, count);
  }
}

void TnLaDblMat::coilup_rows(std::size_t n) {
  if (n >= n_rows_) return;
  const bool can_fold = n > 0 || n_cols_ == 0;
  TN_ASSERT(kFile, can_fold);
  if (!can_fold) return;
  TnLaDblMat folded(n, n_cols_, 0.0);
  for (std::size_t j = 0; j < n_cols_; ++j) {
    const double* const from = data() + j * n_rows_;
    double* const to = folded.data() + j * n;
    copy_values(from, n, to);
    for (std::size_t r = n; r < n_rows_; ++r) to[r % n] += from[r];
  }
  *this = folded;
}

void TnLaDblMat::coilup_cols(std::size_t n) {
  if (n >= n_cols_) return;
  const bool can_fold = n > 0 || n_rows_ == 0;
  TN_ASSERT(kFile, can_fold);
  if (!can_fold) return;
  const Index rows = static_cast<Index>(n_rows_);
  for (std::size_t c = n; n_rows_ > 0 && c < n_cols_; ++c) {
    double* const target = data() + (c % n) * n_rows_;
    tnla_kernels::best.elementwise.add(rows, target, data() + c * n_rows_, target);
  }
  resize(n_rows_, n, true);
}

void TnLaDblMat::coilup(std::size_t n, bool rows) {
  if (rows) {
    coilup_rows(n);
  } else {
    coilup_cols(n);
  }
}

void TnLaDblMat::swap_rows(std::size_t i, std::size_t j) {
  if (i == j || i >= n_rows_ || j >= n_rows_) return;
  for (std::size_t c = 0; c < n_cols_; ++c) {
    double* const column = data() + c * n_rows_;
    std::swap(column[i], column[j]);
  }
}

void TnLaDblMat::swap_cols(std::size_t i, std::size_t j) {
  if (i == j || i >= n_cols_ || j >= n_cols_) return;
  double* const column = data() + i * n_rows_;
  std::swap_ranges(column, column + n_rows_, data() + j * n_rows_);
}

void TnLaDblMat::swap(std::size_t i, std::size_t j, bool rows) {
  if (rows) {
    swap_rows(i, j);
  } else {
    swap_cols(i, j);
  }
}

void TnLaDblMat::transpose() {
  if (n_rows_ != n_cols_) {
    *this = tr();
    return;
  }
  for (std::size_t j = 0; j < n_cols_; ++j) {
    for (std::size_t i = 0; i < j; ++i) std::swap(data()[j * n_rows_ + i], data()[i * n_rows_ + j]);
  }
}

TnLaDblMat TnLaDblMat::tr() const {
  TnLaDblMat result = unwritten(n_cols_, n_rows_);
  const double* const from = data();
  double* const to = result.data();
  for (std::size_t j = 0; j < n_cols_; ++j) {
    for (std::size_t i = 0; i < n_rows_; ++i) to[i * n_cols_ + j] = from[j * n_rows_ + i];
  }
  return result;
}

void TnLaDblMat::set_diagonal(double value, int offset) {
  std::size_t i = offset < 0 ? static_cast<std::size_t>(-Index{offset}) : 0;
  std::size_t j = offset > 0 ? static_cast<std::size_t>(offset) : 0;
  for (; i < n_rows_ && j < n_cols_; ++i, ++j) data()[j * n_rows_ + i] = value;
}

TnLaDblVec TnLaDblMat::row_vec(std::size_t i) const {
  const bool exists = i < n_rows_ && n_cols_ != 0;
  TN_ASSERT(kFile, exists);
  if (!exists) return {};
  TnLaDblVec row = unwritten(n_cols_);
  double* const to = TnLaAccess::elements(row);
  for (std::size_t j = 0; j < n_cols_; ++j) to[j] = data()[j * n_rows_ + i];
  return row;
}

TnLaDblVec TnLaDblMat::col_vec(std::size_t j) const {
  const bool exists = j < n_cols_ && n_rows_ != 0;
  TN_ASSERT(kFile, exists);
  if (!exists) return {};
  TnLaDblVec column = unwritten(n_rows_);
  copy_values(data() + j * n_rows_, n_rows_, TnLaAccess::elements(column));
  return column;
}

// --- Matrix: arithmetic ---------------------------------------------------------------------------------

TnLaDblMat TnLaDblMat::operator+(const TnLaDblMat& B) const {
  const bool fit = same_filled_shape(*this, B);
  TN_ASSERT(kFile, fit);
  return fit ? combined(*this, B, tnla_kernels::best.elementwise.add) : TnLaDblMat();
}

TnLaDblMat TnLaDblMat::operator-(const TnLaDblMat& B) const {
  const bool fit = same_filled_shape(*this, B);
  TN_ASSERT(kFile, fit);
  return fit ? combined(*this, B, tnla_kernels::best.elementwise.subtract) : TnLaDblMat();
}

TnLaDblMat TnLaDblMat::operator*(double s) const {
  const bool filled = is_filled(*this);
  TN_ASSERT(kFile, filled);
  if (!filled) return {0, 1, 0.0};
  TnLaDblMat result = unwritten(n_rows_, n_cols_);
  tnla_kernels::best.elementwise.scale(length(array_), data(), s, result.data());
  return result;
}

TnLaDblMat operator*(double s, const TnLaDblMat& A) { return A * s; }

TnLaDblMat TnLaDblMat::operator-() const { return *this * -1.0; }

TnLaDblMat TnLaDblMat::operator*(const TnLaDblMat& B) const {
  const bool fit = can_multiply(*this, B);
  TN_ASSERT(kFile, fit);
  TnLaDblMat result;
  if (fit) tnla_mat_mat_prod(*this, B, result);
  return result;
}

TnLaDblVec TnLaDblMat::operator*(const TnLaDblVec& x) const {
  TnLaDblVec result;
  tnla_mat_vec_prod(*this, x, result);
  return result;
}

void TnLaDblMat::operator+=(const TnLaDblMat& B) {
  const bool fit = same_filled_shape(*this, B);
  TN_ASSERT(kFile, fit);
  if (fit) tnla_kernels::best.elementwise.add(length(array_), data(), B.data(), data());
}

void TnLaDblMat::operator-=(const TnLaDblMat& B) {
  const bool fit = same_filled_shape(*this, B);
  TN_ASSERT(kFile, fit);
  if (fit) tnla_kernels::best.elementwise.subtract(length(array_), data(), B.data(), data());
}

void TnLaDblMat::operator*=(const double& s) {
  const bool filled = is_filled(*this);
  TN_ASSERT(kFile, filled);
  if (!filled) return;
  const double factor = s;  // s may be an element that is about to change
  tnla_kernels::best.elementwise.scale(length(array_), data(), factor, data());
}

void TnLaDblMat::operator*=(const TnLaDblMat& B) {
  const bool fit = can_multiply(*this, B);
  TN_ASSERT(kFile, fit);
  if (!fit) return;
  TnLaDblMat result;
  tnla_mat_mat_prod(*this, B, result);
  *this = result;
}

double TnLaDblMat::sq_norm() const {
  TN_ASSERT(kFile, !empty());
  return tnla_sq_length(length(array_), data());
}

double TnLaDblMat::mx_norm() const { return mx_norm_of(array_); }

// --- Matrix: output -------------------------------------------------------------------------------------

void TnLaDblMat::debug(TnJournal& journal, int digits, bool flag, int indent) const {
  if (empty()) {
    journal << "\nempty TnLaDblMat with " << n_rows_ << " rows and " << n_cols_ << " columns!" << tnEndExpr;
    return;
  }
  const TnLaDebugLayout layout = tnla_debug_layout(digits, indent);
  TN_ASSERT(kFile, layout.width != 0);
  if (layout.width == 0) return;
  tn_arraydebug(journal, flag, kPrinterReserved, static_cast<int>(n_rows_), array_, layout.per_line,
                layout.width, digits, indent);
}

// --- Vector: construction and elements ------------------------------------------------------------------

TnLaDblVec::TnLaDblVec() = default;

TnLaDblVec::TnLaDblVec(const TnLaDblVec& other) = default;

TnLaDblVec::TnLaDblVec(const TnArray<double>& a) : array_(a) {}

TnLaDblVec::TnLaDblVec(int n, int k, double value) {
  TN_ASSERT(kFile, n >= 0);
  if (n < 0) return;
  array_.set_size(static_cast<std::size_t>(n), false);
  if (k >= 0 && k < n) data()[k] = value;
}

TnLaDblVec::TnLaDblVec(const double* p, int n) {
  TN_ASSERT(kFile, n >= 0);
  if (n < 0) return;
  TnLaAccess::resize_to_overwrite(array_, static_cast<std::size_t>(n));
  initialize(p);
}

TnLaDblVec::~TnLaDblVec() = default;

TnLaDblVec& TnLaDblVec::operator=(const TnLaDblVec& other) = default;

void TnLaDblVec::initialize(double v) { std::fill_n(data(), array_.size(), v); }

void TnLaDblVec::initialize(const double* p) { copy_values(p, array_.size(), data()); }

void TnLaDblVec::initialize(const TnArray<double>& a) {
  TN_ASSERT(kFile, array_.size() <= a.size());
  copy_front(a, array_.size(), data());
}

void TnLaDblVec::resize(int n, bool keep) {
  array_.set_size(static_cast<std::size_t>(n), keep);
  if (!keep) initialize(0.0);
}

void TnLaDblVec::swap(TnLaDblVec& other) {
  TN_ASSERT(kFile, array_.size() == other.array_.size());
  const std::size_t shared = std::min(array_.size(), other.array_.size());
  for (std::size_t i = 0; i < shared; ++i) std::swap(data()[i], other.data()[i]);
  std::fill_n(data() + shared, array_.size() - shared, 0.0);
}

// --- Vector: arithmetic ---------------------------------------------------------------------------------

TnLaDblVec TnLaDblVec::operator+(const TnLaDblVec& y) const {
  const bool fit = same_filled_dim(*this, y);
  TN_ASSERT(kFile, fit);
  return fit ? combined(*this, y, tnla_kernels::best.elementwise.add) : TnLaDblVec();
}

TnLaDblVec TnLaDblVec::operator-(const TnLaDblVec& y) const {
  const bool fit = same_filled_dim(*this, y);
  TN_ASSERT(kFile, fit);
  return fit ? combined(*this, y, tnla_kernels::best.elementwise.subtract) : TnLaDblVec();
}

TnLaDblVec TnLaDblVec::operator*(const double& s) const {
  const bool filled = is_filled(*this);
  TN_ASSERT(kFile, filled);
  if (!filled) return {};
  TnLaDblVec result = unwritten(array_.size());
  tnla_kernels::best.elementwise.scale(length(array_), data(), s, result.data());
  return result;
}

TnLaDblVec operator*(const double& s, const TnLaDblVec& x) { return x * s; }

TnLaDblVec TnLaDblVec::operator-() const { return *this * -1.0; }

double TnLaDblVec::operator%(const TnLaDblVec& y) const { return tnla_scalprod(*this, y); }

void TnLaDblVec::operator+=(const TnLaDblVec& y) {
  const bool fit = same_filled_dim(*this, y);
  TN_ASSERT(kFile, fit);
  if (fit) tnla_kernels::best.elementwise.add(length(array_), data(), y.data(), data());
}

void TnLaDblVec::operator-=(const TnLaDblVec& y) {
  const bool fit = same_filled_dim(*this, y);
  TN_ASSERT(kFile, fit);
  if (fit) tnla_kernels::best.elementwise.subtract(length(array_), data(), y.data(), data());
}

void TnLaDblVec::operator*=(const double& s) {
  const bool filled = is_filled(*this);
  TN_ASSERT(kFile, filled);
  if (!filled) return;
  const double factor = s;  // s may be an element that is about to change
  tnla_kernels::best.elementwise.scale(length(array_), data(), factor, data());
}

void TnLaDblVec::operator*=(const TnLaDblMat& A) {
  const bool fit = can_multiply(A, *this);
  TN_ASSERT(kFile, fit);
  if (!fit) return;
  TnLaDblVec result;
  tnla_mat_vec_prod(A, *this, result);
  *this = result;
}

double TnLaDblVec::sq_norm() const { return tnla_scalprod(*this, *this); }

double TnLaDblVec::mx_norm() const { return mx_norm_of(array_); }

void TnLaDblVec::normalize() {
  const double q = tnla_scalprod(*this, *this);
  if (q == 0.0) {
    initialize(0.0);
  } else {
    tnla_kernels::best.elementwise.scale(length(array_), data(), 1.0 / std::sqrt(q), data());
  }
}

TnLaDblVec TnLaDblVec::dir() const {
  TnLaDblVec result(*this);
  result.normalize();
  return result;
}

TnLaDblVec TnLaDblVec::ort() const {
  const bool filled = is_filled(*this);
  TN_ASSERT(kFile, filled);
  if (!filled) return {};
  TnLaDblVec result;
  result.array_.set_size(array_.size(), false);
  tnla_ortho_vec(dim(), data(), result.data());
  return result;
}

// --- Vector: output -------------------------------------------------------------------------------------

void TnLaDblVec::debug(TnJournal& journal, int digits, int indent) const {
  if (empty()) {
    journal << "\nempty TnLaDblVec!" << tnEndExpr;
    return;
  }
  const TnLaDebugLayout layout = tnla_debug_layout(digits, indent);
  TN_ASSERT(kFile, layout.width != 0);
  if (layout.width == 0) return;
  tn_arraydebug(journal, dim(), array_, layout.per_line, layout.width, digits, indent);
}

// --- Free functions -------------------------------------------------------------------------------------

void tnla_mat_mat_prod(const TnLaDblMat& A, const TnLaDblMat& B, TnLaDblMat& C) {
  const bool fit = can_multiply(A, B);
  TN_ASSERT(kFile, fit);
  if (!fit) {
    C = TnLaDblMat(0, 1, 0.0);
    return;
  }
  const std::size_t m = A.n_rows();  // all three before C changes: a C that is an operand gives nonsense,
  const std::size_t k = A.n_cols();  // but no foreign memory is read
  const std::size_t n = B.n_cols();
  TnLaAccess::resize_to_overwrite(C, m, n, element_count(m, n));
  tnla_mat_mat_prod(m, k, n, A.array().data(), B.array().data(), TnLaAccess::elements(C));
}

void tnla_mat_mat_prod(std::size_t m, std::size_t k, std::size_t n, const double* A, const double* B,
                       double* C) {
  tnla_kernels::best.product.product(static_cast<Index>(m), static_cast<Index>(k), static_cast<Index>(n), A,
                                     B, C);
}

void tnla_mat_mat_prod(std::size_t m, std::size_t k, std::size_t n, const double* A, const double* B,
                       double* C, int a_row_step, int a_col_step, int b_row_step, int b_col_step,
                       int c_row_step, int c_col_step) {
  tnla_kernels::best.product.strided_product(static_cast<Index>(m), static_cast<Index>(k),
                                             static_cast<Index>(n), A, {a_row_step, a_col_step}, B,
                                             {b_row_step, b_col_step}, C, {c_row_step, c_col_step});
}

void tnla_mat_vec_prod(const TnLaDblMat& A, const TnLaDblVec& x, TnLaDblVec& y) {
  const bool fit = can_multiply(A, x);
  TN_ASSERT(kFile, fit);
  if (!fit) {
    y = TnLaDblVec();
    return;
  }
  TnLaAccess::resize_to_overwrite(y, A.n_rows());
  tnla_kernels::best.product.matrix_vector(static_cast<Index>(A.n_rows()), static_cast<Index>(A.n_cols()),
                                           A.array().data(), x.array().data(), TnLaAccess::elements(y));
}

double tnla_scalprod(const TnLaDblVec& x, const TnLaDblVec& y, bool norm_x, bool norm_y) {
  const bool fit = same_filled_dim(x, y);
  TN_ASSERT(kFile, fit);
  if (!fit) return 0.0;
  return tnla_scalprod(x.dim(), x.array().data(), y.array().data(), norm_x, norm_y);
}

void tnla_lincomb(const TnLaDblVec& x, double a, const TnLaDblVec& y, double b, TnLaDblVec& z) {
  const bool fit = same_filled_dim(x, y);
  TN_ASSERT(kFile, fit);
  if (!fit) {
    z = TnLaDblVec();
    return;
  }
  TnLaAccess::resize_to_overwrite(z, x.array().size());
  tnla_kernels::best.elementwise.combine(length(x.array()), x.array().data(), a, y.array().data(), b,
                                         TnLaAccess::elements(z));
}
