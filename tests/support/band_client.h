// SPDX-License-Identifier: MIT

#pragma once

#include <cstddef>
#include <cstdint>

#include "support/values.h"
#include "tnlablkbndsolver_i.h"

// What is wrong with the equations of a BandClient, if anything.
enum class Fault {
  none,
  too_many_rows,
  negative_count,
  negative_unknown,
  another_shape,
  beyond_the_end,
  none_exceptional,
  too_many_exceptional,
  another_exceptional_shape,
};

enum class Chain { open, closed };

// A client of the band solver: three random equations a block, for three unknowns each, and two exceptional
// ones where the chain is closed.
class BandClient : public TnLaBlkBndSolver {
 public:
  static constexpr int kBandwidth = 3;
  static constexpr int kRightSides = 2;
  static constexpr int kEquations = 3;

  // The last block of one that goes beyond the end begins at the last unknown but one.
  BandClient(int unknowns, Chain chain, Fault fault = Fault::none, std::uint64_t seed = 1)
      : TnLaBlkBndSolver(unknowns, unknowns - (fault == Fault::beyond_the_end ? 1 : 2), kBandwidth,
                         kRightSides),
        chain_(chain),
        fault_(fault),
        seed_(seed) {}

  // From now on, without an allocation of its own.
  void be_frugal() { frugal_ = true; }

  // From now on, without a fault.
  void recover() { fault_ = Fault::none; }

  void get_block_equations(int block, int first_row, TnLaDblMat& G, int& count,
                           int& first_unknown) const override {
    use_memory();
    fill(G, static_cast<std::size_t>(first_row), kEquations, static_cast<std::uint64_t>(block) + 3);
    count = kEquations;
    first_unknown = block;
    if (block < 1) return;
    if (fault_ == Fault::too_many_rows) count = static_cast<int>(G.n_rows());
    if (fault_ == Fault::negative_count) count = -1;
    if (fault_ == Fault::negative_unknown) first_unknown = -1;
    if (fault_ == Fault::another_shape) {
      G.resize(G.n_rows() + 1, G.n_cols() + 1, true);
      use_memory();
    }
  }

  int max_block_equations() const override { return kEquations; }

  bool exceptional() const override { return chain_ == Chain::closed; }

  void get_exceptional_equations(TnLaDblMat& first, TnLaDblMat& last, TnLaDblMat& rhs,
                                 int& count) const override {
    use_memory();
    std::uint64_t part_number = 0;
    for (TnLaDblMat* const part : {&first, &last, &rhs}) fill(*part, 0, 2, part_number++);
    count = 2;
    if (fault_ == Fault::none_exceptional) count = 0;
    if (fault_ == Fault::too_many_exceptional) count = kEquations + 1;
    if (fault_ == Fault::another_exceptional_shape) {
      last.insert_cols(0, 1);
      use_memory();
    }
  }

 private:
  void use_memory() const {
    if (!frugal_) TnLaDblMat(2, 2, 1.0).transpose();
  }

  void fill(TnLaDblMat& m, std::size_t first_row, std::size_t n_rows, std::uint64_t part_number) const {
    Random random(seed_ * 1000 + part_number);
    for (std::size_t i = first_row; i < first_row + n_rows; ++i) {
      for (std::size_t j = 0; j < m.n_cols(); ++j) m(i, j) = random.uniform();
    }
  }

  Chain chain_;
  Fault fault_;
  std::uint64_t seed_;
  bool frugal_ = false;
};
