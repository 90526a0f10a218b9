// SPDX-License-Identifier: MIT

// A closed curve, fitted to points measured round an outline: banded least squares, with a wrap-around.
//
//   closed_curve [--picture FILE.svg] [FILE]
//
// FILE has one point "x y" a line, in mm, in the order in which they come round the outline; without it,
// the program takes points round a star knob.  Exits with 0 if the checks on the result pass, with 1 if
// one does not, with 2 if the file or the command line is wrong.

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <cstdio>
#include <string>
#include <vector>

#include "accuracy.h"
#include "closed_curve.h"
#include "common/arguments.h"
#include "common/checks.h"
#include "common/text_file.h"
#include "curve_fit.h"
#include "outline.h"
#include "picture.h"

namespace {

constexpr char kKnob[] = DATA_FOLDER "/outlines/star_knob.txt";
constexpr double kKnobNoise = 0.1;  // mm, normal to the outline; see the README beside the file

// More control points would make the dense twin slow.
constexpr std::size_t kMostControl = 200;

// Beyond this condition the points do not say where every control point is.
constexpr double kWorstCondition = 1e6;

double largest_step_at_seam(const ClosedCurve& curve, int derivative) {
  const Point end = curve.at({curve.n_control() - 1, 1.0}, derivative);
  const Point start = curve.at({0, 0.0}, derivative);
  return std::max(std::fabs(end.x - start.x), std::fabs(end.y - start.y));
}

struct Residuals {
  double sum_of_squares = 0.0;
  double largest = 0.0;
};

Residuals residuals(const std::vector<Point>& points, const std::vector<Place>& places,
                    const ClosedCurve& curve) {
  Residuals result;
  for (std::size_t i = 0; i < points.size(); ++i) {
    const Point foot = curve.at(places[i]);
    const double distance = std::hypot(points[i].x - foot.x, points[i].y - foot.y);
    result.sum_of_squares += distance * distance;
    result.largest = std::max(result.largest, distance);
  }
  return result;
}

void print_sizes(const CurveFit& fit, const TnLaDblMat& A, double length, double condition) {
  const std::size_t n = A.n_cols();
  const auto around = static_cast<std::size_t>(fit.n_exceptional());
  const std::size_t work_rows = n + static_cast<std::size_t>(fit.max_block_equations());
  const std::size_t work_columns = CurveFit::kBandwidth + 2;
  std::printf("  outline, from point to point   %8.1f mm\n", length);
  std::printf("  control points                 %8zu     one every %.2f mm; condition %.1f\n", n,
              length / static_cast<double>(n), condition);
  std::printf("  equations                      %8zu     in %zu blocks\n", A.n_rows() - around, n - 3);
  std::printf("  equations round the end        %8zu     exceptional\n", around);
  std::printf("  work matrix                    %8zu     numbers, %zu x %zu\n", work_rows * work_columns,
              work_rows, work_columns);
  std::printf("  the same as a dense system     %8zu     numbers, %zu x %zu\n", A.n_rows() * (n + 2),
              A.n_rows(), n + 2);
}

// The residuals are normal to the knob's outline, one number a point, and the curve has n of these at its
// disposal: sum / (points - n) estimates the variance of the noise.  Its relative standard deviation is
// sqrt(2 / (points - n)), that of its root half as much; four of them are allowed.
void check_noise(Checks& checks, double estimate, std::size_t freedom) {
  const double spread = 4.0 / std::sqrt(2.0 * static_cast<double>(freedom));
  checks.between("noise, estimated from the residuals", estimate, kKnobNoise * (1.0 - spread),
                 kKnobNoise * (1.0 + spread), "mm");
}

// The curve's weights at the ends of a span are the same numbers whatever the control points; rounding is
// all that may be between them.  A sum of four products, with weights of at most 2 in magnitude that have
// been rounded up to six times each, is wrong by less than 64 roundings of the largest coordinate.
void check_seam(Checks& checks, const ClosedCurve& curve) {
  double largest = 0.0;
  for (const Point& p : curve.control_polygon()) {
    largest = std::max({largest, std::fabs(p.x), std::fabs(p.y)});
  }
  const double bound = 2.0 * 64.0 * largest * DBL_EPSILON / 2.0;
  checks.at_most("step at the seam in position", largest_step_at_seam(curve, 0), bound, "mm");
  checks.at_most("step at the seam in the first derivative", largest_step_at_seam(curve, 1), bound,
                 "mm a span");
  checks.at_most("step at the seam in the second derivative", largest_step_at_seam(curve, 2), bound,
                 "mm a span^2");
}

int run(const Arguments& arguments) {
  const bool is_knob = arguments.file.empty();
  const std::string path = is_knob ? kKnob : arguments.file;
  const std::vector<Point> points = read_outline(path);
  const std::size_t n = std::clamp(points.size() / kPointsPerControl, kFewestControl, kMostControl);

  const std::vector<Place> places = places_by_chord_length(points, static_cast<int>(n));
  const CurveFit fit(points, places, static_cast<int>(n));
  const TnLaDblMat A = fit.dense_matrix();
  const SingularValues of_A = singular_values(A);
  TnLaDblMat P;
  if (!(of_A.condition() <= kWorstCondition) || !fit.solve(P)) {
    throw DataError(path + ": the points leave gaps, and do not determine " + std::to_string(n) +
                    " control points");
  }
  const ClosedCurve curve(P);

  const Residuals rest = residuals(points, places, curve);
  const double estimate = std::sqrt(rest.sum_of_squares / static_cast<double>(points.size() - n));
  std::printf("A closed curve, fitted to %zu points by banded least squares\n\n", points.size());
  print_sizes(fit, A, polygon_length(points), of_A.condition());
  std::printf("  residual, root mean square     %8.4f mm\n",
              std::sqrt(rest.sum_of_squares / static_cast<double>(points.size())));
  std::printf("  largest residual               %8.4f mm\n", rest.largest);
  std::printf("  noise, as estimated from them  %8.4f mm\n\n", estimate);

  const TnLaDblMat B = fit.right_hand_sides();
  TnLaDblMat dense;
  const bool solved = tnla_linearsolve(A, B, dense);
  Checks checks;
  if (is_knob) check_noise(checks, estimate, points.size() - n);
  checks.at_most("control points against those of a dense solve",
                 solved ? std::sqrt((P - dense).sq_norm()) : INFINITY,
                 most_difference(A, B, P, of_A.smallest), "mm");
  check_seam(checks, curve);
  draw_fit(arguments.picture, points, places, curve);
  std::printf("\nPicture: %s\n", arguments.picture.c_str());
  return checks.exit_code();
}

}  // namespace

int main(int argc, char** argv) {
  try {
    return run(parse_arguments(argc, argv, "closed_curve", Input::file));
  } catch (const DataError& problem) {
    std::fprintf(stderr, "%s\n", problem.what());
    return 2;
  }
}
