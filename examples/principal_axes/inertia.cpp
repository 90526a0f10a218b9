// SPDX-License-Identifier: MIT

#include "inertia.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double kRounding = DBL_EPSILON / 2.0;

// The component of largest magnitude in column j.
double largest_component(const TnLaDblMat& A, std::size_t j) {
  double largest = 0.0;
  for (std::size_t i = 0; i < A.n_rows(); ++i) {
    if (std::fabs(A(i, j)) > std::fabs(largest)) largest = A(i, j);
  }
  return largest;
}

void turn_round(TnLaDblMat& axes, std::size_t j) {
  for (std::size_t i = 0; i < 3; ++i) axes(i, j) = -axes(i, j);
}

}  // namespace

Inertia inertia(const TnLaDblMat& cloud) {
  const std::size_t n = cloud.n_rows();
  const double weight = 1.0 / static_cast<double>(n);
  Inertia result{{}, cloud, {}};
  for (std::size_t j = 0; j < 3; ++j) {
    double sum = 0.0;
    for (std::size_t i = 0; i < n; ++i) sum += cloud(i, j);
    result.centre[j] = sum * weight;
    for (std::size_t i = 0; i < n; ++i) result.centred(i, j) -= result.centre[j];
  }
  const TnLaDblMat second_moments = result.centred.tr() * result.centred * weight;
  const double trace = second_moments(0, 0) + second_moments(1, 1) + second_moments(2, 2);
  result.tensor = TnLaDblMat(3, 3, trace) - second_moments;
  return result;
}

// s is the largest distance of a point from the origin, u one rounding.  The centre is wrong by at most
// (n + 2) u s, and a point seen from there, at most 2 s away, by a little more; where the cloud has been
// turned before, 9 u s come from that.  A mean of n products is then wrong by less than 8 (n + 12) u s^2,
// an element of the tensor on the diagonal by four times as much, and the tensor by less than sqrt(3 * 32^2
// + 6 * 8^2) < 60 times (n + 12) u s^2.
double rounding_of_tensor(const TnLaDblMat& cloud) {
  double largest = 0.0;
  for (std::size_t i = 0; i < cloud.n_rows(); ++i) {
    largest = std::max(largest, std::hypot(cloud(i, 0), cloud(i, 1), cloud(i, 2)));
  }
  return 60.0 * static_cast<double>(cloud.n_rows() + 12) * kRounding * largest * largest;
}

bool principal_axes(const TnLaDblMat& tensor, PrincipalAxes& result) {
  TnLaDblMat work = tensor;
  if (!tnla_eigenvector_basis(work, result.moments, result.axes)) return false;
  // The signs are free: the largest component is to be positive, and the third axis such that the triad is
  // right-handed.
  for (std::size_t j = 0; j < 3; ++j) {
    if (largest_component(result.axes, j) < 0.0) turn_round(result.axes, j);
  }
  if (result.axes.det() < 0.0) turn_round(result.axes, 2);
  return true;
}
