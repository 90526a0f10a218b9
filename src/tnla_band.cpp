#include "tnla_band.h"

#include <algorithm>
#include <cmath>

#include "kernels/reductions.h"
#include "tnla_access.h"
#include "tnla_column_reflection.h"

using tnla_kernels::Index;

double* tnla_element_or_null(TnLaDblMat& A, Index i, Index j) {
  const auto row = static_cast<std::size_t>(i);
  const auto col = static_cast<std::size_t>(j);
  const bool exists = row < A.n_rows() && col < A.n_cols();
  TN_ASSERT("interfaces/tnla_matrix_vector_i.h", exists);
  TN_ASSERT("interfaces/tnarray_i.h", col * A.n_rows() + row < A.array().size());
  return exists ? TnLaAccess::elements(A) + col * A.n_rows() + row : nullptr;
}

void TnLaBand::fold(Index count, Index first) {
  align(first);
  const Index height = n_rows_ + count - first;
  triangularize(first, height);
  front_ = first;  // it may go back, where blocks do not come in order
  n_rows_ = first + std::min(height, bandwidth_);
}

void TnLaBand::align(Index front) {
  if (front <= front_) return;
  double* const g = TnLaAccess::elements(G_);
  const auto ld = static_cast<Index>(G_.n_rows());
  for (Index row = front_ + 1; row < n_rows_; ++row) {
    const Index shift = std::min({row - front_, front - front_, bandwidth_});
    for (Index c = shift; c < bandwidth_; ++c) g[(c - shift) * ld + row] = g[c * ld + row];
    for (Index c = bandwidth_ - shift; c < bandwidth_; ++c) g[c * ld + row] = 0.0;
  }
  front_ = front;
}

// Every column is reflected from its diagonal on, also where the rows are triangular already: that costs
// work, may turn the sign of such a row, and keeps the scheme simple.
void TnLaBand::triangularize(Index top, Index height) {
  const auto ld = static_cast<Index>(G_.n_rows());
  const Index n_cols = bandwidth_ + n_rhs_;
  for (Index i = 0; i < bandwidth_ && i < height - 1; ++i) {
    double* const column = TnLaAccess::elements(G_) + i * ld + top + i;
    TnLaColumnReflection reflection(column, height - 1 - i);
    reflection.apply(column + ld, ld, n_cols - 1 - i);
    reflection.finish();
  }
}

bool TnLaBand::back_substitute(TnLaDblMat& x) const {
  x.resize(static_cast<std::size_t>(n_), static_cast<std::size_t>(n_rhs_), true);
  const double* const g = TnLaAccess::elements(G_);
  const auto ld = static_cast<Index>(G_.n_rows());
  const Index n_given = std::min(n_, n_rows_);
  for (Index k = 0; k < n_rhs_; ++k) {
    double* const column = TnLaAccess::elements(x) + k * n_;
    std::copy_n(g + (bandwidth_ + k) * ld, n_given, column);
    std::fill(column + n_given, column + n_, 0.0);
  }

  for (Index k = 0; k < n_rhs_; ++k) {
    double* const column = TnLaAccess::elements(x) + k * n_;
    for (Index i = std::min(front_, n_rows_) - 1; i >= n_; --i) tnla_element_or_null(x, i, k);
    for (Index i = n_ - 1; i >= 0; --i) {
      const Index on_diagonal = i - first_unknown(i);
      if (i >= n_rows_ || on_diagonal >= bandwidth_) return false;
      const double* const row = g + on_diagonal * ld + i;
      if (std::fabs(row[0]) < kSmallestBandDiagonal) return false;
      const Index n_terms = bandwidth_ - 1 - on_diagonal;
      const Index n_inside = std::min(n_terms, n_ - 1 - i);
      for (Index t = n_inside; t < n_terms; ++t) tnla_element_or_null(x, i + 1 + t, k);
      column[i] = (column[i] - tnla_kernels::dot(n_inside, column + i + 1, row + ld, ld)) / row[0];
    }
  }
  return true;
}
