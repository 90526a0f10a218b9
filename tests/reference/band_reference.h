// SPDX-License-Identifier: MIT

#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "reference/decomposition_reference.h"
#include "reference/reflection_reference.h"

// Banded least squares that arrive block by block, one stated operation after the other.
namespace reference {

// Equations that begin at one unknown.  A row holds NB coefficients, then R right-hand sides.
struct BandBlock {
  int first_unknown = 0;
  Matrix rows;
};

struct BandProblem {
  int n = 0;          // N, the unknowns
  int bandwidth = 0;  // NB
  int n_rhs = 0;      // R
  int most = 0;       // M, the largest number of equations in a block, or of exceptional ones
  std::vector<BandBlock> blocks;

  // A row for every exceptional equation: the coefficients of the first NB unknowns, those of the last NB
  // ones, the right-hand sides.
  bool exceptional = false;
  Matrix first;
  Matrix last;
  Matrix rhs;

  int n_exceptional() const { return static_cast<int>(first.m); }
};

inline double& at(Matrix& A, int i, int j) {
  return A(static_cast<std::size_t>(i), static_cast<std::size_t>(j));
}
inline double at(const Matrix& A, int i, int j) {
  return A(static_cast<std::size_t>(i), static_cast<std::size_t>(j));
}

inline Matrix zeros(int m, int n) { return {static_cast<std::size_t>(m), static_cast<std::size_t>(n)}; }

inline Matrix below_a_zero_row(const Matrix& A) {
  Matrix result(A.m + 1, A.n);
  for (std::size_t j = 0; j < A.n; ++j) std::copy_n(A.a.data() + j * A.m, A.m, result.column(j) + 1);
  return result;
}

// One solve, from an empty triangle to the solution.
class Band {
 public:
  explicit Band(const BandProblem& problem)
      : p(problem), N(p.n), NB(p.bandwidth), R(p.n_rhs), work(zeros(N + p.most, NB + R)) {}

  // False where the solve fails; x then holds what has been written.
  bool solve(Matrix& x) {
    for (const BandBlock& block : p.blocks) fold(block);
    if (!p.exceptional || p.n_exceptional() < 1) return back_substitute_band(x);
    return NB < 1 || N < 3 * NB ? solve_dense(x) : solve_structured(x);
  }

  // One block of a solve.
  void fold(const BandBlock& block) {
    deliver(block);
    accumulate(static_cast<int>(block.rows.m), block.first_unknown);
  }

  // The work matrix as it is now; it may be changed between two blocks.
  const Matrix& G() const { return work; }
  Matrix& G() { return work; }

  // The files whose checks have reported an element that does not exist, because the band, or a strip of
  // the exceptional equations, reaches beyond the unknowns.
  const std::vector<std::string>& reports() const { return misses; }

 private:
  double& g(int r, int c) { return at(work, r, c); }

  // Rows that no equation has reached are zero, whatever the work matrix holds there.
  double coefficient(int r, int unknown) {
    const int c = unknown - first_unknown(r);
    return r < IR && 0 <= c && c < NB ? g(r, c) : 0.0;
  }
  double right_side(int r, int k) { return r < IR ? g(r, NB + k) : 0.0; }
  int first_unknown(int r) const { return r <= IP ? r : IP; }

  // Null where there is no such element, which is reported: by the matrix, and by its array if the place
  // is not in the array either.
  double* element(Matrix& A, int i, int j) {
    const int m = static_cast<int>(A.m);
    const int n = static_cast<int>(A.n);
    if (i < m && 0 <= j && j < n) return &at(A, i, j);
    misses.emplace_back("interfaces/tnla_matrix_vector_i.h");
    if (j < 0 || j * m + i >= m * n) misses.emplace_back("interfaces/tnarray_i.h");
    return nullptr;
  }

  void deliver(const BandBlock& block) {
    for (int i = 0; i < static_cast<int>(block.rows.m); ++i) {
      for (int c = 0; c < NB + R; ++c) g(IR + i, c) = at(block.rows, i, c);
    }
  }

  void accumulate(int MT, int JT) {
    if (IP < JT) realign(JT);
    const int MH = IR + MT - JT;
    const int KH = std::min(MH, NB);
    for (int i = 0; i < KH; ++i) {
      if (i >= MH - 1) continue;
      const Reflection h(i, i + 1, MH, &g(JT, i), 1);
      for (int c = i + 1; c < NB + R; ++c) h.apply(&g(JT, c), 1);
    }
    IP = JT;
    IR = JT + KH;
  }

  void realign(int JT) {
    for (int r = IP + 1; r < IR; ++r) {
      const int s = std::min(r - IP, JT - IP);
      for (int c = s; c < NB; ++c) g(r, c - s) = g(r, c);
      for (int c = NB - s; c < NB; ++c) g(r, c) = 0.0;
    }
  }

  // The rows that begin at unknowns beyond the last one, each at a column of its own.
  void report_rows_beyond(Matrix& A, int begin, int column) {
    for (int r = std::min(IP, IR) - 1; r >= N; --r) element(A, r - begin, column);
  }

  bool back_substitute_band(Matrix& x) {
    x = resized(x, static_cast<std::size_t>(N), static_cast<std::size_t>(R));
    for (int k = 0; k < R; ++k) {
      for (int i = 0; i < N; ++i) at(x, i, k) = right_side(i, k);
    }
    if (R < 1) return true;
    for (int k = 0; k < R; ++k) {
      report_rows_beyond(x, 0, k);
      for (int i = N - 1; i >= 0; --i) {
        const int start = first_unknown(i);
        const int L = i - start;
        if (i >= IR || L >= NB || std::fabs(g(i, L)) < 1e-10) return false;
        double s = 0.0;
        for (int j = L + 1; j < NB; ++j) {
          const double* const solved = element(x, start + j, k);
          if (solved != nullptr) s = s + *solved * g(i, j);
        }
        at(x, i, k) = (at(x, i, k) - s) / g(i, L);
      }
    }
    return true;
  }

  // Row r of the triangle into row `row` of a system for the unknowns from `begin` on.
  void write_triangle_row(int r, int begin, Matrix& A, Matrix& B, int row) {
    for (int c = 0; c < NB; ++c) {
      const int unknown = first_unknown(r) + c;
      if (unknown < begin) continue;  // it is zero there
      double* const place = element(A, row, unknown - begin);
      if (place != nullptr) *place = g(r, c);
    }
    for (int k = 0; k < R; ++k) at(B, row, k) = g(r, NB + k);
  }

  // Exceptional equation e likewise, where `first` begins at the unknown `begin`.
  void write_exceptional_row(const Matrix& first, const Matrix& last, const Matrix& rhs, int e, int begin,
                             Matrix& A, Matrix& B, int row) {
    for (int c = 0; c < NB; ++c) {
      double* const place = element(A, row, c);
      if (place != nullptr) *place = at(first, e, c);
    }
    for (int c = 0; c < NB; ++c) {
      double* const place = element(A, row, N - NB + c - begin);
      if (place != nullptr) *place = *place + at(last, e, c);
    }
    for (int k = 0; k < R; ++k) at(B, row, k) = at(rhs, e, k);
  }

  bool solve_dense(Matrix& x) {
    const int count = p.n_exceptional();
    Matrix A = zeros(N + count, N);
    Matrix B = zeros(N + count, R);
    for (int r = 0; r < std::min(IR, N); ++r) write_triangle_row(r, 0, A, B, r);
    report_rows_beyond(A, 0, N);
    for (int e = 0; e < count; ++e) write_exceptional_row(p.first, p.last, p.rhs, e, 0, A, B, N + e);
    const std::optional<Matrix> solution = Qr(A).solve(B);
    x = solution.value_or(resized(x, A.n, B.n));
    return solution.has_value();
  }

  bool solve_structured(Matrix& x) {
    const int count = p.n_exceptional();
    const int begin = N - 2 * NB + 1;
    Matrix first = below_a_zero_row(p.first);
    Matrix last = below_a_zero_row(p.last);
    Matrix rhs = below_a_zero_row(p.rhs);
    Matrix T = zeros(begin, NB);
    for (int v = 0; v < begin; ++v) {
      if (v > 0) {
        for (int c = 0; c < NB; ++c) at(last, 0, c) = 0.0;
        shift_left(first);
      }
      eliminate(v, first, last, rhs);
      for (int c = 0; c < NB; ++c) at(T, v, c) = at(last, 0, c);
    }
    shift_left(first);

    Matrix A = zeros(count + 2 * NB, 2 * NB - 1);
    Matrix B = zeros(count + 2 * NB, R);
    for (int r = begin; r < std::min(IR, N); ++r) write_triangle_row(r, begin, A, B, r - begin);
    report_rows_beyond(A, begin, N - begin);
    for (int e = 1; e <= count; ++e) {
      write_exceptional_row(first, last, rhs, e, begin, A, B, 2 * NB - 1 + e);
    }
    const std::optional<Matrix> rest = Qr(A).solve(B);
    if (!rest.has_value()) return false;
    x = resized(x, static_cast<std::size_t>(N), static_cast<std::size_t>(R));
    for (int k = 0; k < R; ++k) {
      for (int i = begin; i < N; ++i) at(x, i, k) = at(*rest, i - begin, k);
    }
    return back_substitute_coupled(T, x);
  }

  // The rows below the pivot row.
  void shift_left(Matrix& first) {
    for (int e = 1; e <= p.n_exceptional(); ++e) {
      for (int c = 0; c < NB - 1; ++c) at(first, e, c) = at(first, e, c + 1);
      at(first, e, NB - 1) = 0.0;
    }
  }

  // Removes unknown v from the exceptional equations.
  void eliminate(int v, Matrix& first, Matrix& last, Matrix& rhs) {
    for (int c = 0; c < NB; ++c) at(first, 0, c) = coefficient(v, v + c);
    for (int k = 0; k < R; ++k) at(rhs, 0, k) = right_side(v, k);
    const Reflection h(0, 1, p.n_exceptional() + 1, first.column(0), 1);
    apply_to_columns(h, first, 1, first.n);
    apply_to_columns(h, last, 0, last.n);
    apply_to_columns(h, rhs, 0, rhs.n);
    for (int c = 0; c < NB; ++c) g(v, c) = at(first, 0, c);
    for (int k = 0; k < R; ++k) g(v, NB + k) = at(rhs, 0, k);
  }

  bool back_substitute_coupled(const Matrix& T, Matrix& x) {
    for (int v = N - 2 * NB; v >= 0; --v) {
      for (int k = 0; k < R; ++k) {
        if (std::fabs(g(v, 0)) < 1e-10) return false;
        double in_band = 0.0;
        for (int j = 1; j < NB; ++j) in_band = in_band + g(v, j) * at(x, v + j, k);
        double coupled = 0.0;
        for (int c = 0; c < NB; ++c) coupled = coupled + at(T, v, c) * at(x, N - NB + c, k);
        at(x, v, k) = (g(v, NB + k) - in_band - coupled) / g(v, 0);
      }
    }
    return true;
  }

  const BandProblem& p;
  int N;
  int NB;
  int R;
  Matrix work;
  int IP = 0;  // the first unknown of the latest block
  int IR = 0;  // the rows that hold accumulated equations
  std::vector<std::string> misses;
};

}  // namespace reference
