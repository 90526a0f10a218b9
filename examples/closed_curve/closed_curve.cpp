// SPDX-License-Identifier: MIT

#include "closed_curve.h"

#include <algorithm>
#include <cmath>

Weights spline_weights(double u, int derivative) {
  const double v = 1.0 - u;
  switch (derivative) {
    case 0:
      return {v * v * v / 6.0, (3.0 * u * u * (u - 2.0) + 4.0) / 6.0, (3.0 * v * v * (v - 2.0) + 4.0) / 6.0,
              u * u * u / 6.0};
    case 1:
      return {-v * v / 2.0, u * (3.0 * u - 4.0) / 2.0, -v * (3.0 * v - 4.0) / 2.0, u * u / 2.0};
    default:
      return {v, 3.0 * u - 2.0, 3.0 * v - 2.0, u};
  }
}

Point ClosedCurve::control(int i) const {
  const auto row = static_cast<std::size_t>(i % n_control());
  return {control_(row, 0), control_(row, 1)};
}

std::vector<Point> ClosedCurve::control_polygon() const {
  std::vector<Point> points;
  points.reserve(control_.n_rows());
  for (int i = 0; i < n_control(); ++i) points.push_back(control(i));
  return points;
}

Point ClosedCurve::at(Place place, int derivative) const {
  const Weights w = spline_weights(place.u, derivative);
  Point sum{0.0, 0.0};
  for (int k = 0; k < 4; ++k) {
    const Point p = control(place.span + k);
    const double weight = w[static_cast<std::size_t>(k)];
    sum = {sum.x + weight * p.x, sum.y + weight * p.y};
  }
  return sum;
}

std::vector<Point> ClosedCurve::polyline(int per_span) const {
  std::vector<Point> points;
  for (int span = 0; span < n_control(); ++span) {
    for (int i = 0; i < per_span; ++i) points.push_back(at({span, static_cast<double>(i) / per_span}));
  }
  return points;
}

// The distance from point i to the next one, round the end.
static double chord(const std::vector<Point>& points, std::size_t i) {
  const Point a = points[i];
  const Point b = points[(i + 1) % points.size()];
  return std::hypot(b.x - a.x, b.y - a.y);
}

double polygon_length(const std::vector<Point>& points) {
  double length = 0.0;
  for (std::size_t i = 0; i < points.size(); ++i) length += chord(points, i);
  return length;
}

std::vector<Place> places_by_chord_length(const std::vector<Point>& points, int n) {
  const double scale = n / polygon_length(points);
  std::vector<Place> places;
  double distance = 0.0;
  for (std::size_t i = 0; i < points.size(); ++i) {
    const double t = distance * scale;
    // The last point may be the first one again, and then belongs to the very end.
    const int span = std::min(static_cast<int>(t), n - 1);
    places.push_back({span, t - span});
    distance += chord(points, i);
  }
  return places;
}
