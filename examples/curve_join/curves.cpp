// SPDX-License-Identifier: MIT

#include "curves.h"

namespace curves {

namespace {

TnLaDblMat jet_of(const Complex (&derivatives)[4]) {
  TnLaDblMat jet(2, 4, 0.0);
  for (std::size_t k = 0; k < 4; ++k) {
    jet(0, k) = derivatives[k].real();
    jet(1, k) = derivatives[k].imag();
  }
  return jet;
}

}  // namespace

Complex spiral(double t) { return std::exp(kB * t); }

Complex other_spiral(double s) { return spiral(kK * std::log(1.0 + kC * s)); }

TnLaDblMat spiral_jet() { return jet_of({1.0, kB, kB * kB, kB * kB * kB}); }

// The power rule, not the chain rule: a check on the latter.
TnLaDblMat other_spiral_jet() {
  const Complex a = kK * kB;
  return jet_of({1.0, a * kC, a * (a - 1.0) * kC * kC, a * (a - 1.0) * (a - 2.0) * kC * kC * kC});
}

// The centre is 1 + i z' / (curvature |z'|) = 1 + i b, as the curvature is 1 / |b|.
TnLaDblMat circle_jet() {
  const Complex iw{0.0, kW};
  const Complex radius = Complex{0.0, -1.0} * kB;
  return jet_of({1.0, radius * iw, radius * iw * iw, radius * iw * iw * iw});
}

Complex derivative(const TnLaDblMat& jet, std::size_t k) { return {jet(0, k), jet(1, k)}; }

Complex cubic(const TnLaDblMat& jet, double s) {
  const Complex high = derivative(jet, 2) / 2.0 + derivative(jet, 3) * (s / 6.0);
  return derivative(jet, 0) + s * (derivative(jet, 1) + s * high);
}

}  // namespace curves
