#include "tnla_exceptional.h"

#include <algorithm>
#include <cmath>

#include "kernels/reductions.h"
#include "tnla_access.h"
#include "tnla_column_reflection.h"
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
class Elimination {
 public:
  Elimination(TnLaBand& triangle, TnLaExceptional& equations)
      : triangle_(triangle),
        equations_(equations),
        n_eliminated_(triangle.n() - 2 * triangle.bandwidth() + 1),
        coupling_(zeros(n_eliminated_, triangle.bandwidth())),
        height_(static_cast<Index>(equations.first.n_rows()) + 1) {
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

  double* first() { return TnLaAccess::elements(equations_.first); }
  double* last() { return TnLaAccess::elements(equations_.last); }
  double* rhs() { return TnLaAccess::elements(equations_.rhs); }

  // `first` begins at the next unknown.
  void advance() {
    double* column = first() + 1;
    for (Index c = 0; c + 1 < bandwidth(); ++c, column += height_) {
      std::copy_n(column + height_, equations_.count, column);
    }
    std::fill_n(column, equations_.count, 0.0);
  }

  // Row v of the triangle becomes the pivot row.
  void copy_in(Index v) {
    const bool given = v < triangle_.n_rows();
    const double* const g = TnLaAccess::elements(triangle_.G()) + v;
    const auto ldg = static_cast<Index>(triangle_.G().n_rows());
    for (Index c = 0; c < bandwidth(); ++c) {
      first()[c * height_] = given ? g[c * ldg] : 0.0;
      last()[c * height_] = 0.0;
    }
    for (Index k = 0; k < n_rhs(); ++k) rhs()[k * height_] = given ? g[(bandwidth() + k) * ldg] : 0.0;
  }

  void eliminate() {
    TnLaColumnReflection reflection(first(), equations_.count);
    reflection.apply(first() + height_, height_, bandwidth() - 1);
    reflection.apply(last(), height_, bandwidth());
    reflection.apply(rhs(), height_, n_rhs());
    reflection.finish();
  }

  void copy_out(Index v) {
    double* const g = TnLaAccess::elements(triangle_.G()) + v;
    const auto ldg = static_cast<Index>(triangle_.G().n_rows());
    double* const t = TnLaAccess::elements(coupling_) + v;
    for (Index c = 0; c < bandwidth(); ++c) {
      g[c * ldg] = first()[c * height_];
      t[c * n_eliminated_] = last()[c * height_];
    }
    for (Index k = 0; k < n_rhs(); ++k) g[(bandwidth() + k) * ldg] = rhs()[k * height_];
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
    for (Index v = n_eliminated_ - 1; v >= 0; --v) {
      const double* const row = TnLaAccess::elements(G) + v;
      const double* const coupled_row = TnLaAccess::elements(coupling_) + v;
      for (Index k = 0; k < n_rhs(); ++k) {
        if (std::fabs(row[0]) < kSmallestBandDiagonal) return false;
        double* const column = TnLaAccess::elements(x) + k * n;
        const double in_band = tnla_kernels::dot(bandwidth() - 1, column + v + 1, row + ld, ld);
        const double coupled =
            tnla_kernels::dot(bandwidth(), column + n - bandwidth(), coupled_row, n_eliminated_);
        column[v] = (row[(bandwidth() + k) * ld] - in_band - coupled) / row[0];
      }
    }
    return true;
  }

  TnLaBand& triangle_;
  TnLaExceptional& equations_;
  Index n_eliminated_;
  TnLaDblMat coupling_;
  Index height_;  // rows of `first`, `last` and `rhs`, the pivot row among them
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
