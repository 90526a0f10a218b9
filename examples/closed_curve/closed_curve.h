// SPDX-License-Identifier: MIT

#pragma once

#include <tarntnla.h>

#include <array>
#include <vector>

#include "common/drawing.h"

// A closed curve: a uniform cubic B-spline round n control points.
//
//     span s = 0 ... n-1:   C(s + u) = w0(u) P[s] + w1(u) P[s+1] + w2(u) P[s+2] + w3(u) P[s+3],  0 <= u <=
//     1
//
// The indices run on from P[n-1] to P[0], so that position, slope and curvature go on there too.

// A parameter, taken apart.
struct Place {
  int span;
  double u;
};

using Weights = std::array<double, 4>;

// w0(u) ... w3(u), or their first or second derivative.
Weights spline_weights(double u, int derivative = 0);

class ClosedCurve {
 public:
  // The control points, n x 2.
  explicit ClosedCurve(const TnLaDblMat& control) : control_(control) {}

  int n_control() const { return static_cast<int>(control_.n_rows()); }
  Point control(int i) const;  // any i, modulo n
  std::vector<Point> control_polygon() const;

  // The point at a place, or the first or second derivative there.
  Point at(Place place, int derivative = 0) const;
  // `per_span` points of each span.
  std::vector<Point> polyline(int per_span) const;

 private:
  TnLaDblMat control_;
};

// The length of the closed polygon through the points.
double polygon_length(const std::vector<Point>& points);

// Where on a curve of n spans each point belongs: its distance from the first point along the polygon, with
// the whole polygon n long.
std::vector<Place> places_by_chord_length(const std::vector<Point>& points, int n);
