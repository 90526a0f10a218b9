// SPDX-License-Identifier: MIT

#include <algorithm>

#include "families.h"

// Band systems whose equations arrive in blocks, open and closed, of all shapes.

namespace {

struct Shape {
  int n, bandwidth, n_rhs, most, n_blocks;
  bool closed;
};

class Chain : public TnLaBlkBndSolver {
 public:
  Chain(const Shape& shape, Data& data, Digest& digest)
      : TnLaBlkBndSolver(shape.n, shape.n_blocks, shape.bandwidth, shape.n_rhs),
        shape_(shape),
        data_(data),
        digest_(digest) {}

  void get_block_equations(int block, int first_row, TnLaDblMat& G, int& count,
                           int& first_unknown) const override {
    digest_.add(first_row);
    count = static_cast<int>(data_.below(static_cast<std::size_t>(shape_.most) + 1));
    if (block < shape_.bandwidth) count = std::max(count, 1);
    fill(G, first_row, count);
    first_unknown = block;
    if (data_.one_in(800)) count = -1;  // asserted
  }

  int max_block_equations() const override { return shape_.most; }

  bool exceptional() const override { return shape_.closed; }

  void get_exceptional_equations(TnLaDblMat& first, TnLaDblMat& last, TnLaDblMat& rhs,
                                 int& count) const override {
    count = static_cast<int>(data_.below(static_cast<std::size_t>(shape_.most) + 1));
    fill(first, 0, count);
    fill(last, 0, count);
    fill(rhs, 0, count);
  }

 private:
  void fill(TnLaDblMat& A, int first_row, int count) const {
    const auto from = static_cast<std::size_t>(first_row);
    const std::size_t to = std::min(A.n_rows(), from + static_cast<std::size_t>(count));
    for (std::size_t j = 0; j < A.n_cols(); ++j) {
      for (std::size_t i = from; i < to; ++i) A(i, j) = data_.number();
    }
  }

  Shape shape_;
  Data& data_;
  Digest& digest_;
};

Shape shape(Data& data) {
  Shape s{};
  s.bandwidth = 1 + static_cast<int>(data.below(data.one_in(8) ? 40 : 9));
  s.n = std::max(static_cast<int>(data.size(1000)), s.bandwidth);
  s.n_rhs = static_cast<int>(data.below(5));
  s.most = 1 + static_cast<int>(data.below(data.one_in(4) ? 30 : 5));
  s.n_blocks = s.n - s.bandwidth + 1;
  // A band that reaches beyond the last unknown, or unknowns without an equation.
  if (data.one_in(30)) s.n_blocks += data.one_in(2) ? 1 : -1;
  s.closed = data.one_in(2);
  return s;
}

}  // namespace

void band_round(Data& data, Digest& digest) {
  const Chain chain(shape(data), data, digest);
  TnLaDblMat x = data.leftover();
  for (int k = 0; k < 2; ++k) {  // with other equations each time
    digest.add(chain.solve(x));
    digest.add(x);
  }
}
