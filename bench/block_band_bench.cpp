// Banded least squares block by block: time and peak memory over the number of equations.
//
// Block b holds equations for the unknowns b ... b+3, so that there are (blocks + 3) unknowns.  The
// equations are made on the spot from a solution that is known; the client itself stores none.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "heap.h"
#include "tarntnla.h"

namespace {

constexpr int kBandwidth = 4;
constexpr int kRightSides = 2;

// In [-1, 1), the same for the same arguments (splitmix64 of their mixture).
double pseudo_random(int block, int equation, int column) {
  std::uint64_t z = (static_cast<std::uint64_t>(block) << 32) + static_cast<std::uint64_t>(equation) * 8u +
                    static_cast<std::uint64_t>(column);
  z = (z + 0x9e3779b97f4a7c15u) * 0xbf58476d1ce4e5b9u;
  z = (z ^ (z >> 27)) * 0x94d049bb133111ebu;
  z ^= z >> 31;
  return static_cast<double>(z >> 11) * 0x1p-52 - 1.0;
}

double solution(int unknown, int k) { return pseudo_random(-1, unknown, k); }

class Chain : public TnLaBlkBndSolver {
 public:
  Chain(int blocks, int per_block, bool closed)
      : TnLaBlkBndSolver(blocks + kBandwidth - 1, blocks, kBandwidth, kRightSides),
        unknowns_(blocks + kBandwidth - 1),
        per_block_(per_block),
        closed_(closed) {}

  int unknowns() const { return unknowns_; }

  int max_block_equations() const override { return per_block_; }

  void get_block_equations(int block, int first_row, TnLaDblMat& G, int& count,
                           int& first_unknown) const override {
    count = per_block_;
    first_unknown = block;
    auto row = static_cast<std::size_t>(first_row);
    for (int e = 0; e < count; ++e, ++row) {
      double sums[kRightSides] = {};
      for (int c = 0; c < kBandwidth; ++c) {
        const double coefficient = pseudo_random(block, e, c);
        G(row, static_cast<std::size_t>(c)) = coefficient;
        for (int k = 0; k < kRightSides; ++k) sums[k] += coefficient * solution(block + c, k);
      }
      for (std::size_t k = 0; k < kRightSides; ++k) G(row, kBandwidth + k) = sums[k];
    }
  }

  bool exceptional() const override { return closed_; }

  void get_exceptional_equations(TnLaDblMat& first, TnLaDblMat& last, TnLaDblMat& rhs,
                                 int& count) const override {
    count = 1;
    first(0, 0) = 1.0;
    last(0, kBandwidth - 1) = -1.0;
    for (int k = 0; k < kRightSides; ++k) {
      rhs(0, static_cast<std::size_t>(k)) = solution(0, k) - solution(unknowns_ - 1, k);
    }
  }

 private:
  int unknowns_;
  int per_block_;
  bool closed_;
};

double largest_error(const TnLaDblMat& x) {
  double largest = 0.0;
  for (std::size_t k = 0; k < x.n_cols(); ++k) {
    for (std::size_t i = 0; i < x.n_rows(); ++i) {
      const double error = std::fabs(x(i, k) - solution(static_cast<int>(i), static_cast<int>(k)));
      if (!(error <= largest)) largest = error;  // a NaN stays the largest
    }
  }
  return largest;
}

benchmark::Counter bytes(double n) {
  return {n, benchmark::Counter::kDefaults, benchmark::Counter::kIs1024};
}

void solve_chain(benchmark::State& state, bool closed) {
  const Chain chain(static_cast<int>(state.range(0)), static_cast<int>(state.range(1)), closed);
  TnLaDblMat x;
  const std::size_t before = heap::bytes();
  heap::reset_peak();
  if (!chain.solve(x) || !(largest_error(x) < 1e-9)) {
    state.SkipWithError("the solution is wrong");
    return;
  }
  const auto peak = static_cast<double>(heap::peak() - before);

  while (state.KeepRunning()) {
    const bool solved = chain.solve(x);
    benchmark::DoNotOptimize(solved);
  }
  const double equations = static_cast<double>(state.range(0) * state.range(1)) + (closed ? 1.0 : 0.0);
  state.counters["equations"] = equations;
  state.counters["unknowns"] = chain.unknowns();
  state.counters["peak_bytes"] = bytes(peak);
  state.counters["work_matrix_bytes"] = bytes(static_cast<double>(
      (chain.unknowns() + chain.max_block_equations()) * (kBandwidth + kRightSides) * 8));
  state.counters["time_per_equation"] = benchmark::Counter(
      equations, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

void open_chain(benchmark::State& state) { solve_chain(state, false); }
void closed_chain(benchmark::State& state) { solve_chain(state, true); }

// {blocks, equations in a block}
BENCHMARK(open_chain)
    ->Unit(benchmark::kMillisecond)
    ->Args({10000, 2})
    ->Args({10000, 10})
    ->Args({10000, 100})
    ->Args({10000, 1000})
    ->Args({1000, 100})
    ->Args({100, 100});
BENCHMARK(closed_chain)->Unit(benchmark::kMillisecond)->Args({10000, 10})->Args({10000, 100});

}  // namespace
