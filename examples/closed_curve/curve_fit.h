// SPDX-License-Identifier: MIT

#pragma once

#include <tarntnla.h>

#include <vector>

#include "closed_curve.h"

// The equations of a closed curve through measured points, in the least-squares sense: one for each point,
//
//     w0(u) P[s] + w1(u) P[s+1] + w2(u) P[s+2] + w3(u) P[s+3] = point,     for x and for y.
//
// A point in span s touches four control points that follow each other, so the equations of spans 0 ... n-4
// come block by block.  Those of the last three spans reach round the end, and are the exceptional ones:
//
//     P       0 1 2 3 . . .    n-1
//           [ x x x x             ]   span 0
//           [   x x x x           ]   span 1
//           [       . . .         ]
//           [             x x x x ]   span n-4
//           [ f             l l l ]   span n-3
//           [ f f             l l ]   span n-2
//           [ f f f             l ]   span n-1
class CurveFit : public TnLaBlkBndSolver {
 public:
  static constexpr int kBandwidth = 4;

  // places[i] is that of points[i]; the spans do not decrease.
  CurveFit(const std::vector<Point>& points, const std::vector<Place>& places, int n_control);

  void get_block_equations(int block, int first_row, TnLaDblMat& G, int& count,
                           int& first_unknown) const override;
  int max_block_equations() const override;
  bool exceptional() const override { return n_exceptional() > 0; }
  void get_exceptional_equations(TnLaDblMat& first, TnLaDblMat& last, TnLaDblMat& rhs,
                                 int& count) const override;

  int n_exceptional() const { return first_of_span(n_control_) - first_of_span(n_control_ - 3); }

  // The same equations, written out: A P = B, a row for each point.
  TnLaDblMat dense_matrix() const;
  TnLaDblMat right_hand_sides() const;

 private:
  // The points of span s are first_of_span(s) ... first_of_span(s + 1) - 1.
  int first_of_span(int s) const { return first_of_span_[static_cast<std::size_t>(s)]; }

  std::vector<Point> points_;
  std::vector<Place> places_;
  int n_control_;
  std::vector<int> first_of_span_;
};
