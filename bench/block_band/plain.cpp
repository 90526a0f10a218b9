// SPDX-License-Identifier: MIT

#include "block_band/chain.h"
#include "common/twin.h"
#include "reference/band_reference.h"

namespace {

// The equations are kept in memory, which a long chain does not allow.
struct Solve {
  reference::BandProblem problem;
  reference::Matrix X;

  explicit Solve(const bench::Case& c) {
    problem.n = c.n;
    problem.bandwidth = c.m;
    problem.n_rhs = bench::kSides;
    problem.most = c.p;
    for (int b = 0; b < bench::n_blocks(c); ++b) {
      problem.blocks.push_back({b, reference::zeros(c.p, c.m + bench::kSides)});
      for (int e = 0; e < c.p; ++e) {
        const double* const equation = bench::equation(c, b, e);
        for (int j = 0; j < c.m + bench::kSides; ++j) {
          reference::at(problem.blocks.back().rows, e, j) = equation[j];
        }
      }
    }
    if (!bench::is_closed(c)) return;
    problem.exceptional = true;
    problem.first = reference::zeros(1, c.m);
    problem.last = reference::zeros(1, c.m);
    problem.rhs = reference::zeros(1, bench::kSides);
    reference::at(problem.first, 0, 0) = 1.0;
    reference::at(problem.last, 0, c.m - 1) = -1.0;
    for (int k = 0; k < bench::kSides; ++k) {
      reference::at(problem.rhs, 0, k) = bench::closing_right_side(c, k);
    }
  }
  void step() { reference::Band(problem).solve(X); }
  void answer(double* out) const { bench::copy_out(X, out); }
};

}  // namespace

std::unique_ptr<bench::Task> bench::make_task(const Case& c) {
  if (c.p == 4 && c.n <= 100000) return task<Solve>(c);
  return nullptr;
}
