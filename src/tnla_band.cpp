// SPDX-License-Identifier: MIT

#include "tnla_band.h"

#include <algorithm>
#include <cmath>

#include "kernels/kernel_set.h"
#include "kernels/reductions.h"
#include "tnla_access.h"
#include "tnla_column_reflection.h"

using tnla_kernels::Index;

namespace {

// Narrower bands are folded where they are: with 4 equations an unknown and 2 right-hand sides that takes
// 167 ns an unknown for bandwidth 4, copies 181; for 6 it is a draw, and for 16 1300 against 650, measured
// with equations from a table.
constexpr Index kNarrow = 6;
constexpr Index kRowsTogether = 32;  // whose copies are substituted at a time

// For a fold of n_copies rows, and the columns of its reflections; for a substitution: rows, what is read
// behind the last of them, the solutions of these and of the band behind them, those that are coupled.
std::size_t scratch_size(Index bandwidth, Index n_rhs, Index n_copies) {
  const auto stride = static_cast<std::size_t>(tnla_kernels::padded_band(bandwidth + n_rhs));
  const auto x_stride = static_cast<std::size_t>(tnla_kernels::padded_band(n_rhs));
  const auto width = static_cast<std::size_t>(bandwidth);
  const std::size_t fold = static_cast<std::size_t>(n_copies + tnla_kernels::kBandExtra) * (stride + 2);
  const std::size_t substitution = kRowsTogether * stride + (kRowsTogether + 2 * width + 1) * x_stride;
  return std::max(fold, substitution);
}

}  // namespace

double* tnla_element_or_null(TnLaDblMat& A, Index i, Index j) {
  const auto row = static_cast<std::size_t>(i);
  const auto col = static_cast<std::size_t>(j);
  const bool exists = row < A.n_rows() && col < A.n_cols();
  TN_ASSERT("interfaces/tnla_matrix_vector_i.h", exists);
  TN_ASSERT("interfaces/tnarray_i.h", col * A.n_rows() + row < A.array().size());
  return exists ? TnLaAccess::elements(A) + col * A.n_rows() + row : nullptr;
}

TnLaBand::TnLaBand(TnLaDblMat& G, int n, int bandwidth, std::size_t most)
    : G_(G),
      n_(n),
      bandwidth_(bandwidth),
      n_rhs_(static_cast<Index>(G.n_cols()) - bandwidth),
      stride_(tnla_kernels::padded_band(bandwidth_ + n_rhs_)),
      n_copies_(bandwidth_ < kNarrow
                    ? 0
                    : std::min(bandwidth_ + static_cast<Index>(most), static_cast<Index>(G.n_rows()))),
      scratch_(scratch_size(bandwidth_, n_rhs_, n_copies_) * sizeof(double)) {}

void TnLaBand::fold(Index count, Index first) {
  const Index height = n_rows_ + count - first;
  if (!fold_copies(count, first)) {
    align(first);
    triangularize(first, height);
  }
  front_ = first;  // it may go back, where blocks do not come in order
  n_rows_ = first + std::min(height, bandwidth_);
}

// Copies of the rows, contiguous and without the zeros, are faster.  Until they are copied back G is as it
// was; false, where blocks do not come in order or the copies cannot be folded.
bool TnLaBand::fold_copies(Index count, Index first) {
  const Index n_old = n_rows_ - first;
  const Index height = n_old + count;
  if (height < 2 || first < front_ || n_old < 0 || height > n_copies_) return false;
  const tnla_kernels::BandKernels& band = tnla_kernels::best.band;
  double* const g = TnLaAccess::elements(G_) + first;
  const auto ld = static_cast<Index>(G_.n_rows());
  double* const copies = scratch_.doubles();
  band.gather(n_old, first - front_, bandwidth_, n_rhs_, g, ld, copies, stride_);
  band.gather(count, 0, bandwidth_, n_rhs_, g + n_old, ld, copies + n_old * stride_, stride_);
  if (!band.fold(n_old, height, bandwidth_, copies, stride_,
                 copies + (height + tnla_kernels::kBandExtra) * stride_))
    return false;
  align_rows(front_ + 1, first, first);
  band.scatter(height, bandwidth_ + n_rhs_, bandwidth_, copies, stride_, g, ld);
  return true;
}

void TnLaBand::align(Index front) {
  if (front <= front_) return;
  align_rows(front_ + 1, n_rows_, front);
  front_ = front;
}

void TnLaBand::align_rows(Index begin, Index end, Index front) {
  double* const g = TnLaAccess::elements(G_);
  const auto ld = static_cast<Index>(G_.n_rows());
  for (Index row = begin; row < end; ++row) {
    const Index shift = std::min({row - front_, front - front_, bandwidth_});
    for (Index c = shift; c < bandwidth_; ++c) g[(c - shift) * ld + row] = g[c * ld + row];
    for (Index c = bandwidth_ - shift; c < bandwidth_; ++c) g[c * ld + row] = 0.0;
  }
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

// Right-hand side k of the rows begin ... end-1 into x; rows that are missing are zero.
void TnLaBand::copy_right_side(Index k, Index begin, Index end, TnLaDblMat& x) const {
  const double* const g = TnLaAccess::elements(G_) + (bandwidth_ + k) * static_cast<Index>(G_.n_rows());
  double* const column = TnLaAccess::elements(x) + k * n_;
  const Index n_given = std::max(begin, std::min(end, n_rows_));
  std::copy(g + begin, g + n_given, column + begin);
  std::fill(column + n_given, column + end, 0.0);
}

// A failure leaves x as if the columns had been solved one after the other, from their right-hand sides in
// place.  The rows up to the front, unless terms are beyond x, are solved for all columns together.
bool TnLaBand::back_substitute(TnLaDblMat& x) {
  x.resize(static_cast<std::size_t>(n_), static_cast<std::size_t>(n_rhs_), true);
  if (n_rhs_ < 1) return true;
  const bool is_inside = bandwidth_ >= 1 && front_ <= n_ - bandwidth_ && front_ < n_rows_;
  const Index n_together = is_inside ? front_ + 1 : 0;
  for (Index k = 0; k < n_rhs_; ++k) copy_right_side(k, n_together, n_, x);
  Index n_left = n_together;
  bool solved = true;
  for (Index k = 0; k < n_rhs_ && solved; ++k) solved = substitute_column(k, n_together, x);
  if (solved) n_left = substitute_together(n_together, nullptr, x);
  if (solved && n_left == 0) return true;

  copy_right_side(0, 0, n_left, x);
  for (Index k = 1; k < n_rhs_; ++k) copy_right_side(k, 0, solved ? n_ : n_together, x);
  return false;
}

// Rows n-1 ... begin of the solution for right-hand side k.
bool TnLaBand::substitute_column(Index k, Index begin, TnLaDblMat& x) const {
  const double* const g = TnLaAccess::elements(G_);
  const auto ld = static_cast<Index>(G_.n_rows());
  double* const column = TnLaAccess::elements(x) + k * n_;
  for (Index i = std::min(front_, n_rows_) - 1; i >= n_; --i) tnla_element_or_null(x, i, k);
  for (Index i = n_ - 1; i >= begin; --i) {
    const Index on_diagonal = i - first_unknown(i);
    if (i >= n_rows_ || on_diagonal >= bandwidth_) return false;
    const double* const row = g + on_diagonal * ld + i;
    if (std::fabs(row[0]) < kSmallestBandDiagonal) return false;
    const Index n_terms = bandwidth_ - 1 - on_diagonal;
    const Index n_inside = std::min(n_terms, n_ - 1 - i);
    for (Index t = n_inside; t < n_terms; ++t) tnla_element_or_null(x, i + 1 + t, k);
    column[i] = (column[i] - tnla_kernels::dot(n_inside, column + i + 1, row + ld, ld)) / row[0];
  }
  return true;
}

Index TnLaBand::substitute_together(Index n_rows, const double* coupling, TnLaDblMat& x) {
  if (n_rhs_ < 1) return 0;
  const tnla_kernels::BandKernels& band = tnla_kernels::best.band;
  const double* const g = TnLaAccess::elements(G_);
  const auto ld = static_cast<Index>(G_.n_rows());
  double* const to = TnLaAccess::elements(x);
  const Index x_stride = tnla_kernels::padded_band(n_rhs_);
  double* const x_coupled = scratch_.doubles();
  double* const copies = x_coupled + bandwidth_ * x_stride;
  double* const solved = copies + kRowsTogether * stride_ + x_stride;
  const Index n_coupled = coupling == nullptr ? 0 : bandwidth_;
  band.gather(n_coupled, 0, 0, n_rhs_, to + n_ - n_coupled, n_, x_coupled, x_stride);
  for (Index end = n_rows; end > 0;) {
    const Index begin = std::max(Index{0}, end - kRowsTogether);
    const Index n = end - begin;
    band.gather(n, 0, bandwidth_, n_rhs_, g + begin, ld, copies, stride_);
    band.gather(bandwidth_ - 1, 0, 0, n_rhs_, to + end, n_, solved + n * x_stride, x_stride);
    const Index n_left =
        band.substitute(n, bandwidth_, n_rhs_, kSmallestBandDiagonal, copies, stride_, n_coupled,
                        coupling + begin * n_coupled, x_coupled, solved, x_stride);
    band.scatter(n - n_left, n_rhs_, 0, solved + n_left * x_stride, x_stride, to + begin + n_left, n_);
    if (n_left > 0) return begin + n_left;
    end = begin;
  }
  return 0;
}
