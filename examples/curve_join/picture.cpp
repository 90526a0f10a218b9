// SPDX-License-Identifier: MIT

#include "picture.h"

#include <vector>

#include "common/drawing.h"
#include "curves.h"

namespace {

using curves::Complex;

constexpr double kStep = 0.25;
constexpr int kStepsBefore = -10;  // of piece 1
constexpr int kStepsAfter = 7;     // of piece 2
constexpr int kStepsOfCubic = 5;
constexpr int kPointsPerStep = 16;
constexpr double kDot = 3.5;
constexpr double kLeftEdge = -1.75;
constexpr double kArrow = 0.6;       // of a derivative's length
constexpr Complex kRight{3.2, 0.0};  // from one panel to the other

Point point(Complex z) { return {z.real(), z.imag()}; }

// A curve from one step to a later one.
template <class Curve>
void draw(Drawing& drawing, const Curve& curve, Complex panel, int first, int last, Style style) {
  std::vector<Point> line;
  for (int i = first * kPointsPerStep; i <= last * kPointsPerStep; ++i) {
    line.push_back(point(panel + curve(i * kStep / kPointsPerStep)));
  }
  drawing.line(line, style);
}

// The same, with a dot at each step.
template <class Curve>
void draw_steps(Drawing& drawing, const Curve& curve, Complex panel, int first, int last, Style style) {
  draw(drawing, curve, panel, first, last, style);
  std::vector<Point> dots;
  for (int i = first; i <= last; ++i) dots.push_back(point(panel + curve(i * kStep)));
  drawing.dots(dots, kDot, style);
}

void draw_derivatives(Drawing& drawing, const TnLaDblMat& jet, Complex panel, Style style) {
  const Complex join = panel + curves::derivative(jet, 0);
  for (std::size_t k = 1; k <= 2; ++k) {
    drawing.arrow(point(join), point(join + kArrow * curves::derivative(jet, k)), style);
  }
}

}  // namespace

void draw_join(const TnLaDblMat& adapted, const std::string& path) {
  Drawing drawing("A spiral in two pieces: the second gets the speed of the first",
                  {{kLeftEdge, 1.2}, {1.25 + kRight.real(), -1.6}});
  const auto cubic = [&adapted](double s) { return curves::cubic(adapted, s); };

  drawing.text({kLeftEdge, 1.05}, "As the pieces come: two speeds");
  draw_steps(drawing, curves::spiral, 0.0, kStepsBefore, 0, Style::curve);
  draw_steps(drawing, curves::other_spiral, 0.0, 0, kStepsAfter, Style::second);
  draw_derivatives(drawing, curves::spiral_jet(), 0.0, Style::curve);
  draw_derivatives(drawing, curves::other_spiral_jet(), 0.0, Style::second);

  drawing.text({kLeftEdge + kRight.real(), 1.05}, "Adapted: one speed at the join");
  draw(drawing, curves::spiral, kRight, 0, -kStepsBefore, Style::aid);
  draw_steps(drawing, curves::spiral, kRight, kStepsBefore, 0, Style::curve);
  draw_steps(drawing, cubic, kRight, 0, kStepsOfCubic, Style::second);
  draw_derivatives(drawing, curves::spiral_jet(), kRight, Style::curve);
  draw_derivatives(drawing, adapted, kRight, Style::second);

  drawing.explain(Style::curve,
                  "piece 1, a dot every 0.25 of its parameter; arrows: x' and x'' at the join");
  drawing.explain(Style::second, "piece 2 likewise; on the right, the Taylor cubic of its adapted jet");
  drawing.explain(Style::aid, "the spiral, which the cubic leaves in the end");
  drawing.write(path);
}
