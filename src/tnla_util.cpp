// SPDX-License-Identifier: MIT

#include "tnla_util.h"

#include <algorithm>
#include <cmath>

#include "kernels/kernel_set.h"
#include "kernels/reductions.h"
#include "tnla_access.h"
#include "tnla_i.h"
#include "tnla_util_adapt_jet_i.h"
#include "tnla_util_i.h"
#include "tnlahouseholder_i.h"

using tnla_kernels::Index;

namespace {

constexpr char kFile[] = "src/tnla_util.cpp";

// Sums of squares and scalar products of a smaller magnitude are returned as 0.0.
constexpr double kZeroSum = 1e-40;

// A squared distance below this fraction of the squared reference length is returned as 0.0.
constexpr double kZeroDistance = 1e-24;

// A curve does not move where the length of its first derivative, or for the second its square, is not
// above this.
constexpr double kNoSpeed = 1e-20;

double flushed(double sum) { return sum < kZeroSum ? 0.0 : sum; }

struct TwoSquares {
  double x;
  double y;
};

// The squared lengths of the vectors whose flag is set, as tnla_sq_norm gives them.  0.0 for the others.
TwoSquares squares(int n, const double* x, bool of_x, const double* y, bool of_y) {
  if (of_x && of_y) {
    const tnla_kernels::TwoSums sums = tnla_kernels::sums_of_squares(n, x, y);
    return {flushed(sums.x), flushed(sums.y)};
  }
  return {of_x ? tnla_sq_length(n, x) : 0.0, of_y ? tnla_sq_length(n, y) : 0.0};
}

// 1/|x| for the square of |x|; 1 if that is zero.
double unit_factor(double q) { return q > 0.0 ? 1.0 / std::sqrt(q) : 1.0; }

// a / |x| for the square of |x|; a if that is zero.
double unit_coefficient(double a, double q) { return q > 0.0 ? a / std::sqrt(q) : a; }

// res = res / |x|; zero if x is numerically zero.
void scale_by_unit(int n, const double* x, double* res) {
  const double q = tnla_sq_length(n, x);
  tnla_kernels::best.elementwise.scale(n, res, q > 0.0 ? 1.0 / std::sqrt(q) : q, res);
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

// --- Jets ----------------------------------------------------------------------------------------------

// The columns of a jet, each contiguous.
struct Jet {
  const double* elements;
  std::size_t rows;
  const double* operator[](std::size_t k) const { return elements + k * rows; }
};

Index last_derivative(const TnLaDblMat& jet) { return static_cast<Index>(jet.n_cols()) - 1; }

// The first `needed` elements of an array.  Where it ends before that, a copy in which zeros go on.
const double* zero_extended(const TnArray<double>& a, std::size_t needed, TnArray<double>& copy) {
  if (needed <= a.size()) return a.data();
  copy = a;
  copy.set_size(needed, true);
  return copy.data();
}

// The derivatives of a change of parameter.
struct ParameterChange {
  double lambda = 1.0;
  double mu2 = 0.0;
  double mu3 = 0.0;
};

// Whether x' is turned round: as the caller says, or else as the scalar product says.
bool reverses(double product, int* orientation) {
  if (orientation == nullptr) return product < 0.0;
  if (*orientation == 0) *orientation = product < 0.0 ? -1 : 1;
  return *orientation < 0;
}

// The first derivative gets the length of the reference's.  False if it has none itself.
bool match_speed(int n, const Jet& jet, const Jet& ref, int* orientation, ParameterChange& phi) {
  const double length = tnla_norm(n, jet[1], nullptr);
  const double ref_length = tnla_norm(n, ref[1], nullptr);
  if (length <= kNoSpeed) return false;
  phi.lambda = ref_length / length;
  if (reverses(tnla_scalprod(n, jet[1], ref[1]), orientation)) phi.lambda = -phi.lambda;
  return true;
}

// The second and third derivatives get the components along x' of the reference's.  False if x' is too
// short.
bool match_components(int n, int order, const Jet& jet, const Jet& ref, ParameterChange& phi) {
  const double q = tnla_sq_norm(n, jet[1], nullptr);
  if (q <= kNoSpeed) return false;
  TnLaDblVec missing(n, 0, 0.0);
  double* const w = TnLaAccess::elements(missing);

  const double square = phi.lambda * -1.0 * phi.lambda;
  tnla_lincomb(n, ref[2], 1.0, jet[2], square, w);
  phi.mu2 = tnla_scalprod(n, w, jet[1]) / q;
  if (order < 3) return true;

  const double cube = square * phi.lambda;
  tnla_lincomb(n, ref[3], 1.0, jet[3], cube, w);
  tnla_lincomb(n, w, 1.0, jet[2], phi.lambda * -3.0 * phi.mu2, w);
  phi.mu3 = tnla_scalprod(n, w, jet[1]) / q;
  return true;
}

// The column in the middle term of the third derivative.
std::size_t middle_column(TnOperationBehaviour* behaviour) {
  constexpr int kOperation = 0;
  constexpr std::int16_t kVersion = 1;
  if (behaviour == nullptr) return 2;
  return behaviour->behaviour_level(TnLa::package_id(), kOperation, kVersion) < 1 ? 1 : 2;
}

}  // namespace

double tnla_sq_length(Index n, const double* x) { return flushed(tnla_kernels::dot(n, x, x)); }

double tnla_sq_norm(int n, const double* x, const double* y) {
  if (y == nullptr) return tnla_sq_length(n, x);
  const tnla_kernels::Distance d = tnla_kernels::distance(n, x, y);
  if (d.reference * kZeroDistance > d.squared) return 0.0;
  return flushed(d.squared);
}

double tnla_norm(int n, const double* x, const double* y) { return std::sqrt(tnla_sq_norm(n, x, y)); }

double tnla_scalprod(int n, const double* x, const double* y, bool unit_x, bool unit_y) {
  double sum;
  if (unit_x || unit_y) {
    const TwoSquares q = squares(n, x, unit_x, y, unit_y);
    sum = tnla_kernels::scaled_dot(n, x, y, unit_factor(q.y) * unit_factor(q.x));
  } else {
    sum = tnla_kernels::dot(n, x, y);  // 1.0 * x[i] is x[i]
  }
  return std::fabs(sum) < kZeroSum ? 0.0 : sum;
}

void tnla_lincomb(int n, const double* x, double a, const double* y, double b, double* res, bool unit_x,
                  bool unit_y, bool unit_res) {
  if (unit_x || unit_y) {
    const TwoSquares q = squares(n, x, unit_x, y, unit_y);
    a = unit_coefficient(a, q.x);
    b = unit_coefficient(b, q.y);
  }
  tnla_kernels::best.elementwise.combine(n, x, a, y, b, res);
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
  tnla_kernels::best.elementwise.divide(n, x, length, x);
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
  tnla_kernels::best.elementwise.scale(n, x, -x[k] / q, res);
  res[k] += 1.0;
  tnla_normalize(n, res);
}

void tnla_util_adapt_jet(TnOperationBehaviour* behaviour, int order, TnLaDblMat& jet, const TnLaDblMat& ref,
                         bool linear_only, int* orientation) {
  TN_ASSERT(kFile, jet.n_rows() == ref.n_rows());
  TN_ASSERT(kFile, last_derivative(jet) >= order);
  TN_ASSERT(kFile, last_derivative(ref) >= order);
  order = static_cast<int>(std::min({Index{order}, Index{3}, last_derivative(jet)}));
  if (order < 1) return;

  const std::size_t rows = jet.n_rows();
  const int n = static_cast<int>(rows);
  const Jet c{TnLaAccess::elements(jet), rows};
  TnArray<double> extended;
  const std::size_t ref_rows = ref.empty() ? rows : ref.n_rows();  // of no columns, any number is nothing
  const std::size_t needed = static_cast<std::size_t>(order) * ref_rows + rows;
  const Jet r{zero_extended(ref.array(), needed, extended), ref_rows};
  ParameterChange phi;
  if (!match_speed(n, c, r, orientation, phi)) return;
  if (!linear_only && order >= 2 && !match_components(n, order, c, r, phi)) return;

  const std::size_t middle = order >= 3 ? middle_column(behaviour) : 2;
  if (jet.n_rows() != rows || last_derivative(jet) < order) return;  // the answer is the client's code
  double* const x = TnLaAccess::elements(jet);
  double* const c1 = x + rows;
  double* const c2 = c1 + rows;
  double* const c3 = c2 + rows;
  // The highest derivative first: each reads the lower ones as they were.
  const double square = phi.lambda * phi.lambda;
  if (order >= 3) {
    tnla_lincomb(n, c3, square * phi.lambda, x + middle * rows, phi.lambda * 3.0 * phi.mu2, c3);
    tnla_lincomb(n, c3, 1.0, c1, phi.mu3, c3);
  }
  if (order >= 2) tnla_lincomb(n, c2, square, c1, phi.mu2, c2);
  tnla_kernels::best.elementwise.scale(n, c1, phi.lambda, c1);
}
