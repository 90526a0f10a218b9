// SPDX-License-Identifier: MIT

#pragma once

#include <algorithm>
#include <cstddef>
#include <utility>
#include <vector>

#include "fuzz/bytes.h"
#include "reference/product_reference.h"
#include "reference/vector_reference.h"
#include "support/bits.h"
#include "tnla_matrix_vector_i.h"
#include "tnla_util_i.h"

// The kernels on plain arrays beside their twins.  Every operand ends where its block ends, so that an
// address sanitizer sees a read beyond it, and begins at any alignment.
namespace raw {

using Values = std::vector<double>;

// A vector at the end of a block.
class AtEnd {
 public:
  AtEnd(Bytes& bytes, Values values) : before_(bytes.below(8)), block_(before_, -77.0) {
    block_.insert(block_.end(), values.begin(), values.end());
    block_.shrink_to_fit();
  }

  double* data() { return block_.data() + before_; }
  const Values& block() const { return block_; }

 private:
  std::size_t before_;
  Values block_;
};

inline void expect_same_block(const AtEnd& actual, const AtEnd& expected) {
  EXPECT_SAME_ARRAY(expected.block().size(), actual.block().data(), expected.block().data());
}

inline void vectors(Bytes& bytes) {
  const int n = bytes.between(0, 70);
  const auto size = static_cast<std::size_t>(n);
  AtEnd x(bytes, bytes.numbers(size));
  AtEnd y(bytes, bytes.numbers(size));
  AtEnd res(bytes, bytes.numbers(size));
  const bool unit_x = bytes.flag(), unit_y = bytes.flag(), unit_res = bytes.flag();
  const double a = bytes.number(), b = bytes.number();
  const std::size_t kind = bytes.below(6);
  const std::size_t target = bytes.below(3);  // res, x or y
  const AtEnd old_x = x;
  const AtEnd old_y = y;
  AtEnd& z = kind == 2 ? res : target == 0 ? res : target == 1 ? x : y;
  AtEnd expected = z;
  AtEnd u = x;
  AtEnd w = y;
  if (kind == 0) {
    EXPECT_SAME(tnla_sq_norm(n, x.data(), nullptr), reference::sq_norm(n, u.data()));
    EXPECT_SAME(tnla_sq_norm(n, x.data(), y.data()), reference::sq_norm(n, u.data(), w.data()));
    EXPECT_SAME(tnla_norm(n, x.data(), nullptr), reference::norm(n, u.data()));
    EXPECT_SAME(tnla_norm(n, x.data(), y.data()), reference::norm(n, u.data(), w.data()));
    EXPECT_SAME(tnla_scalprod(n, x.data(), y.data(), unit_x, unit_y),
                reference::scalprod(n, u.data(), w.data(), unit_x, unit_y));
  } else if (kind == 1) {
    tnla_lincomb(n, x.data(), a, y.data(), b, z.data(), unit_x, unit_y, unit_res);
    reference::lincomb(n, u.data(), a, w.data(), b, expected.data(), unit_x, unit_y, unit_res);
  } else if (kind == 2) {
    tnla_crossprod(n, x.data(), y.data(), z.data(), unit_x, unit_y, unit_res);
    reference::crossprod(n, u.data(), w.data(), expected.data(), unit_x, unit_y, unit_res);
  } else if (kind == 3) {
    EXPECT_SAME(tnla_normalize(n, z.data()), reference::normalize(n, expected.data()));
  } else {
    tnla_ortho_vec(n, x.data(), z.data());
    reference::ortho_vec(n, u.data(), expected.data());
  }
  expect_same_block(z, expected);
  if (&z != &x) expect_same_block(x, old_x);
  if (&z != &y) expect_same_block(y, old_y);
}

// Mostly a few rows or columns, now and then what takes the packed kernels.
inline std::size_t extent(Bytes& bytes) { return bytes.rarely(6) ? bytes.below(70) : bytes.below(14); }

inline void product(Bytes& bytes) {
  const std::size_t m = extent(bytes), k = extent(bytes), n = extent(bytes);
  AtEnd A(bytes, bytes.numbers(m * k));
  AtEnd B(bytes, bytes.numbers(k * n));
  AtEnd C(bytes, bytes.numbers(m * n));
  AtEnd expected = C;
  tnla_mat_mat_prod(m, k, n, A.data(), B.data(), C.data());
  reference::product(m, k, n, A.data(), B.data(), expected.data());
  expect_same_block(C, expected);
}

// A matrix with any steps, in a block that holds it and no more.
class Strided {
 public:
  Strided(Bytes& bytes, std::size_t m, std::size_t n) {
    const int rows = static_cast<int>(m), cols = static_cast<int>(n);
    const std::pair<int, int> layouts[] = {
        {1, rows},   {cols, 1},     {1, rows + 3}, {cols + 2, 1}, {2, 2 * rows + 1},
        {-1, -rows}, {2 * cols, 2}, {1, -rows},    {-cols, 1},    {3, 1},
        {1, 2},      {0, 1},        {1, 0},        {0, 0},        {7, 5}};
    const std::pair<int, int> layout = bytes.one_of(layouts);
    steps_ = {layout.first, layout.second};
    if (m == 0 || n == 0) return;
    const std::ptrdiff_t down = steps_.at(m - 1, 0);
    const std::ptrdiff_t right = steps_.at(0, n - 1);
    origin_ = -std::min<std::ptrdiff_t>(down, 0) - std::min<std::ptrdiff_t>(right, 0);
    const std::ptrdiff_t end =
        origin_ + std::max<std::ptrdiff_t>(down, 0) + std::max<std::ptrdiff_t>(right, 0) + 1;
    block_ = bytes.numbers(static_cast<std::size_t>(end));
    block_.shrink_to_fit();
  }

  double* data() { return block_.data() + origin_; }
  reference::Steps steps() const { return steps_; }
  const Values& block() const { return block_; }

 private:
  reference::Steps steps_{};
  std::ptrdiff_t origin_ = 0;
  Values block_;
};

inline void strided_product(Bytes& bytes) {
  const std::size_t m = extent(bytes), k = extent(bytes), n = extent(bytes);
  Strided A(bytes, m, k);
  Strided B(bytes, k, n);
  Strided C(bytes, m, n);
  Strided expected = C;
  const auto step = [](std::ptrdiff_t s) { return static_cast<int>(s); };
  tnla_mat_mat_prod(m, k, n, A.data(), B.data(), C.data(), step(A.steps().row), step(A.steps().col),
                    step(B.steps().row), step(B.steps().col), step(C.steps().row), step(C.steps().col));
  reference::strided_product(m, k, n, A.data(), A.steps(), B.data(), B.steps(), expected.data(), C.steps());
  EXPECT_SAME_ARRAY(expected.block().size(), C.block().data(), expected.block().data());
}

}  // namespace raw
