// SPDX-License-Identifier: MIT

#include "picture.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace {

constexpr double kMagnification = 10.0;  // of the residuals

// Steps of a line where it has to look smooth: a span of the curve, a side of its polygon, a circle.
constexpr int kSteps = 32;
constexpr double kTwoPi = 6.283185307179586;

double distance(Point a, Point b) { return std::hypot(b.x - a.x, b.y - a.y); }

// The point at `part` of the way from a to b.
Point between(Point a, Point b, double part) {
  return {a.x + part * (b.x - a.x), a.y + part * (b.y - a.y)};
}

void append(const std::vector<Point>& points, std::vector<Point>& all) {
  all.insert(all.end(), points.begin(), points.end());
}

std::vector<Point> circle(Point centre, double radius) {
  std::vector<Point> points;
  for (int i = 0; i < 4 * kSteps; ++i) {
    const double angle = kTwoPi * i / (4 * kSteps);
    points.push_back({centre.x + radius * std::cos(angle), centre.y + radius * std::sin(angle)});
  }
  return points;
}

// A lens over `from` that shows what is within its reach at another place.
struct Lens {
  Point from;
  double reach;
  Point to;
  double radius;

  double scale() const { return radius / reach; }
  // The part of a line, or of a set of points, that is seen, as it is seen.
  std::vector<Point> operator()(const std::vector<Point>& points) const {
    std::vector<Point> seen;
    for (const Point& p : points) {
      if (distance(p, from) > reach) continue;
      seen.push_back({to.x + scale() * (p.x - from.x), to.y + scale() * (p.y - from.y)});
    }
    return seen;
  }
};

// The two spans before the seam and the two behind it, and the sides of the polygon there.
std::vector<Point> curve_at_seam(const ClosedCurve& curve) {
  std::vector<Point> points;
  for (int span = curve.n_control() - 2; span < curve.n_control() + 2; ++span) {
    for (int i = 0; i < kSteps; ++i) points.push_back(curve.at({span, static_cast<double>(i) / kSteps}));
  }
  return points;
}

std::vector<Point> polygon_at_seam(const ClosedCurve& curve) {
  std::vector<Point> points;
  for (int k = curve.n_control() - 1; k < curve.n_control() + 3; ++k) {
    for (int i = 0; i < kSteps; ++i) {
      points.push_back(between(curve.control(k), curve.control(k + 1), static_cast<double>(i) / kSteps));
    }
  }
  return points;
}

// The lens goes into the middle of the outline, if that is empty: its radius is then above 0.
Lens lens_over_seam(const ClosedCurve& curve) {
  const std::vector<Point> line = curve.polyline(kSteps);
  Point low = line[0];
  Point high = line[0];
  for (const Point& p : line) {
    low = {std::min(low.x, p.x), std::min(low.y, p.y)};
    high = {std::max(high.x, p.x), std::max(high.y, p.y)};
  }
  const Point middle = between(low, high, 0.5);
  double room = distance(low, high);
  for (const Point& p : line) room = std::min(room, distance(middle, p));
  const double reach = 1.3 * distance(curve.at({0, 0.0}), curve.at({1, 0.0}));
  const bool empty = room > 0.2 * (high.x - low.x) && room > 2.0 * reach;
  return {line[0], reach, middle, empty ? 0.8 * room : 0.0};
}

void draw_under_lens(Drawing& drawing, const Lens& lens, const std::vector<Point>& points,
                     const ClosedCurve& curve) {
  drawing.closed_line(circle(lens.from, lens.reach), Style::aid);
  drawing.closed_line(circle(lens.to, lens.radius), Style::aid);
  drawing.line(lens(polygon_at_seam(curve)), Style::aid);
  drawing.dots(lens(curve.control_polygon()), 4.0, Style::aid);
  drawing.line(lens(curve_at_seam(curve)), Style::curve);
  drawing.dots({lens.to}, 6.0, Style::accent);
  drawing.dots(lens(points), 3.0, Style::data);
}

std::string magnified(const Lens& lens) {
  if (lens.radius == 0.0) return "";
  char words[64];
  std::snprintf(words, sizeof words, "; in the circle %.1f times as large", lens.scale());
  return words;
}

}  // namespace

void draw_fit(const std::string& path, const std::vector<Point>& points, const std::vector<Place>& places,
              const ClosedCurve& curve) {
  std::vector<std::vector<Point>> residuals;
  std::vector<Point> shown = curve.control_polygon();
  for (std::size_t i = 0; i < points.size(); ++i) {
    const Point foot = curve.at(places[i]);
    residuals.push_back({foot, between(foot, points[i], kMagnification)});
    append(residuals.back(), shown);
  }
  const Lens lens = lens_over_seam(curve);
  if (lens.radius > 0.0) append(circle(lens.from, lens.reach), shown);

  Drawing drawing("A closed cubic B-spline, fitted to points measured round an outline", shown);
  drawing.closed_line(curve.control_polygon(), Style::aid);
  drawing.closed_line(curve.polyline(kSteps), Style::curve);
  for (const std::vector<Point>& residual : residuals) drawing.line(residual, Style::second);
  drawing.dots(curve.control_polygon(), 3.0, Style::aid);
  drawing.dots(points, 1.5, Style::data);
  if (lens.radius > 0.0) draw_under_lens(drawing, lens, points, curve);
  drawing.dots({lens.from}, 4.0, Style::accent);

  drawing.explain_dots(Style::data, std::to_string(points.size()) + " measured points");
  drawing.explain(Style::curve, "the fitted curve");
  drawing.explain(Style::second, "from the curve to each point, 10 times as long");
  drawing.explain_dots(Style::aid, std::to_string(curve.n_control()) + " control points and their polygon");
  drawing.explain_dots(Style::accent, "the seam, where the curve closes" + magnified(lens));
  drawing.write(path);
}
