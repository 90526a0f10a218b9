// SPDX-License-Identifier: MIT

#include "tnla_exceptional.h"

#include <algorithm>

#include "kernels/kernel_set.h"
#include "tnla_access.h"
#include "tnla_linearsolve_i.h"
#include "tnla_workspace.h"
#include "tnlaqrdecompo_i.h"

using tnla_kernels::Index;

namespace {

TnLaDblMat zeros(Index rows, Index cols) {
  return {static_cast<std::size_t>(rows), static_cast<std::size_t>(cols), 0.0};
}

bool has_shape(const TnLaDblMat& A, std::size_t rows, std::size_t cols) {
  return A.n_rows() == rows && A.n_cols() == cols;
}

// A system that is written out in full, for the unknowns from `begin` on.
struct FullSystem {
  TnLaDblMat A;
  TnLaDblMat B;
  Index begin;

  FullSystem(Index rows, Index from, Index end, Index n_rhs)
      : A(zeros(rows, end - from)), B(zeros(rows, n_rhs)), begin(from) {}

  // Rows begin, begin + 1, ... of the triangle go to the top.
  void put(const TnLaBand& triangle) {
    for (Index row = begin; row < std::min(triangle.n_rows(), triangle.n()); ++row) {
      const Index unknown = triangle.first_unknown(row);
      for (Index c = 0; c < triangle.bandwidth(); ++c) {
        double* const place = tnla_element_or_null(A, row - begin, unknown - begin + c);
        if (place != nullptr) *place = element(triangle.G(), row, c);
      }
      put_rhs(row - begin, triangle.G(), row, triangle.bandwidth());
    }
    for (Index row = triangle.n(); row < std::min(triangle.n_rows(), triangle.front()); ++row) {
      tnla_element_or_null(A, row - begin, row - begin);
    }
  }

  // Row `from` of exceptional equations, whose `first` begins at the unknown `begin`.
  void put(Index row, const TnLaExceptional& equations, Index from, const TnLaBand& triangle) {
    const Index bandwidth = triangle.bandwidth();
    for (Index c = 0; c < bandwidth; ++c) {
      double* const place = tnla_element_or_null(A, row, c);
      if (place != nullptr) *place = element(equations.first, from, c);
    }
    for (Index c = 0; c < bandwidth; ++c) {
      double* const place = tnla_element_or_null(A, row, triangle.n() - bandwidth - begin + c);
      if (place != nullptr) *place += element(equations.last, from, c);
    }
    put_rhs(row, equations.rhs, from, 0);
  }

 private:
  static double element(const TnLaDblMat& M, Index i, Index j) {
    return M(static_cast<std::size_t>(i), static_cast<std::size_t>(j));
  }

  void put_rhs(Index row, const TnLaDblMat& from, Index from_row, Index from_col) {
    for (std::size_t k = 0; k < B.n_cols(); ++k) {
      B(static_cast<std::size_t>(row), k) = element(from, from_row, from_col + static_cast<Index>(k));
    }
  }
};

// Triangle and exceptional equations as one system.
bool solve_dense(const TnLaBand& triangle, const TnLaExceptional& equations, TnLaDblMat& x) {
  FullSystem system(triangle.n() + equations.count, 0, triangle.n(), triangle.n_rhs());
  system.put(triangle);
  for (Index e = 0; e < equations.count; ++e) system.put(triangle.n() + e, equations, e, triangle);
  return tnla_linearsolve(system.A, system.B, x);
}

// Eliminates unknown after unknown from the exceptional equations, by the triangle's row of that unknown,
// until only the last 2 NB - 1 are left.  What the rows acquire thereby for the last NB unknowns is the
// coupling.
//
// It works on contiguous copies of the equations,
//
//     [ first | last | right-hand sides ]     2 NB + R numbers, padded
//
// where unknown u stands in column u mod NB of `first`: no equation moves when it leaves an unknown behind.
class Elimination {
 public:
  Elimination(TnLaBand& triangle, TnLaExceptional& equations)
      : triangle_(triangle),
        equations_(equations),
        n_eliminated_(triangle.n() - 2 * triangle.bandwidth() + 1),
        coupling_(zeros(triangle.bandwidth(), n_eliminated_)),
        stride_(tnla_kernels::padded_band(2 * triangle.bandwidth() + triangle.n_rhs())),
        row_stride_(tnla_kernels::padded_band(triangle.bandwidth() + triangle.n_rhs())),
        scratch_((product(equations.count + 1, stride_ + 1) + product(kRowsTogether, row_stride_)) *
                 sizeof(double)),
        pivot_row_(scratch_.doubles()),
        copies_(pivot_row_ + stride_),
        u_(copies_ + equations.count * stride_),
        rows_(u_ + equations.count + 1) {
    triangle_.align(n_eliminated_);
  }

  bool solve(TnLaDblMat& x) {
    std::fill_n(pivot_row_, (equations_.count + 1) * stride_, 0.0);
    copy_equations([](double& copy, const double& element) { copy = element; }, 0);
    for (Index v = 0; v < n_eliminated_; v += kRowsTogether) {
      eliminate(v, std::min(v + kRowsTogether, n_eliminated_));
    }
    copy_equations([](const double& copy, double& element) { element = copy; }, n_eliminated_);
    return solve_rest(x) && triangle_.substitute_together(n_eliminated_, coupling(0), x) == 0;
  }

 private:
  static constexpr Index kRowsTogether = 32;  // of the triangle, copied at a time

  static std::size_t product(Index a, Index b) {
    return static_cast<std::size_t>(a) * static_cast<std::size_t>(b);
  }

  Index bandwidth() const { return triangle_.bandwidth(); }
  Index n_rhs() const { return triangle_.n_rhs(); }
  double* coupling(Index v) { return TnLaAccess::elements(coupling_) + v * bandwidth(); }

  // Calls copy(place in the copies, element) for all equations, whose `first` begins at unknown v.
  template <class Copy>
  void copy_equations(Copy copy, Index v) {
    const auto part = [&](TnLaDblMat& M, Index n_cols, auto column_of) {
      for (Index c = 0; c < n_cols; ++c) {
        double* const column = TnLaAccess::elements(M) + c * static_cast<Index>(M.n_rows());
        for (Index e = 0; e < equations_.count; ++e) copy(copies_[e * stride_ + column_of(c)], column[e]);
      }
    };
    part(equations_.first, bandwidth(), [&](Index c) { return (v + c) % bandwidth(); });
    part(equations_.last, bandwidth(), [&](Index c) { return bandwidth() + c; });
    part(equations_.rhs, n_rhs(), [&](Index k) { return 2 * bandwidth() + k; });
  }

  // The unknowns begin ... end-1.
  void eliminate(Index begin, Index end) {
    const tnla_kernels::BandKernels& band = tnla_kernels::best.band;
    double* const g = TnLaAccess::elements(triangle_.G()) + begin;
    const auto ldg = static_cast<Index>(triangle_.G().n_rows());
    const Index n_given = std::clamp(triangle_.n_rows() - begin, Index{0}, end - begin);
    band.gather(n_given, 0, bandwidth(), n_rhs(), g, ldg, rows_, row_stride_);
    std::fill(rows_ + n_given * row_stride_, rows_ + (end - begin) * row_stride_, 0.0);
    for (Index v = begin; v < end; ++v) {
      double* const row = rows_ + (v - begin) * row_stride_;
      const Index column = v % bandwidth();
      copy_in(row, column);
      band.eliminate(column, equations_.count, pivot_row_, copies_, stride_, u_);
      copy_out(row, column, coupling(v));
    }
    band.scatter(end - begin, bandwidth() + n_rhs(), 0, rows_, row_stride_, g, ldg);
  }

  // A row of the triangle, whose first unknown stands in `column`, becomes the pivot row.
  void copy_in(const double* row, Index column) {
    std::copy_n(row, bandwidth() - column, pivot_row_ + column);
    std::copy_n(row + bandwidth() - column, column, pivot_row_);
    std::fill_n(pivot_row_ + bandwidth(), bandwidth(), 0.0);
    std::copy_n(row + bandwidth(), n_rhs(), pivot_row_ + 2 * bandwidth());
  }

  void copy_out(double* row, Index column, double* coupling_row) const {
    std::copy_n(pivot_row_ + column, bandwidth() - column, row);
    std::copy_n(pivot_row_, column, row + bandwidth() - column);
    std::copy_n(pivot_row_ + bandwidth(), bandwidth(), coupling_row);
    std::copy_n(pivot_row_ + 2 * bandwidth(), n_rhs(), row + bandwidth());
  }

  // The rest of the triangle, a zero row for the pivot row, the exceptional equations.
  bool solve_rest(TnLaDblMat& x) const {
    const Index n = triangle_.n();
    const Index pivot_row = n - n_eliminated_;
    FullSystem system(pivot_row + 1 + equations_.count, n_eliminated_, n, n_rhs());
    system.put(triangle_);
    for (Index e = 0; e < equations_.count; ++e) system.put(pivot_row + 1 + e, equations_, e, triangle_);

    const TnLaTQRDecompo<TnLaDblMat> decomposition(system.A);
    TnLaDblMat rest;
    if (!decomposition.solve(system.B, rest)) return false;
    x.resize(static_cast<std::size_t>(n), rest.n_cols(), true);
    for (std::size_t k = 0; k < rest.n_cols(); ++k) {
      for (std::size_t i = 0; i < rest.n_rows(); ++i) {
        x(static_cast<std::size_t>(n_eliminated_) + i, k) = rest(i, k);
      }
    }
    return true;
  }

  TnLaBand& triangle_;
  TnLaExceptional& equations_;
  Index n_eliminated_;
  TnLaDblMat coupling_;  // column v is the row of unknown v
  Index stride_;
  Index row_stride_;
  TnLaWorkspace scratch_;
  double* pivot_row_;
  double* copies_;
  double* u_;
  double* rows_;  // of the triangle
};

}  // namespace

TnLaExceptional::TnLaExceptional(std::size_t most, std::size_t bandwidth, std::size_t n_rhs)
    : first(most, bandwidth, 0.0), last(most, bandwidth, 0.0), rhs(most, n_rhs, 0.0) {}

bool TnLaExceptional::fit(std::size_t most, std::size_t bandwidth, std::size_t n_rhs) const {
  return count <= static_cast<Index>(most) && has_shape(first, most, bandwidth) &&
         has_shape(last, most, bandwidth) && has_shape(rhs, most, n_rhs);
}

bool tnla_solve_with_exceptional(TnLaBand& triangle, TnLaExceptional& equations, TnLaDblMat& x) {
  const bool has_room_to_eliminate = triangle.bandwidth() >= 1 && triangle.n() >= 3 * triangle.bandwidth();
  return has_room_to_eliminate ? Elimination(triangle, equations).solve(x)
                               : solve_dense(triangle, equations, x);
}
