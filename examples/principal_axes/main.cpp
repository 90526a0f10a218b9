// SPDX-License-Identifier: MIT

// The principal axes of inertia of a body that is given as a cloud of points.
//
//   principal_axes [--picture FILE.svg] [FILE]
//
// FILE has one point "x y z" a line, in mm; without it, the program takes a bracket that is turned in
// space. Exits with 0 if the checks on the result pass, with 1 if one does not, with 2 if the file or the
// command line is wrong.

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <string>
#include <vector>

#include "cloud.h"
#include "common/arguments.h"
#include "common/checks.h"
#include "common/drawing.h"
#include "common/text_file.h"
#include "inertia.h"

namespace {

constexpr char kBracket[] = DATA_FOLDER "/clouds/bracket.txt";

// A smaller moment is none: it is that of a body a millionth of a millimetre thick.
constexpr double kSmallestMoment = 1e-12;  // kg mm^2

// The cloud, turned by 60 degrees about the direction (1, 1, 1).
TnLaDblMat turned(const TnLaDblMat& cloud) {
  const double columns[] = {2.0 / 3, 2.0 / 3, -1.0 / 3, -1.0 / 3, 2.0 / 3,
                            2.0 / 3, 2.0 / 3, -1.0 / 3, 2.0 / 3};
  return cloud * TnLaDblMat(columns, 3, 3).tr();
}

struct Interval {
  double low;
  double high;
};

// From where to where the points reach along an axis, from the centre.
Interval extent(const TnLaDblMat& along_axes, std::size_t axis) {
  Interval result{0.0, 0.0};
  for (std::size_t i = 0; i < along_axes.n_rows(); ++i) {
    result = {std::min(result.low, along_axes(i, axis)), std::max(result.high, along_axes(i, axis))};
  }
  return result;
}

void print_table(const Inertia& body, const PrincipalAxes& principal, const TnLaDblMat& along_axes) {
  std::printf("Principal axes of a cloud of %zu points, with a mass of 1 kg spread evenly over them\n\n",
              body.centred.n_rows());
  std::printf("  centre of mass  %.3f %.3f %.3f mm\n\n", body.centre[0], body.centre[1], body.centre[2]);
  std::printf("            moment   radius of    extent     direction\n");
  std::printf("           kg mm^2   gyration mm  mm         x        y        z\n");
  for (std::size_t k = 0; k < 3; ++k) {
    const Interval reach = extent(along_axes, k);
    const TnLaDblMat& axes = principal.axes;
    std::printf("  axis %zu %10.2f  %10.3f  %8.3f   %8.5f %8.5f %8.5f\n", k + 1, principal.moments[k],
                std::sqrt(std::max(0.0, principal.moments[k])), reach.high - reach.low, axes(0, k),
                axes(1, k), axes(2, k));
  }
  std::printf("\n");
}

double norm(const TnLaDblMat& A) { return std::sqrt(A.sq_norm()); }

// r is kRoundingOfAxes, |J| the norm of the tensor.  The axes V are wrong by sqrt(3) r, which counts twice
// in V' V and in J V; the moments L by r |J|, and their sum by sqrt(3) times as much.
void check_axes(Checks& checks, const TnLaDblMat& J, const PrincipalAxes& principal) {
  const TnLaDblMat& V = principal.axes;
  TnLaDblMat L(3, 3, 0.0);
  for (std::size_t k = 0; k < 3; ++k) L(k, k) = principal.moments[k];
  const double r = kRoundingOfAxes;
  checks.at_most("axes orthonormal: |V' V - I|", norm(V.tr() * V - TnLaDblMat(3, 3, 1.0)), 4.0 * r, "");
  checks.at_most("axes principal: |J V - V L|", norm(J * V - V * L), 5.0 * r * norm(J), "kg mm^2");
  const double trace_J = J(0, 0) + J(1, 1) + J(2, 2);
  const double trace_L = L(0, 0) + L(1, 1) + L(2, 2);
  checks.at_most("sum of moments is the trace of J", std::fabs(trace_L - trace_J), 2.0 * r * norm(J),
                 "kg mm^2");
}

using Vector = TnLaTSmallVec<3, double>;

Vector point(const TnLaDblMat& cloud, std::size_t i) {
  const double coordinates[] = {cloud(i, 0), cloud(i, 1), cloud(i, 2)};
  return {coordinates, 3};
}

// The moments by their definition, from the points: the mean of the squared distances from each axis, which
// goes through a centre that is found as a running mean.
void check_definition(Checks& checks, const TnLaDblMat& cloud, const PrincipalAxes& principal,
                      double bound) {
  Vector centre;
  for (std::size_t i = 0; i < cloud.n_rows(); ++i) {
    centre += (point(cloud, i) - centre) * (1.0 / static_cast<double>(i + 1));
  }
  double largest = 0.0;
  for (std::size_t k = 0; k < 3; ++k) {
    const Vector axis = point(principal.axes.tr(), k);
    double sum = 0.0;
    for (std::size_t i = 0; i < cloud.n_rows(); ++i) {
      const Vector arm = point(cloud, i) - centre;
      sum += (arm - axis * (arm % axis)).sq_norm();
    }
    largest =
        std::max(largest, std::fabs(sum / static_cast<double>(cloud.n_rows()) - principal.moments[k]));
  }
  checks.at_most("moments are the mean squared distances", largest, 2.0 * bound, "kg mm^2");
}

void check_turned(Checks& checks, const TnLaDblMat& cloud, const PrincipalAxes& principal, double bound) {
  PrincipalAxes again;
  const bool converged = principal_axes(inertia(turned(cloud)).tensor, again);
  double largest = converged ? 0.0 : INFINITY;
  for (std::size_t k = 0; k < 3; ++k) {
    largest = std::max(largest, std::fabs(again.moments[k] - principal.moments[k]));
  }
  checks.at_most("moments of the body turned by 60 degrees", largest, 2.0 * bound, "kg mm^2");
}

std::string with_moment(const char* axis, double moment) {
  char words[64];
  std::snprintf(words, sizeof words, "%s, moment %.1f kg mm\u00b2", axis, moment);
  return words;
}

// Axis 3 to the right and axis 2 upwards: the cloud is widest along the axes of the small moments.
void draw(const std::string& path, const TnLaDblMat& along_axes, const PrincipalAxes& principal) {
  const Interval right = extent(along_axes, 2);
  const Interval up = extent(along_axes, 1);
  const double space = 0.1 * (right.high - right.low);
  std::vector<Point> points;
  for (std::size_t i = 0; i < along_axes.n_rows(); ++i)
    points.push_back({along_axes(i, 2), along_axes(i, 1)});

  Drawing drawing("A cloud of points, seen along its first principal axis",
                  {{right.low - space, up.low - space}, {right.high + space, up.high + space}});
  drawing.dots(points, 2.0, Style::data);
  drawing.line({{right.low - 0.5 * space, 0.0}, {right.high + 0.5 * space, 0.0}}, Style::curve);
  drawing.text({right.high + 0.1 * space, 0.15 * space}, "axis 3");
  drawing.line({{0.0, up.low - 0.5 * space}, {0.0, up.high + 0.5 * space}}, Style::second);
  drawing.text({0.1 * space, up.high + 0.3 * space}, "axis 2");
  drawing.dots({{0.0, 0.0}}, 5.0, Style::accent);
  drawing.explain_dots(Style::data, std::to_string(points.size()) + " points of the body");
  drawing.explain(Style::curve, with_moment("axis 3", principal.moments[2]));
  drawing.explain(Style::second, with_moment("axis 2", principal.moments[1]));
  drawing.explain_dots(Style::accent, "centre of mass; into the picture goes " +
                                          with_moment("axis 1", principal.moments[0]));
  drawing.write(path);
  std::printf("\nPicture: %s\n", path.c_str());
}

int run(const Arguments& arguments) {
  const std::string path = arguments.file.empty() ? kBracket : arguments.file;
  const TnLaDblMat cloud = read_cloud(path);
  const Inertia body = inertia(cloud);
  PrincipalAxes principal;
  if (!principal_axes(body.tensor, principal)) throw DataError(path + ": the iteration does not converge");

  // What rounding can do to a moment.
  const double bound = rounding_of_tensor(cloud) + 2.0 * kRoundingOfAxes * norm(body.tensor);
  if (!(principal.moments[2] > std::max(bound, kSmallestMoment))) {
    throw DataError(path + ": the points lie on a line, or in one place, as far as rounding lets see");
  }
  const TnLaDblMat along_axes = body.centred * principal.axes;
  print_table(body, principal, along_axes);
  for (std::size_t k = 0; k < 2; ++k) {
    if (principal.moments[k] - principal.moments[k + 1] > bound) continue;
    std::printf(
        "  The moments of axes %zu and %zu are equal: so is that of any other axis between them.\n\n",
        k + 1, k + 2);
  }
  Checks checks;
  check_axes(checks, body.tensor, principal);
  check_definition(checks, cloud, principal, bound);
  check_turned(checks, cloud, principal, bound);
  draw(arguments.picture, along_axes, principal);
  return checks.exit_code();
}

}  // namespace

int main(int argc, char** argv) {
  try {
    return run(parse_arguments(argc, argv, "principal_axes", Input::file));
  } catch (const DataError& problem) {
    std::fprintf(stderr, "%s\n", problem.what());
    return 2;
  }
}
