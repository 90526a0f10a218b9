// SPDX-License-Identifier: MIT

#include "picture.h"

#include <algorithm>
#include <cmath>

#include "common/drawing.h"
#include "frame.h"

namespace {

// The unit of the picture is a pixel.
constexpr double kWidth = 712.0;
constexpr double kPanelWidth = kWidth / 2.0;
constexpr double kPanelHeight = 254.0;
constexpr double kCaption = 18.0;

constexpr double kShownMovement = 60.0;  // of the node that moves most, in the frame's unit
constexpr double kShownForce = 90.0;     // of the largest force

using frame::Vector;

// The upper left corner of panel i, two in a row.
Point corner(std::size_t i) {
  const std::size_t row = i / 2;
  return {static_cast<double>(i % 2) * kPanelWidth, -static_cast<double>(row) * kPanelHeight};
}

// The frame seen from the front, somewhat from the left and from above: z to the right, y up, x backwards.
Point projected(std::size_t panel, const Vector& p) {
  const Point c = corner(panel);
  return {c.x + 20.0 + 0.34 * p[2] + 0.25 * p[0], c.y - 212.0 + 0.40 * p[1] + 0.09 * p[0] - 0.03 * p[2]};
}

Vector sum(const Vector& a, double factor, const Vector& b) {
  return {a[0] + factor * b[0], a[1] + factor * b[1], a[2] + factor * b[2]};
}

Vector force_at(const TnLaDblVec& f, std::size_t node) {
  const int first = static_cast<int>(6 * node);
  return {f(first), f(first + 1), f(first + 2)};
}

// The largest displacement, or force, of a node.
double largest(const TnLaDblVec& v) {
  double result = 0.0;
  for (std::size_t node = 0; node < frame::kNodes; ++node) {
    const Vector w = force_at(v, node);
    result = std::max(result, std::hypot(w[0], w[1], w[2]));
  }
  return result;
}

void draw_member(Drawing& drawing, std::size_t panel, const std::vector<frame::Place>& places,
                 double exaggeration, Style style) {
  std::vector<Point> points;
  points.reserve(places.size());
  for (const frame::Place& place : places) {
    points.push_back(projected(panel, sum(place.at, exaggeration, place.moved)));
  }
  drawing.line(points, style);
}

void draw_frame(Drawing& drawing, std::size_t panel, const TnLaDblMat& K, const TnLaDblVec& x,
                double exaggeration, Style style) {
  for (const auto& [a, b] : frame::members(K)) {
    draw_member(drawing, panel, frame::bent_member(x, a, b), exaggeration, style);
  }
  for (std::size_t node = frame::kFreeNodes; node < frame::kNodes; ++node) {
    draw_member(drawing, panel, frame::bent_column(x, node), exaggeration, style);
  }
}

void draw_response(Drawing& drawing, std::size_t panel, const TnLaDblMat& K, const Response& response) {
  const Point c = corner(panel);
  drawing.text({c.x, c.y - kCaption}, response.name);
  draw_frame(drawing, panel, K, response.x, 0.0, Style::aid);
  const double exaggeration = kShownMovement / largest(response.x);
  draw_frame(drawing, panel, K, response.x, exaggeration, Style::curve);
  const double length = kShownForce / largest(response.load);
  for (std::size_t node = 0; node < frame::kNodes; ++node) {
    const Vector force = force_at(response.load, node);
    const Vector end = sum(frame::kPositions[node], exaggeration, force_at(response.x, node));
    drawing.arrow(projected(panel, sum(end, -length, force)), projected(panel, end), Style::accent);
  }
}

// The nodes' numbers, where they are in no line's way.
void draw_numbers(Drawing& drawing, std::size_t panel) {
  constexpr Point kLeft{-16.0, 4.0};
  constexpr Point kRight{9.0, -4.0};
  constexpr Point kBelow{8.0, -14.0};
  constexpr Point kPlaces[] = {kLeft, kBelow, kRight, kLeft, kLeft, kBelow, kRight, kBelow};
  for (std::size_t node = 0; node < frame::kNodes; ++node) {
    const Point p = projected(panel, frame::kPositions[node]);
    drawing.text({p.x + kPlaces[node].x, p.y + kPlaces[node].y}, std::to_string(node + 1));
  }
}

// A dot for each entry of K that is not zero, and the edges of the nodes' blocks.
void draw_pattern(Drawing& drawing, std::size_t panel, const TnLaDblMat& K) {
  constexpr double kCell = 4.4;
  constexpr double kSide = kCell * frame::kUnknowns;
  const Point c = corner(panel);
  drawing.text({c.x, c.y - kCaption}, "Where the matrix is not zero, node by node");
  const Point top{c.x + 20.0, c.y - kCaption - 14.0};
  for (std::size_t node = 0; node <= frame::kNodes; ++node) {
    const double t = kSide * static_cast<double>(node) / frame::kNodes;
    if (node < frame::kNodes) {
      drawing.text({top.x - 16.0, top.y - t - 17.0}, std::to_string(node + 1));
    }
    drawing.line({{top.x + t, top.y}, {top.x + t, top.y - kSide}}, Style::aid);
    drawing.line({{top.x, top.y - t}, {top.x + kSide, top.y - t}}, Style::aid);
  }
  std::vector<Point> entries;
  for (std::size_t j = 0; j < frame::kUnknowns; ++j) {
    for (std::size_t i = 0; i < frame::kUnknowns; ++i) {
      if (K(i, j) == 0.0) continue;
      entries.push_back(
          {top.x + kCell * (static_cast<double>(j) + 0.5), top.y - kCell * (static_cast<double>(i) + 0.5)});
    }
  }
  drawing.dots(entries, 1.9, Style::curve);
}

}  // namespace

void draw_responses(const TnLaDblMat& K, const std::vector<Response>& responses, const std::string& path) {
  const Point last = corner(responses.size());
  Drawing drawing("The stiffness matrix bcsstk01, and the frame that it describes under load",
                  {{0.0, 0.0}, {kWidth, last.y - kPanelHeight + 16.0}});
  draw_pattern(drawing, 0, K);
  draw_numbers(drawing, 1);
  for (std::size_t i = 0; i < responses.size(); ++i) draw_response(drawing, i + 1, K, responses[i]);
  drawing.explain(Style::aid, "the frame at rest");
  drawing.explain(Style::curve, "bent: each load with its own exaggeration");
  drawing.explain(Style::accent, "the forces, with their points at the nodes");
  drawing.write(path);
}
