// SPDX-License-Identifier: MIT

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <utility>
#include <vector>

#include "reference/product_reference.h"
#include "support/bits.h"
#include "support/kernel_sets.h"
#include "support/values.h"

namespace {

using reference::Steps;
using tnla_kernels::Index;
using tnla_kernels::ProductKernels;
using Values = std::vector<double>;

// A is m x k, B is k x n.
struct Shape {
  std::size_t m;
  std::size_t k;
  std::size_t n;
};

std::ostream& operator<<(std::ostream& out, const Shape& s) {
  return out << "m = " << s.m << ", k = " << s.k << ", n = " << s.n;
}

// Every remainder of vectors and tiles; and what lies around the blocks of 64 rows and a depth of 128, by
// which a large A is packed.
std::vector<Shape> shapes() {
  std::vector<Shape> all;
  for (std::size_t m = 0; m <= 13; ++m) {
    for (std::size_t k : {0u, 1u, 2u, 3u, 7u}) {
      for (std::size_t n = 0; n <= 14; ++n) all.push_back({m, k, n});
    }
  }
  for (std::size_t m = 14; m <= 33; ++m) all.push_back({m, 150, 5 + m % 13});
  for (std::size_t m : {63u, 64u, 65u, 71u, 72u, 127u, 128u, 129u, 136u, 201u}) all.push_back({m, 40, 13});
  for (std::size_t k : {127u, 128u, 129u, 255u, 256u, 257u, 300u, 385u}) all.push_back({67, k, 8});
  for (std::size_t n = 1; n <= 20; ++n) all.push_back({70, 131, n});
  for (const Shape& s : {Shape{1, 3000, 5}, Shape{3, 1000, 9}, Shape{7, 500, 7}, Shape{8, 251, 6},
                         Shape{400, 5, 7}, Shape{400, 6, 1}, Shape{2000, 1, 3}, Shape{140, 270, 50}}) {
    all.push_back(s);
  }
  return all;
}

// Mostly numbers, or with the special values among them: a NaN in a row hides what happens to its sums.
Values draw(Random& random, std::size_t n, int kind) {
  return kind == 0 ? random.vector(n) : random.any_vector(n);
}

template <class Check>
void for_shapes(const Check& check) {
  for (const Shape& s : shapes()) {
    for (int kind = 0; kind < 2; ++kind) {
      Random random(s.m * 1000003 + s.k * 1009 + s.n * 2 + static_cast<std::size_t>(kind));
      const Values a = draw(random, s.m * s.k, kind);
      const Values b = draw(random, s.k * s.n, kind);
      SCOPED_TRACE(testing::Message() << s << ", kind " << kind);
      check(s, a, b);
      if (testing::Test::HasFatalFailure()) return;
    }
  }
}

Index index(std::size_t n) { return static_cast<Index>(n); }

tnla_kernels::Steps steps(const Steps& s) { return {s.row, s.col}; }

constexpr std::size_t kRoom = 16;
constexpr double kGuard = -7.25e77;

// `kernel` is to turn a block of guards into `expected`, with kRoom guards before and behind.
template <class Kernel>
void expect_block(const Values& expected, const Kernel& kernel) {
  Values framed(kRoom, kGuard);
  framed.insert(framed.end(), expected.begin(), expected.end());
  framed.insert(framed.end(), kRoom, kGuard);
  for_every_kernel_set([&](const tnla_kernels::KernelSet& set) {
    Values actual(framed.size(), kGuard);
    kernel(set.product, actual.data() + kRoom);
    ASSERT_TRUE(are_same("", "C", "", framed.size(), actual.data(), framed.data()));
  });
}

TEST(ProductKernels, MultiplyColumnMajorBlocks) {
  for_shapes([](const Shape& s, const Values& a, const Values& b) {
    expect_block(reference::product(s.m, s.k, s.n, a, b), [&](const ProductKernels& kernels, double* c) {
      kernels.product(index(s.m), index(s.k), index(s.n), a.data(), b.data(), c);
    });
  });
}

TEST(ProductKernels, MultiplyAMatrixAndAVector) {
  for (std::size_t m = 0; m <= 37; ++m) {
    for (std::size_t n = 0; n <= 20; ++n) {
      for (int kind = 0; kind < 2; ++kind) {
        SCOPED_TRACE(testing::Message() << m << " x " << n << ", kind " << kind);
        Random random(m * 100 + n * 2 + static_cast<std::size_t>(kind));
        const Values a = draw(random, m * n, kind);
        const Values x = draw(random, n, kind);
        expect_block(reference::product(m, n, 1, a, x), [&](const ProductKernels& kernels, double* y) {
          kernels.matrix_vector(index(m), index(n), a.data(), x.data(), y);
        });
      }
    }
  }
}

TEST(ProductKernels, DoNotDependOnAlignment) {
  for (const Shape& s : {Shape{9, 5, 7}, Shape{41, 60, 13}, Shape{41, 60, 1}}) {
    Random random(s.m);
    const Values a = random.vector(s.m * s.k + 8), b = random.vector(s.k * s.n + 8);
    for (std::size_t offset = 0; offset < 8; ++offset) {
      SCOPED_TRACE(testing::Message() << s << ", offset " << offset);
      Values expected(s.m * s.n);
      reference::product(s.m, s.k, s.n, a.data() + offset, b.data() + offset, expected.data());
      expect_block(expected, [&](const ProductKernels& kernels, double* c) {
        kernels.product(index(s.m), index(s.k), index(s.n), a.data() + offset, b.data() + offset, c);
      });
      expect_block(expected, [&](const ProductKernels& kernels, double* c) {
        Values shifted(s.m * s.n + 8);
        kernels.product(index(s.m), index(s.k), index(s.n), a.data() + offset, b.data() + offset,
                        shifted.data() + offset);
        std::copy_n(shifted.data() + offset, s.m * s.n, c);
      });
    }
  }
}

// --- Any steps -----------------------------------------------------------------------------------------

// The ways in which a rows x cols matrix may lie.
std::vector<Steps> layouts(std::size_t rows, std::size_t cols) {
  const std::ptrdiff_t m = index(rows), n = index(cols);
  return {{1, m},     {n, 1},                                   // by columns, by rows
          {1, m + 3}, {n + 2, 1},  {2, 2 * m + 1}, {3 * n, 3},  // with gaps
          {-1, m},    {1, -m - 1}, {-n, -1}};                   // backwards
}

// An array that a rows x cols matrix of any steps fits in, and where its element (0, 0) is.
struct Place {
  std::size_t size;
  std::size_t origin;
};

Place place(std::size_t rows, std::size_t cols, const Steps& s) {
  const std::ptrdiff_t last_row = rows == 0 ? 0 : s.at(rows - 1, 0);
  const std::ptrdiff_t last_col = cols == 0 ? 0 : s.at(0, cols - 1);
  const std::ptrdiff_t lowest =
      std::min<std::ptrdiff_t>(last_row, 0) + std::min<std::ptrdiff_t>(last_col, 0);
  const std::ptrdiff_t highest =
      std::max<std::ptrdiff_t>(last_row, 0) + std::max<std::ptrdiff_t>(last_col, 0);
  return {static_cast<std::size_t>(highest - lowest) + 1 + 2 * kRoom,
          kRoom + static_cast<std::size_t>(-lowest)};
}

void expect_strided_product(const Shape& s, const Steps& sa, const Steps& sb, const Steps& sc, int kind) {
  SCOPED_TRACE(testing::Message() << s << ", steps " << sa.row << ' ' << sa.col << ", " << sb.row << ' '
                                  << sb.col << ", " << sc.row << ' ' << sc.col);
  Random random(s.m + 100 * s.k + 10000 * s.n);
  const Place pa = place(s.m, s.k, sa), pb = place(s.k, s.n, sb), pc = place(s.m, s.n, sc);
  const Values a = draw(random, pa.size, kind), b = draw(random, pb.size, kind);
  Values expected(pc.size, kGuard);
  reference::strided_product(s.m, s.k, s.n, a.data() + pa.origin, sa, b.data() + pb.origin, sb,
                             expected.data() + pc.origin, sc);
  for_every_kernel_set([&](const tnla_kernels::KernelSet& set) {
    Values actual(pc.size, kGuard);
    set.product.strided_product(index(s.m), index(s.k), index(s.n), a.data() + pa.origin, steps(sa),
                                b.data() + pb.origin, steps(sb), actual.data() + pc.origin, steps(sc));
    ASSERT_TRUE(are_same("", "C", "", pc.size, actual.data(), expected.data()));
  });
}

TEST(StridedProductKernel, ReadsAndWritesEveryLayout) {
  for (const Shape& s :
       {Shape{3, 2, 4}, Shape{9, 5, 7}, Shape{1, 6, 5}, Shape{5, 6, 1}, Shape{21, 140, 13}}) {
    for (const Steps& sa : layouts(s.m, s.k)) {
      for (const Steps& sb : layouts(s.k, s.n)) {
        for (const Steps& sc : layouts(s.m, s.n)) expect_strided_product(s, sa, sb, sc, 0);
      }
    }
  }
}

TEST(StridedProductKernel, HandlesEveryShapeInEveryOrientation) {
  for (const Shape& s : shapes()) {
    const std::ptrdiff_t m = index(s.m), k = index(s.k), n = index(s.n);
    expect_strided_product(s, {1, m}, {1, k}, {1, m}, 1);
    expect_strided_product(s, {k, 1}, {n, 1}, {1, m}, 1);
    expect_strided_product(s, {k, 1}, {n, 1}, {n, 1}, 0);
    if (HasFatalFailure()) return;
  }
}

TEST(StridedProductKernel, StepsOfZeroRepeatAnOperand) {
  for (const Shape& s : {Shape{5, 4, 7}, Shape{70, 40, 9}}) {
    expect_strided_product(s, {0, 1}, {1, index(s.k)}, {1, index(s.m)}, 0);
    expect_strided_product(s, {1, 0}, {0, 1}, {1, index(s.m)}, 0);
    expect_strided_product(s, {0, 0}, {0, 0}, {index(s.n), 1}, 0);
  }
}

// Elements of C at one place: their sums run on there, in row order.
TEST(StridedProductKernel, SharedPlacesTakeTheSumsInRowOrder) {
  for (const Shape& s : {Shape{2, 3, 2}, Shape{12, 7, 9}, Shape{70, 40, 9}}) {
    const Steps by_columns_a = {1, index(s.m)}, by_columns_b = {1, index(s.k)};
    for (const Steps& sc :
         {Steps{0, 0}, Steps{0, 1}, Steps{1, 0}, Steps{1, 1}, Steps{1, -1}, Steps{2, 1},
          Steps{1, index(s.m) - 1}, Steps{index(s.n) - 1, 1}, Steps{-2, 2}, Steps{6, 4}}) {
      expect_strided_product(s, by_columns_a, by_columns_b, sc, 0);
    }
  }
}

// Steps that interleave the columns, and those next to sharing: every place is still one element's.
TEST(StridedProductKernel, InterleavedPlacesAreNotShared) {
  expect_strided_product({2, 9, 5}, {1, 2}, {1, 9}, {5, 2}, 0);
  expect_strided_product({3, 9, 2}, {1, 3}, {1, 9}, {2, 3}, 0);
  expect_strided_product({4, 9, 3}, {1, 4}, {1, 9}, {3, -4}, 0);
}

// --- Nothing to do -------------------------------------------------------------------------------------

TEST(ProductKernels, WithoutRowsOrColumnsReadAndWriteNothing) {
  constexpr Index kMany = Index{1} << 40;
  for_every_kernel_set([](const tnla_kernels::KernelSet& set) {
    set.product.matrix_vector(0, 3, nullptr, nullptr, nullptr);
    set.product.matrix_vector(0, 0, nullptr, nullptr, nullptr);
    for (const auto& [m, n] : {std::pair<Index, Index>{0, 5}, {5, 0}, {0, 0}, {0, 1}, {1, 0}}) {
      for (const Index k : {Index{0}, Index{3}, kMany}) {
        set.product.product(m, k, n, nullptr, nullptr, nullptr);
        set.product.strided_product(m, k, n, nullptr, {1, 1}, nullptr, {1, 1}, nullptr, {0, 0});
      }
    }
    set.product.product(kMany, kMany, 0, nullptr, nullptr, nullptr);
  });
}

TEST(ProductKernels, WithoutInnerDimensionAreZero) {
  for (const Shape& s : {Shape{3, 0, 4}, Shape{100, 0, 30}, Shape{100, 0, 1}}) {
    expect_block(Values(s.m * s.n, 0.0), [&](const ProductKernels& kernels, double* c) {
      kernels.product(index(s.m), 0, index(s.n), nullptr, nullptr, c);
    });
    expect_block(Values(s.m * s.n, 0.0), [&](const ProductKernels& kernels, double* c) {
      kernels.strided_product(index(s.m), 0, index(s.n), nullptr, {2, 3}, nullptr, {5, 7}, c,
                              {index(s.n), 1});
    });
  }
  expect_block(Values(50, 0.0), [&](const ProductKernels& kernels, double* y) {
    kernels.matrix_vector(50, 0, nullptr, nullptr, y);
  });
}

}  // namespace
