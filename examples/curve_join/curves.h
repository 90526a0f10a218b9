// SPDX-License-Identifier: MIT

#pragma once

#include <tarntnla.h>

#include <complex>

// The curves of the example, as complex numbers x + i y, each with its derivatives at the join in closed
// form.  The constants have so few bits that all derivatives are exact.
namespace curves {

using Complex = std::complex<double>;

// The logarithmic spiral z = exp(b t): its curvature is 1 / |z'|, and grows with t.
inline constexpr Complex kB{-0.25, 1.0};

// The same spiral for t = phi(s) = k log(1 + c s): z = (1 + c s)^(k b).
inline constexpr double kK = -1.25;
inline constexpr double kC = -0.5;

// phi', phi'', phi''' at the join.
inline constexpr double kPhi1 = kK * kC;
inline constexpr double kPhi2 = -kPhi1 * kC;
inline constexpr double kPhi3 = -2.0 * kPhi2 * kC;

// The circle of the spiral's curvature at the join, at constant speed: z = m + (1 - m) exp(i w s).
inline constexpr double kW = 1.5;

Complex spiral(double t);
Complex other_spiral(double s);

// Jets of order 3 at the join z = 1, where every parameter is 0: x in row 0, y in row 1.
TnLaDblMat spiral_jet();
TnLaDblMat other_spiral_jet();
TnLaDblMat circle_jet();

// Column k of a jet.
Complex derivative(const TnLaDblMat& jet, std::size_t k);

// The Taylor cubic of a jet.
Complex cubic(const TnLaDblMat& jet, double s);

}  // namespace curves
