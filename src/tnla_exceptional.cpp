#include "tnla_exceptional.h"

#include <algorithm>
#include <cmath>

#include "kernels/reductions.h"
#include "kernels/reflect.h"
#include "tnla_access.h"
#include "tnla_linearsolve_i.h"
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

// Eliminates unknown after unknown from the exceptional equations, by the triangle's row of that unknown,
// until only the last 2 NB - 1 are left.  What the rows acquire thereby for the last NB unknowns is the
// coupling.
class Elimination {
 public:
  Elimination(TnLaBand& triangle, TnLaExceptional& equations)
      : triangle_(triangle),
        equations_(equations),
        n_eliminated_(triangle.n() - 2 * triangle.bandwidth() + 1),
        coupling_(zeros(n_eliminated_, triangle.bandwidth())) {
    triangle_.align(n_eliminated_);
    for (TnLaDblMat* const part : {&equations_.first, &equations_.last, &equations_.rhs}) {
      part->insert_rows(0, 1);  // for the triangle's row
    }
  }

  bool solve(TnLaDblMat& x) {
    for (Index v = 0; v < n_eliminated_; ++v) {
      if (v > 0) advance();
      copy_in(v);
      eliminate();
      copy_out(v);
    }
    advance();
    return solve_rest(x) && back_substitute(x);
  }

 private:
  Index bandwidth() const { return triangle_.bandwidth(); }
  Index n_rhs() const { return triangle_.n_rhs(); }

  // `first` begins at the next unknown.
  void advance() {
    TnLaDblMat& first = equations_.first;
    const auto ld = static_cast<Index>(first.n_rows());
    double* const f = TnLaAccess::elements(first);
    for (Index c = 0; c + 1 < bandwidth(); ++c) {
      std::copy_n(f + (c + 1) * ld + 1, equations_.count, f + c * ld + 1);
    }
    std::fill_n(f + (bandwidth() - 1) * ld + 1, equations_.count, 0.0);
  }

  // Row v of the triangle becomes the pivot row.
  void copy_in(Index v) {
    const TnLaDblMat& G = triangle_.G();
    const bool given = v < triangle_.n_rows();
    const std::size_t row = static_cast<std::size_t>(v);
    const std::size_t nb = equations_.first.n_cols();
    for (std::size_t c = 0; c < nb; ++c) {
      equations_.first(0, c) = given ? G(row, c) : 0.0;
      equations_.last(0, c) = 0.0;
    }
    for (std::size_t k = 0; k < equations_.rhs.n_cols(); ++k) {
      equations_.rhs(0, k) = given ? G(row, nb + k) : 0.0;
    }
  }

  void eliminate() {
    const auto ld = static_cast<Index>(equations_.first.n_rows());
    double* const column = TnLaAccess::elements(equations_.first);
    tnla_kernels::ColumnReflection reflection(column, equations_.count);
    reflection.apply(column + ld, ld, bandwidth() - 1);
    reflection.apply(TnLaAccess::elements(equations_.last), ld, bandwidth());
    reflection.apply(TnLaAccess::elements(equations_.rhs), ld, n_rhs());
    reflection.finish();
  }

  void copy_out(Index v) {
    TnLaDblMat& G = triangle_.G();
    const std::size_t row = static_cast<std::size_t>(v);
    const std::size_t nb = equations_.first.n_cols();
    for (std::size_t c = 0; c < nb; ++c) {
      G(row, c) = equations_.first(0, c);
      coupling_(row, c) = equations_.last(0, c);
    }
    for (std::size_t k = 0; k < equations_.rhs.n_cols(); ++k) G(row, nb + k) = equations_.rhs(0, k);
  }

  // The rest of the triangle, a zero row for the pivot row, the exceptional equations.
  bool solve_rest(TnLaDblMat& x) const {
    const Index n = triangle_.n();
    const Index pivot_row = n - n_eliminated_;
    FullSystem system(pivot_row + 1 + equations_.count, n_eliminated_, n, n_rhs());
    system.put(triangle_);
    for (Index e = 1; e <= equations_.count; ++e) system.put(pivot_row + e, equations_, e, triangle_);

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

  bool back_substitute(TnLaDblMat& x) const {
    const TnLaDblMat& G = triangle_.G();
    const Index n = triangle_.n();
    const auto ld = static_cast<Index>(G.n_rows());
    for (Index k = 0; k < n_rhs(); ++k) {
      double* const column = TnLaAccess::elements(x) + k * n;
      for (Index v = n_eliminated_ - 1; v >= 0; --v) {
        const double* const row = TnLaAccess::elements(G) + v;
        if (std::fabs(row[0]) < kSmallestBandDiagonal) return false;
        const double in_band = tnla_kernels::dot(bandwidth() - 1, column + v + 1, row + ld, ld);
        const double coupled = tnla_kernels::dot(bandwidth(), column + n - bandwidth(),
                                                 TnLaAccess::elements(coupling_) + v, n_eliminated_);
        column[v] = (row[(bandwidth() + k) * ld] - in_band - coupled) / row[0];
      }
    }
    return true;
  }

  TnLaBand& triangle_;
  TnLaExceptional& equations_;
  Index n_eliminated_;
  TnLaDblMat coupling_;
};

}  // namespace

TnLaExceptional::TnLaExceptional(std::size_t most, std::size_t bandwidth, std::size_t n_rhs)
    : first(most, bandwidth, 0.0), last(most, bandwidth, 0.0), rhs(most, n_rhs, 0.0) {}

bool TnLaExceptional::fit(std::size_t most, std::size_t bandwidth, std::size_t n_rhs) const {
  return count <= static_cast<Index>(most) && has_shape(first, most, bandwidth) &&
         has_shape(last, most, bandwidth) && has_shape(rhs, most, n_rhs);
}

bool tnla_solve_dense(const TnLaBand& triangle, const TnLaExceptional& equations, TnLaDblMat& x) {
  FullSystem system(triangle.n() + equations.count, 0, triangle.n(), triangle.n_rhs());
  system.put(triangle);
  for (Index e = 0; e < equations.count; ++e) system.put(triangle.n() + e, equations, e, triangle);
  return tnla_linearsolve(system.A, system.B, x);
}

bool tnla_solve_structured(TnLaBand& triangle, TnLaExceptional& equations, TnLaDblMat& x) {
  return Elimination(triangle, equations).solve(x);
}
