// SPDX-License-Identifier: MIT

#pragma once

#include <cmath>

#include "simd.h"

// One rotation of the Jacobi method, its decisions and its angle.
namespace tnla_kernels::TNLA_SET {

inline constexpr double kNegligible = 100.0;  // times an element: lost beside the diagonal even so

// What a sweep does with an element.
struct SweepRule {
  double threshold;        // a smaller element, or an equal one, is left alone
  bool zeroes_negligible;  // what is lost beside both diagonal elements is zeroed without a rotation
};

// Adding g to x does not change x; of numbers or of vectors.
template <class T>
inline auto is_lost(const T& g, const T& x) {
  return x + g == x;
}

struct Rotation {
  double s;
  double tau;
};

// The pair (x, y), of numbers or of vectors.
template <class T>
inline void turn(const T& s, const T& tau, T& x, T& y) {
  const T old_x = x;
  x = old_x - s * (y + old_x * tau);
  y = y + s * (old_x - y * tau);
}

inline double tangent(double element, double g, double h) {
  if (is_lost(g, std::fabs(h))) return element / h;
  const double theta = 0.5 * h / element;
  const double t = 1.0 / (std::fabs(theta) + std::sqrt(theta * theta + 1.0));
  return theta < 0.0 ? -t : t;
}

}  // namespace tnla_kernels::TNLA_SET
