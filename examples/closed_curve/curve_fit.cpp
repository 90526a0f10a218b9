// SPDX-License-Identifier: MIT

#include "curve_fit.h"

#include <algorithm>

CurveFit::CurveFit(const std::vector<Point>& points, const std::vector<Place>& places, int n_control)
    : TnLaBlkBndSolver(n_control, n_control - 3, kBandwidth, 2),
      points_(points),
      places_(places),
      n_control_(n_control) {
  std::size_t i = 0;
  for (int span = 0; span <= n_control; ++span) {
    while (i < places.size() && places[i].span < span) ++i;
    first_of_span_.push_back(static_cast<int>(i));
  }
}

// A span without points gives an equation of zeros, because blocks come without a gap.
void CurveFit::get_block_equations(int block, int first_row, TnLaDblMat& G, int& count,
                                   int& first_unknown) const {
  first_unknown = block;
  auto row = static_cast<std::size_t>(first_row);
  for (int point = first_of_span(block); point < first_of_span(block + 1); ++point, ++row) {
    const auto i = static_cast<std::size_t>(point);
    const Weights w = spline_weights(places_[i].u);
    for (std::size_t k = 0; k < 4; ++k) G(row, k) = w[k];
    G(row, 4) = points_[i].x;
    G(row, 5) = points_[i].y;
  }
  count = first_of_span(block + 1) - first_of_span(block);
  if (count == 0) {
    for (std::size_t k = 0; k < 6; ++k) G(row, k) = 0.0;
    count = 1;
  }
}

int CurveFit::max_block_equations() const {
  int most = std::max(1, n_exceptional());
  for (int span = 0; span < n_control_ - 3; ++span) {
    most = std::max(most, first_of_span(span + 1) - first_of_span(span));
  }
  return most;
}

void CurveFit::get_exceptional_equations(TnLaDblMat& first, TnLaDblMat& last, TnLaDblMat& rhs,
                                         int& count) const {
  count = n_exceptional();
  auto i = static_cast<std::size_t>(first_of_span(n_control_ - 3));
  for (std::size_t row = 0; i < points_.size(); ++row, ++i) {
    const Weights w = spline_weights(places_[i].u);
    for (int k = 0; k < 4; ++k) {
      const int unknown = places_[i].span + k;
      TnLaDblMat& side = unknown < n_control_ ? last : first;
      const int origin = unknown < n_control_ ? n_control_ - kBandwidth : n_control_;
      side(row, static_cast<std::size_t>(unknown - origin)) = w[static_cast<std::size_t>(k)];
    }
    rhs(row, 0) = points_[i].x;
    rhs(row, 1) = points_[i].y;
  }
}

TnLaDblMat CurveFit::dense_matrix() const {
  const auto n = static_cast<std::size_t>(n_control_);
  TnLaDblMat A(points_.size(), n, 0.0);
  for (std::size_t i = 0; i < points_.size(); ++i) {
    const Weights w = spline_weights(places_[i].u);
    for (std::size_t k = 0; k < 4; ++k) A(i, (static_cast<std::size_t>(places_[i].span) + k) % n) = w[k];
  }
  return A;
}

TnLaDblMat CurveFit::right_hand_sides() const {
  TnLaDblMat B(points_.size(), 2, 0.0);
  for (std::size_t i = 0; i < points_.size(); ++i) {
    B(i, 0) = points_[i].x;
    B(i, 1) = points_[i].y;
  }
  return B;
}
