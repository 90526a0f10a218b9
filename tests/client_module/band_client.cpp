// SPDX-License-Identifier: MIT

#include "band_client.h"

#include <cstddef>
#include <stdexcept>
#include <vector>

namespace {

class Chain : public TnLaBlkBndSolver {
 public:
  explicit Chain(int n)
      : TnLaBlkBndSolver(n, n - 1, 2, 1), steps_(static_cast<std::size_t>(n - 1), 1.0), sum_(n - 1.0) {}

  void get_block_equations(int block, int first_row, TnLaDblMat& G, int& count,
                           int& first_unknown) const override {
    const auto row = static_cast<std::size_t>(first_row);
    G(row, 0) = -1.0;
    G(row, 1) = 1.0;
    G(row, 2) = steps_.at(static_cast<std::size_t>(block));
    count = 1;
    first_unknown = block;
  }

  int max_block_equations() const override { return 1; }

 protected:
  std::vector<double> steps_;
  double sum_;
};

class ClosedChain : public Chain {
 public:
  using Chain::Chain;

  bool exceptional() const override { return true; }

  void get_exceptional_equations(TnLaDblMat& first, TnLaDblMat& last, TnLaDblMat& rhs,
                                 int& count) const override {
    first(0, 0) = 1.0;
    last(0, 1) = 1.0;
    rhs(0, 0) = sum_;
    count = 1;
  }
};

class BrokenChain : public Chain {
 public:
  BrokenChain() : Chain(4) { steps_.resize(1); }
};

}  // namespace

TnLaBlkBndSolver* band_client_closed_chain(int n) { return new ClosedChain(n); }

TnLaBlkBndSolver* band_client_broken_chain() { return new BrokenChain; }
