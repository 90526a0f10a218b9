// SPDX-License-Identifier: MIT

// Joining curves: one jet gets the speed of another.
//
//   curve_join [--picture FILE.svg]
//
// Two pieces of a curve meet.  The second may have any parameter: it is then the same curve, but its
// derivatives at the join do not say so.  tnla_util_adapt_jet changes the parameter so that they do, as far
// as a change of parameter can.
//
// Exits with 0 if what is left is what should be left, with 1 if not, with 2 if the command line is wrong
// or the picture cannot be written.

#include <tarntnla.h>

#include <cmath>
#include <complex>
#include <cstdio>
#include <exception>
#include <vector>

#include "common/arguments.h"
#include "common/checks.h"
#include "curves.h"
#include "picture.h"

namespace {

using curves::Complex;

constexpr int kOrder = 3;
constexpr const char* kNames[] = {"x", "x'", "x''", "x'''"};

// A join with the spiral, and what the derivatives of the adapted piece minus the spiral's should be.
struct Join {
  const char* name;
  TnLaDblMat jet;
  bool linear_only;
  Complex left[kOrder + 1];
};

// On the spiral itself, nothing is left.  A linear change of parameter leaves phi'' and phi''', scaled. The
// circle's curvature does not change, the spiral's grows by 1 / (4 |b|^2) per unit length: |b|^3 times that
// is the part of the spiral's x''' that no parameter gives to the circle's.  It is |b| / 4 long, across x'.
std::vector<Join> joins() {
  using namespace curves;
  const Complex left_2 = kB * (kPhi2 / (kPhi1 * kPhi1));
  const Complex left_3 = (3.0 * kPhi1 * kPhi2 * kB * kB + kPhi3 * kB) / (kPhi1 * kPhi1 * kPhi1);
  const Complex across = Complex{0.0, -0.25} * kB;
  return {
      {"the same spiral, z = (1 - s/2)^(-5b/4)", other_spiral_jet(), false, {0.0, 0.0, 0.0, 0.0}},
      {"the same, by a linear change of parameter", other_spiral_jet(), true, {0.0, 0.0, left_2, left_3}},
      {"the circle of the same curvature", circle_jet(), false, {0.0, 0.0, 0.0, across}}};
}

// A bound for the rounding errors of derivative k, after it is adapted.
//
// With 2 coordinates, a sum of products errs by 2 roundoffs of its terms' size and lambda = |r'| / |x'| by
// 5.  Counted through the formulas in tnla_util_adapt_jet_i.h, column 1 errs by 6 roundoffs of its size at
// most, column 2 by 35, column 3 by 69; the size is that of all terms that are added up.  What should be
// left, and the difference to it, take 8 more.
double rounding_bound(const TnLaDblMat& jet, const TnLaDblMat& ref, std::size_t k) {
  constexpr double kRoundoffs[] = {0.0, 6.0 + 8.0, 35.0 + 8.0, 69.0 + 8.0};
  double c[kOrder + 1];
  double r[kOrder + 1];
  for (std::size_t i = 0; i <= kOrder; ++i) {
    c[i] = std::abs(curves::derivative(jet, i));
    r[i] = std::abs(curves::derivative(ref, i));
  }
  const double lambda = r[1] / c[1];
  const double size_2 = r[2] + lambda * lambda * c[2];
  const double size_3 = r[3] + lambda * lambda * lambda * c[3] + 3.0 * lambda * c[2] * size_2 / c[1];
  const double sizes[] = {0.0, r[1], size_2, size_3};
  const double errors = kRoundoffs[k] * 0x1p-53;
  return errors / (1.0 - errors) * sizes[k];
}

// Without the sign of what rounds to 0.
double printed(double x) { return std::fabs(x) < 5e-7 ? 0.0 : x; }

void print_pair(Complex z) { std::printf("  %9.6f %9.6f", printed(z.real()), printed(z.imag())); }

TnLaDblMat adapted(const Join& join) {
  TnLaDblMat jet = join.jet;
  tnla_util_adapt_jet(nullptr, kOrder, jet, curves::spiral_jet(), join.linear_only, nullptr);
  return jet;
}

// Prints the derivatives, and checks what is left.
void run(const Join& join, Checks& checks) {
  const TnLaDblMat ref = curves::spiral_jet();
  const TnLaDblMat jet = adapted(join);
  std::printf("\nThen comes %s\n", join.name);
  std::printf("  %-4s  %19s  %19s  %19s  %19s  %8s  %8s\n", "", "spiral", "before", "adapted",
              "left along, across", "error", "bound");
  bool right = true;
  for (std::size_t k = 0; k <= kOrder; ++k) {
    const Complex target = curves::derivative(ref, k);
    const Complex left = curves::derivative(jet, k) - target;
    const double error = std::abs(left - join.left[k]);
    const double bound = rounding_bound(join.jet, ref, k);
    right = right && error <= bound;
    std::printf("  %-4s", kNames[k]);
    print_pair(target);
    print_pair(curves::derivative(join.jet, k));
    print_pair(curves::derivative(jet, k));
    print_pair(left * std::conj(curves::kB) / std::abs(curves::kB));
    std::printf("  %8.1e  %8.1e\n", error, bound);
  }
  checks.is_true("every error is within its bound", right);
}

}  // namespace

int main(int argc, char** argv) {
  const Arguments arguments = parse_arguments(argc, argv, "curve_join", Input::none);
  try {
    std::printf("A spiral, z = exp(b t) with b = -1/4 + i, up to the join at t = 0.  Derivatives there:\n");
    std::printf(
        "left = adapted - spiral, along x' and across it; error = how far that is from the truth\n");
    Checks checks;
    for (const Join& join : joins()) run(join, checks);
    draw_join(adapted(joins()[0]), arguments.picture);
    std::printf("\nPicture: %s\n", arguments.picture.c_str());
    return checks.exit_code();
  } catch (const std::exception& problem) {
    std::fflush(stdout);
    std::fprintf(stderr, "%s\n", problem.what());
    return 2;
  }
}
