// SPDX-License-Identifier: MIT

#include "families.h"
#include "placed.h"

// Products of matrices and vectors, of objects and of plain blocks with any steps.

namespace {

struct Shape {
  std::size_t m, k, n;
};

void objects(Data& data, const Shape& s, Digest& digest) {
  TnLaDblMat A = data.matrix(s.m, s.k);
  const TnLaDblMat B = data.one_in(20) ? data.leftover() : data.matrix(s.k, s.n);
  digest.add(A * B);
  TnLaDblMat C = data.leftover();
  tnla_mat_mat_prod(A, B, C);
  digest.add(C);

  TnLaDblVec x = data.one_in(20) ? data.vector(2) : data.vector(s.k);
  digest.add(A * x);
  TnLaDblVec y = data.vector(data.below(3));
  tnla_mat_vec_prod(A, x, y);
  digest.add(y);
  x *= A;
  digest.add(x);
  A *= B;
  digest.add(A);
}

// The steps of a block with the given numbers of rows and columns.
struct Steps {
  int row, col;
  std::size_t size;
};

Steps steps(Data& data, std::size_t rows, std::size_t cols) {
  const auto m = static_cast<int>(rows);
  const auto n = static_cast<int>(cols);
  const auto gap = static_cast<int>(data.below(3));
  switch (data.below(4)) {
    case 0:
      return {1, m, rows * cols};
    case 1:
      return {n, 1, rows * cols};
    case 2:
      return {1, m + gap, rows * cols + static_cast<std::size_t>(gap) * cols};
    default:
      return {n * 2 + gap, 2, (2 * cols + 2) * rows};
  }
}

void blocks(Data& data, const Shape& s, Digest& digest) {
  const Placed a(data.numbers(s.m * s.k));
  const Placed b(data.numbers(s.k * s.n));
  Placed c(data.numbers(s.m * s.n));
  tnla_mat_mat_prod(s.m, s.k, s.n, a.data(), b.data(), c.data());
  digest.add(c.data(), c.size());

  const Steps sa = steps(data, s.m, s.k);
  const Steps sb = steps(data, s.k, s.n);
  // Elements of C that share a place are the exception.
  const Steps sc = data.one_in(16) ? Steps{1, 1, s.m + s.n} : steps(data, s.m, s.n);
  const Placed strided_a(data.numbers(sa.size));
  const Placed strided_b(data.numbers(sb.size));
  Placed strided_c(data.numbers(sc.size));
  tnla_mat_mat_prod(s.m, s.k, s.n, strided_a.data(), strided_b.data(), strided_c.data(), sa.row, sa.col,
                    sb.row, sb.col, sc.row, sc.col);
  digest.add(strided_c.data(), strided_c.size());
}

}  // namespace

void product_round(Data& data, Digest& digest) {
  Shape s{data.size(1000), data.short_size(), data.short_size()};
  if (s.m >= 100) s.k = s.n = s.m == 1000 ? 183 : s.m;
  if (data.one_in(2)) std::swap(s.m, s.k);
  if (data.one_in(3)) std::swap(s.m, s.n);
  objects(data, s, digest);
  blocks(data, s, digest);
}
