// SPDX-License-Identifier: MIT

#include "errors.h"

#include <algorithm>
#include <cmath>

namespace {

// 0 below 1e-20, as sq_norm is below 1e-40: what the bounds permit is larger by far.
double norm(const TnLaDblMat& A) { return std::sqrt(A.sq_norm()); }
double norm(const TnLaDblVec& x) { return std::sqrt(x.sq_norm()); }

}  // namespace

double roundings(double n) {
  constexpr double kRoundoff = 0x1p-53;
  return n * kRoundoff / (1.0 - n * kRoundoff);
}

double larger(double a, double b) { return std::isnan(a) || a > b ? a : b; }

double relative_residual(const TnLaDblVec& r, const TnLaDblMat& A, const TnLaDblVec& x,
                         const TnLaDblVec& f) {
  return norm(r) / (norm(A) * norm(x) + norm(f));
}

double cholesky_bound(double n) {
  return std::sqrt(n) * roundings(3.0 * n + 1.0) / (1.0 - roundings(n + 1.0)) + roundings(n + 1.0);
}

double reflection_bound(double n) { return roundings(4.0 * n * n) + roundings(n + 1.0); }

double distance_to_singular(const TnLaDblMat& D, const TnLaDblVec& d, const TnLaDblMat& V) {
  double nearest = INFINITY;
  for (int k = 0; k < d.dim(); ++k) nearest = std::min(nearest, std::fabs(d(k)));
  TnLaDblMat product = V;
  for (std::size_t k = 0; k < V.n_cols(); ++k) {
    for (std::size_t i = 0; i < V.n_rows(); ++i) product(i, k) *= d(static_cast<int>(k));
  }
  const double n = d.dim();
  const double residual = norm(D * V - product) + roundings(n + 1.0) * (norm(D) * norm(V) + norm(product));
  const double skew =
      norm(V.tr() * V - TnLaDblMat(V.n_cols(), V.n_cols(), 1.0)) + roundings(n + 1.0) * (n + 1.0);
  return nearest - (residual + 2.0 * norm(d) * skew) / (1.0 - skew);
}

double difference_bound(const TnLaDblMat& A, const TnLaDblVec& x, const TnLaDblVec& y, const TnLaDblVec& f,
                        double residual_bound, double distance) {
  return residual_bound * (norm(A) * (norm(x) + norm(y)) + 2.0 * norm(f)) / (distance * norm(y));
}
