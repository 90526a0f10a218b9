// SPDX-License-Identifier: MIT

#include "common/tnla.h"

#include "block_band/chain.h"

namespace {

class Chain : public TnLaBlkBndSolver {
 public:
  explicit Chain(const bench::Case& c)
      : TnLaBlkBndSolver(c.n, bench::n_blocks(c), c.m, bench::kSides), case_(c) {}

  int max_block_equations() const override { return case_.p; }

  void get_block_equations(int block, int first_row, TnLaDblMat& G, int& count,
                           int& first_unknown) const override {
    count = case_.p;
    first_unknown = block;
    const std::size_t n_cols = G.n_cols();
    auto row = static_cast<std::size_t>(first_row);
    for (int e = 0; e < count; ++e, ++row) {
      const double* const equation = bench::equation(case_, block, e);
      for (std::size_t j = 0; j < n_cols; ++j) G(row, j) = equation[j];
    }
  }

  bool exceptional() const override { return bench::is_closed(case_); }

  void get_exceptional_equations(TnLaDblMat& first, TnLaDblMat& last, TnLaDblMat& rhs,
                                 int& count) const override {
    count = 1;
    first(0, 0) = 1.0;
    last(0, last.n_cols() - 1) = -1.0;
    for (int k = 0; k < bench::kSides; ++k) {
      rhs(0, static_cast<std::size_t>(k)) = bench::closing_right_side(case_, k);
    }
  }

 private:
  const bench::Case& case_;
};

struct Solve {
  const bench::Case& c;
  TnLaDblMat X;

  explicit Solve(const bench::Case& chain) : c(chain) {}
  void step() { Chain(c).solve(X); }
  void answer(double* out) const { bench::copy_out(X, out); }
};

}  // namespace

std::unique_ptr<bench::Task> bench::make_task(const Case& c) { return task<Solve>(c); }
