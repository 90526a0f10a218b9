#include "tnla_util.h"

#include <algorithm>
#include <cmath>

#include "kernels/elementwise.h"
#include "kernels/reductions.h"
#include "tnla_util_i.h"
#include "tnlahouseholder_i.h"

namespace {

// Sums of squares and scalar products of a smaller magnitude are returned as 0.0.
constexpr double kZeroSum = 1e-40;

// A squared distance below this fraction of the squared reference length is returned as 0.0.
constexpr double kZeroDistance = 1e-24;

double flushed(double sum) { return sum < kZeroSum ? 0.0 : sum; }

// 1/|x| if `unit` and x is not numerically zero; 1 otherwise.
double unit_factor(bool unit, int n, const double* x) {
  if (!unit) return 1.0;
  const double q = tnla_sq_length(n, x);
  return q > 0.0 ? 1.0 / std::sqrt(q) : 1.0;
}

// a / |x| if `unit` and x is not numerically zero; a otherwise.
double unit_coefficient(double a, bool unit, int n, const double* x) {
  if (!unit) return a;
  const double q = tnla_sq_length(n, x);
  return q > 0.0 ? a / std::sqrt(q) : a;
}

// res = res / |x|; zero if x is numerically zero.
void scale_by_unit(int n, const double* x, double* res) {
  const double q = tnla_sq_length(n, x);
  tnla_kernels::scale(n, res, q > 0.0 ? 1.0 / std::sqrt(q) : q, res);
}

void crossprod_3(const double* u, const double* w, double* res) {
  res[0] = u[1] * w[2] - u[2] * w[1];
  res[1] = w[0] * u[2] - u[0] * w[2];
  res[2] = u[0] * w[1] - u[1] * w[0];
}

// H1 turns u into e0, H2 H1 turns w into the plane of e0 and e1; e2, turned back, is orthogonal to both.
void crossprod_by_reflections(int n, const double* u, const double* w, double* res) {
  std::copy_n(u, n, res);
  const TnLaHouseholder h1(0, 1, n, res, 1);
  const double u_length = res[0];

  std::copy_n(w, n, res);
  h1.apply(res, 1);
  const TnLaHouseholder h2(1, 2, n, res, 1);
  const double w_height = res[1];

  std::fill_n(res, n, 0.0);
  res[2] = w_height * u_length;
  h2.apply(res, 1);
  h1.apply(res, 1);
}

}  // namespace

double tnla_sq_length(tnla_kernels::Index n, const double* x) {
  return flushed(tnla_kernels::sum_of_squares(n, x));
}

double tnla_sq_norm(int n, const double* x, const double* y) {
  if (y == nullptr) return tnla_sq_length(n, x);
  const tnla_kernels::Distance d = tnla_kernels::distance(n, x, y);
  if (d.reference * kZeroDistance > d.squared) return 0.0;
  return flushed(d.squared);
}

double tnla_norm(int n, const double* x, const double* y) { return std::sqrt(tnla_sq_norm(n, x, y)); }

double tnla_scalprod(int n, const double* x, const double* y, bool unit_x, bool unit_y) {
  const double fx = unit_factor(unit_x, n, x);
  const double fy = unit_factor(unit_y, n, y);
  const double sum = tnla_kernels::scaled_dot(n, x, y, fy * fx);
  return std::fabs(sum) < kZeroSum ? 0.0 : sum;
}

void tnla_lincomb(int n, const double* x, double a, const double* y, double b, double* res, bool unit_x,
                  bool unit_y, bool unit_res) {
  const double ax = unit_coefficient(a, unit_x, n, x);
  const double by = unit_coefficient(b, unit_y, n, y);
  tnla_kernels::combine(n, x, ax, y, by, res);
  if (unit_res) tnla_normalize(n, res);
}

void tnla_crossprod(int n, const double* u, const double* w, double* res, bool unit_u, bool unit_w,
                    bool unit_res) {
  if (n < 3) return;
  if (n == 3) {
    crossprod_3(u, w, res);
  } else {
    crossprod_by_reflections(n, u, w, res);
  }
  if (unit_u) scale_by_unit(n, u, res);
  if (unit_w) scale_by_unit(n, w, res);
  if (unit_res) tnla_normalize(n, res);
}

double tnla_normalize(int n, double* x) {
  const double q = tnla_sq_length(n, x);
  if (q == 0.0) {
    std::fill_n(x, n, 0.0);
    return 0.0;
  }
  const double length = std::sqrt(q);
  tnla_kernels::divide(n, x, length, x);
  return length;
}

void tnla_ortho_vec(int n, const double* x, double* res) {
  if (n < 2) return;
  const double q = tnla_sq_length(n, x);
  if (q == 0.0) {
    std::fill_n(res, n, 0.0);
    res[0] = 1.0;
    return;
  }
  int k = 0;
  for (int i = 1; i < n; ++i) {
    if (std::fabs(x[k]) > std::fabs(x[i])) k = i;
  }
  tnla_kernels::scale(n, x, -x[k] / q, res);
  res[k] += 1.0;
  tnla_normalize(n, res);
}
