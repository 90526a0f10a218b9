// SPDX-License-Identifier: MIT

#include "common/openblas.h"

#include "block_band/chain.h"

namespace {

// As users of LAPACK fold blocks in: the triangle of the last m unknowns, with its right sides, on top of
// the new equations; dgeqrf; keep the finished row and move on by one unknown.
struct Fold {
  const bench::Case& c;
  int rows;
  int cols;
  std::vector<double> window;
  std::vector<double> finished;  // row by row
  std::vector<double> X;
  std::vector<double> tau;
  std::vector<double> work;

  explicit Fold(const bench::Case& chain)
      : c(chain),
        rows(c.m + c.p),
        cols(c.m + bench::kSides),
        window(bench::n_elements(rows, cols)),
        finished(static_cast<std::size_t>(c.n) * static_cast<std::size_t>(cols)),
        X(static_cast<std::size_t>(c.n) * bench::kSides),
        tau(static_cast<std::size_t>(rows)) {
    work = bench::workspace([this](double* w, int size) { factor(w, size); });
  }
  double& at(int i, int j) { return window[bench::n_elements(rows, j) + static_cast<std::size_t>(i)]; }
  void factor(double* w, int size) {
    LAPACKE_dgeqrf_work(LAPACK_COL_MAJOR, rows, cols, window.data(), rows, tau.data(), w, size);
  }
  double* finish_row(int i, double* out) {  // row i of the triangle, from its diagonal on
    for (int j = 0; j < c.m; ++j) *out++ = i + j < c.m ? at(i, i + j) : 0.0;
    for (int k = 0; k < bench::kSides; ++k) *out++ = at(i, c.m + k);
    return out;
  }
  void move_on() {
    for (int j = 0; j < c.m; ++j) {
      for (int i = 0; i < c.m; ++i) at(i, j) = i <= j && j + 1 < c.m ? at(i + 1, j + 1) : 0.0;
    }
    for (int j = c.m; j < cols; ++j) {
      for (int i = 0; i < c.m; ++i) at(i, j) = i + 1 < c.m ? at(i + 1, j) : 0.0;
    }
  }
  void step() {
    std::fill(window.begin(), window.end(), 0.0);
    double* out = finished.data();
    for (int block = 0; block < bench::n_blocks(c); ++block) {
      for (int e = 0; e < c.p; ++e) {
        const double* const equation = bench::equation(c, block, e);
        for (int j = 0; j < cols; ++j) at(c.m + e, j) = equation[j];
      }
      factor(work.data(), bench::length(work));
      if (block + 1 == bench::n_blocks(c)) break;
      out = finish_row(0, out);
      move_on();
    }
    for (int i = 0; i < c.m; ++i) out = finish_row(i, out);
    substitute();
  }
  void substitute() {
    for (int k = 0; k < bench::kSides; ++k) {
      double* const x = X.data() + static_cast<std::ptrdiff_t>(k) * c.n;
      for (int v = c.n - 1; v >= 0; --v) {
        const double* const row = finished.data() + static_cast<std::ptrdiff_t>(v) * cols;
        double s = row[c.m + k];
        for (int j = 1; j < c.m && v + j < c.n; ++j) s -= row[j] * x[v + j];
        x[v] = s / row[0];
      }
    }
  }
  void answer(double* out) const { std::copy(X.begin(), X.end(), out); }
};

}  // namespace

std::unique_ptr<bench::Task> bench::make_task(const Case& c) {
  if (c.p == 4 && !bench::is_closed(c)) return task<Fold>(c);
  return nullptr;
}
