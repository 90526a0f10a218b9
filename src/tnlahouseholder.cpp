// SPDX-License-Identifier: MIT

#include <algorithm>
#include <cstdlib>
#include <limits>

#include "kernels/kernel_set.h"
#include "tnla_access.h"
#include "tnlahouseholder_i.h"

using tnla_kernels::Index;

namespace {

constexpr char kFile[] = "src/tnlahouseholder.cpp";

bool valid_range(int j_pivot, int j_zero, int n) { return 0 <= j_pivot && j_pivot < j_zero && j_zero <= n; }

// No element belongs to two of the vectors: each lies beyond the one before it, or they are interleaved.
bool share_nothing(Index n, Index incr, Index stride, Index n_vec) {
  const Index reach = std::abs(incr) * n;
  return stride != 0 && (std::abs(stride) >= reach || std::abs(incr) > std::abs(stride) * (n_vec - 1));
}

// One step further in, without overflow.
int indented(int indent) {
  const int step = Tn_DebugIndentStep();
  return indent > std::numeric_limits<int>::max() - step ? indent : indent + step;
}

}  // namespace

void tnla_h1(int j_pivot, int j_zero, int n, double* v, int incr, double& up) {
  TN_ASSERT(kFile, valid_range(j_pivot, j_zero, n));
  if (j_zero == n) return;
  tnla_kernels::best.reflection.make(v[Index{j_pivot} * incr], Index{n} - j_zero, v + Index{j_zero} * incr,
                                     incr, up);
}

void tnla_h2(int j_pivot, int j_zero, int n, const double* u, int incr_u, const double& up, double* c,
             int incr_c, int stride_vec, int n_vec) {
  const bool valid = valid_range(j_pivot, j_zero, n);
  TN_ASSERT(kFile, valid);
  if (n_vec < 1 || j_zero == n) return;
  const double pivot_entry = up;
  const double product = u[Index{j_pivot} * incr_u] * pivot_entry;
  if (tnla_kernels::kNoReflection > -product) return;  // this way round, so that a NaN goes on
  const int at_once = valid && share_nothing(n, incr_c, stride_vec, n_vec) ? n_vec : 1;
  for (int k = 0; k < n_vec; k += at_once) {
    double* const w = c + Index{k} * stride_vec;
    tnla_kernels::best.reflection.reflect(pivot_entry, u + Index{j_zero} * incr_u, incr_u,
                                          Index{n} - j_zero, 1.0 / product, w + Index{j_pivot} * incr_c,
                                          w + Index{j_zero} * incr_c, incr_c, stride_vec, at_once);
  }
}

TnLaHouseholder::TnLaHouseholder(int j_pivot, int j_zero, int n, double* v, int incr)
    : j_pivot_(j_pivot), j_zero_(j_zero), scale_(0.0) {
  u_.set_size(static_cast<std::size_t>(n), false);
  const bool has_pivot = j_pivot >= 0 && j_pivot < n;
  TN_ASSERT("interfaces/tnarray_i.h", has_pivot);
  if (!has_pivot || j_zero < 0) {  // beyond u: no valid range, as in tnla_h1, and the identity
    TN_ASSERT(kFile, false);
    return;
  }
  double* const u = u_.data();
  double& pivot = v[Index{j_pivot} * incr];
  tnla_h1(j_pivot, j_zero, n, v, incr, u[j_pivot]);
  scale_ = tnla_kernels::reflection_scale(pivot, u[j_pivot]);
  for (Index i = j_zero; i < n; ++i) {
    u[i] = v[i * incr];
    v[i * incr] = 0.0;
  }
}

TnLaHouseholder::TnLaHouseholder(int j_pivot, int j_zero, int n, const double* range, double up,
                                 double scale)
    : j_pivot_(j_pivot), j_zero_(j_zero), scale_(scale) {
  u_.set_size(static_cast<std::size_t>(n), false);
  u_[static_cast<std::size_t>(j_pivot)] = up;
  std::copy_n(range, n - j_zero, u_.data() + j_zero);
}

TnLaHouseholder::TnLaHouseholder(const TnLaHouseholder& other) = default;

TnLaHouseholder& TnLaHouseholder::operator=(const TnLaHouseholder& other) {
  u_ = other.u_;  // first: it may throw, and the indices have to fit it
  j_pivot_ = other.j_pivot_;
  j_zero_ = other.j_zero_;
  scale_ = other.scale_;
  return *this;
}

TnLaHouseholder::~TnLaHouseholder() = default;

void TnLaHouseholder::apply(double* w, int incr) const { TnLaAccess::reflect(*this, w, incr, 0, 1); }

void TnLaHouseholder::debug(TnJournal& journal, int indent) const {
  const TnString inner = tn_blankstring(indented(indent));
  const TnString outer = tn_blankstring(indent);
  journal << outer << "Housholder transformation begin {\n\n";  // spelt so since its first release
  for (std::size_t i = 0; i < u_.size(); ++i) {
    journal << inner << u_[i];
    if (static_cast<Index>(i) == j_pivot_) journal << " ... j_pivot_";
    if (static_cast<Index>(i) == j_zero_) journal << " ... j_zero_";
    journal << tnEndExpr;
  }
  journal << tnEndExpr << inner << "-2./<u_, u_> = " << scale_ << tnEndExpr;
  journal << "\n" << outer << "TnLaHouseholder end   }\n";
}
