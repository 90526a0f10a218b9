// SPDX-License-Identifier: MIT

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "reference/decomposition_reference.h"
#include "support/bits.h"
#include "support/kernel_sets.h"
#include "support/values.h"

namespace {

using reference::Matrix;
using reference::Reflection;
using tnla_kernels::Index;
using tnla_kernels::KernelSet;
using tnla_kernels::QrColumns;
using tnla_kernels::StoredReflection;

constexpr double kGap = 77.0;  // between the columns, and behind what a kernel may write

std::size_t size(Index n) { return static_cast<std::size_t>(n); }
Index index(std::size_t n) { return static_cast<Index>(n); }

// A matrix with a leading dimension of its own, in a block that ends with what must not be touched.
struct Padded {
  std::size_t m;
  std::size_t n;
  std::size_t ld;
  std::vector<double> block;

  Padded(const Matrix& from, std::size_t pad)
      : m(from.m), n(from.n), ld(from.m + pad), block(ld * from.n + 8, kGap) {
    for (std::size_t j = 0; j < n; ++j) std::copy_n(from.a.data() + j * m, m, column(j));
  }

  double* column(std::size_t j) { return block.data() + j * ld; }
};

void expect_padded(Padded& actual, const Matrix& expected) {
  Padded padded(expected, actual.ld - actual.m);
  ASSERT_TRUE(
      are_same("", "the matrix", "", actual.block.size(), actual.block.data(), padded.block.data()));
}

// Scratch memory of just the size that is asked for, full of NaN, at an place from a cache line.
struct Scratch {
  static constexpr std::size_t kGuard = 8;
  std::vector<double> block;
  std::size_t n;
  std::size_t place;

  Scratch(std::size_t rows, std::size_t cols, std::size_t start)
      : n(size(tnla_kernels::qr_scratch(index(rows), index(cols)))), place(start) {
    block.assign(place + n + kGuard, kNaN);
    std::fill_n(block.end() - kGuard, kGuard, kGap);
  }

  double* data() { return block.data() + place; }
  void expect_kept() const {
    for (std::size_t i = 0; i < kGuard; ++i) ASSERT_EQ(*(block.end() - 1 - index(i)), kGap);
  }
};

// --- factor ---------------------------------------------------------------------------------------------

// Each of n_pivots columns gives a reflection and keeps its range, and the later columns are turned by it.
struct Factored {
  Matrix A;
  std::vector<Reflection> reflections;

  Factored(const Matrix& matrix, std::size_t n_pivots) : A(matrix) {
    for (std::size_t j = 0; j < std::min(n_pivots, A.n) && j + 1 < A.m; ++j) {
      const int pivot = static_cast<int>(j);
      reflections.emplace_back(pivot, pivot + 1, static_cast<int>(A.m), A.column(j), 1);
      reference::apply_to_columns(reflections.back(), A, j + 1, A.n);
    }
    for (std::size_t j = 0; j < reflections.size(); ++j) {
      for (std::size_t i = j + 1; i < A.m; ++i) A(i, j) = reflections[j].u[i];
    }
  }
};

// A is the first n columns of the matrix, B the others; `place` is where in a cache line the scratch
// begins.
void expect_factored(const KernelSet& set, const Matrix& AB, std::size_t n, std::size_t pad,
                     std::size_t place) {
  SCOPED_TRACE(testing::Message() << AB.m << " x " << AB.n << ", A " << n << " columns, gap " << pad);
  const Factored expected(AB, n);
  const std::size_t d = expected.reflections.size();
  const Index ld = index(AB.m + pad);
  Padded source(AB, pad);
  Padded result(Matrix(AB.m, AB.n), pad + 1);
  Scratch scratch(AB.m, AB.n, place);
  std::vector<StoredReflection> made(d + 1, {nullptr, kGap, kGap});
  const auto factor = [&](const QrColumns& columns, Padded& w) {
    set.qr.factor(index(AB.m), columns, w.block.data(), index(w.ld), made.data(), scratch.data());
    expect_padded(w, expected.A);
    for (std::size_t j = 0; j < d; ++j) {
      const Reflection& h = expected.reflections[j];
      ASSERT_EQ(made[j].u, w.column(j) + j + 1);
      ASSERT_TRUE(same_bits(made[j].up, h.u[j])) << j;
      ASSERT_TRUE(same_bits(made[j].scale, h.scale)) << j;
    }
    ASSERT_EQ(made[d].u, nullptr);
    scratch.expect_kept();
  };
  factor({index(n), source.column(0), ld, index(AB.n - n), source.column(n), ld}, result);
  expect_padded(source, AB);
  if (n == AB.n) factor({index(n), source.column(0), ld, 0, nullptr, 0}, source);  // in place
}

void expect_factored_by_all(const Matrix& AB, std::size_t n, std::size_t pad = 0, std::size_t place = 0) {
  for_every_kernel_set([&](const KernelSet& set) { expect_factored(set, AB, n, pad, place); });
}

Matrix uniform(Random& random, std::size_t m, std::size_t n) { return {m, n, random.vector(m * n)}; }
Matrix any(Random& random, std::size_t m, std::size_t n) { return {m, n, random.any_vector(m * n)}; }

// Whole numbers from -1 to 1: many sums are exactly zero, in one lane or another.
Matrix sparse(Random& random, std::size_t m, std::size_t n) {
  Matrix A(m, n);
  for (double& x : A.a) {
    const std::size_t kind = random.below(8);
    x = kind < 2 ? 1.0 : kind == 2 ? -1.0 : kind == 3 ? -0.0 : 0.0;
  }
  return A;
}

TEST(QrKernels, FactorAllSmallShapes) {
  Random random(1);
  for (std::size_t m = 0; m <= 14; ++m) {
    for (std::size_t n = 0; n <= 14; ++n) {
      for (const std::size_t n_pivots : {n, n / 2, std::min<std::size_t>(n, 1), std::size_t{0}}) {
        const std::size_t pad = random.below(3);
        const std::size_t place = random.below(8);
        expect_factored_by_all(uniform(random, m, n), n_pivots, pad, place);
        expect_factored_by_all(any(random, m, n), n_pivots, pad, place);
        expect_factored_by_all(sparse(random, m, n), n_pivots, pad, place);
      }
    }
  }
}

// Past two of the widest panels, with every number of columns left over, and every number of rows.
TEST(QrKernels, FactorEveryNumberOfColumns) {
  Random random(2);
  for (std::size_t n = 15; n <= 90; ++n) {
    for (const std::size_t m : {n, n + 3, n / 2}) {
      const std::size_t n_pivots = n - random.below(6);
      expect_factored_by_all(uniform(random, m, n), n_pivots, 1);
      expect_factored_by_all(n % 2 == 0 ? any(random, m, n) : sparse(random, m, n), n_pivots);
    }
  }
}

TEST(QrKernels, FactorLargeShapes) {
  Random random(3);
  for (const auto& [m, n] :
       {std::pair<std::size_t, std::size_t>{256, 256}, {301, 120}, {130, 300}, {3000, 21}, {1300, 9}}) {
    expect_factored_by_all(uniform(random, m, n), n);
    expect_factored_by_all(sparse(random, m, n), n - 2);
  }
}

// One column of every kind that make refuses or reflection_scale judges, between others.
TEST(QrKernels, FactorColumnsWithoutAReflection) {
  Random random(4);
  const double entries[] = {0.0, -0.0, 1e-30, -1e-21, 1e-11, 5e-11, 1e-10, kTiny, kNaN, kInf, kHuge};
  for (std::size_t n = 1; n <= 50; n += 1 + n / 4) {
    for (const double entry : entries) {
      for (const std::size_t m : {n, n + 5}) {
        Matrix A = uniform(random, m, n + 3);
        for (std::size_t j = random.below(3); j < n; j += 1 + random.below(9)) {
          std::fill_n(A.column(j), m, entry);  // above the diagonal the earlier reflections change it
          if (j == 0) std::fill_n(A.column(j), 1, 0.0);
        }
        expect_factored_by_all(A, n);
      }
    }
  }
}

// Each column in turn, which the ones before it do not touch, at the bounds of `make` and of
// reflection_scale.
TEST(QrKernels, FactorColumnsAtTheThresholds) {
  Random random(8);
  for (const std::size_t n : {3u, 13u, 46u}) {
    for (const auto& entries : reference::columns_at_the_thresholds()) {
      for (std::size_t j = 0; j < n; j += 1 + random.below(n / 3)) {
        Matrix A = uniform(random, n + 1, n);
        for (std::size_t k = 0; k <= j; ++k) std::fill_n(A.column(k), A.m, 0.0);
        for (std::size_t k = 0; k < j; ++k) A(k, k) = 1.0;
        std::copy(entries.begin(), entries.end(), A.column(j) + j);
        expect_factored_by_all(A, n);
      }
    }
  }
}

// Columns that the earlier reflections do not touch: they begin with zeros where those have their entries.
TEST(QrKernels, FactorBlockDiagonals) {
  Random random(5);
  for (const std::size_t n : {7u, 16u, 33u, 50u}) {
    for (const std::size_t block : {1u, 2u, 3u, 5u}) {
      Matrix A(n + 2, n);
      for (std::size_t j = 0; j < n; ++j) {
        const std::size_t begin = j / block * block;
        for (std::size_t i = begin; i < std::min(begin + block, n); ++i) A(i, j) = random.uniform();
        for (std::size_t i = 0; i < begin; ++i) A(i, j) = random.below(2) == 0 ? 0.0 : -0.0;
      }
      expect_factored_by_all(A, n);
      expect_factored_by_all(A, n / 2);
    }
  }
}

// --- solve ----------------------------------------------------------------------------------------------

void expect_solved(const KernelSet& set, const Matrix& A, const Matrix& B, std::size_t n, std::size_t pad) {
  SCOPED_TRACE(testing::Message() << A.m << " x " << A.n << ", order " << n << ", " << B.n
                                  << " right sides, gap " << pad);
  const Factored factored(A, A.n);
  Matrix QtB = B;
  std::vector<StoredReflection> list;
  for (const Reflection& h : factored.reflections) {
    reference::apply_to_columns(h, QtB, 0, B.n);
    list.push_back({h.u.data() + h.j_zero, h.u[size(h.j_pivot)], h.scale});
  }
  Matrix X = reference::resized(QtB, n, B.n);
  reference::back_substitute(factored.A, n, X);

  Padded r(factored.A, pad);
  Padded b(B, pad);
  Padded x(Matrix(n, B.n), pad);
  Scratch scratch(A.m, B.n, pad);
  const auto solve = [&](double* to, std::size_t ld) {
    set.qr.solve(index(A.m), index(list.size()), list.data(), index(n), r.block.data(), index(r.ld),
                 index(B.n), b.block.data(), index(b.ld), to, index(ld), scratch.data());
    scratch.expect_kept();
  };
  solve(x.block.data(), x.ld);
  expect_padded(x, X);
  expect_padded(b, B);
  expect_padded(r, factored.A);
  solve(b.block.data(), b.ld);  // in place: the rows from n on stay
  Matrix in_place = B;
  for (std::size_t c = 0; c < B.n; ++c) std::copy_n(X.column(c), n, in_place.column(c));
  expect_padded(b, in_place);
}

void expect_solved_by_all(const Matrix& A, const Matrix& B, std::size_t n, std::size_t pad) {
  for_every_kernel_set([&](const KernelSet& set) { expect_solved(set, A, B, n, pad); });
}

TEST(QrKernels, SolveForEveryNumberOfRightSides) {
  Random random(6);
  for (std::size_t p = 0; p <= 50; ++p) {
    const std::size_t n = random.below(20);
    const std::size_t m = n + random.below(9);
    const std::size_t order = n == 0 ? 0 : n - random.below(2);
    expect_solved_by_all(uniform(random, m, n), uniform(random, m, p), order, p % 3);
    expect_solved_by_all(any(random, m, n), any(random, m, p), order, 0);
    expect_solved_by_all(sparse(random, m, n), sparse(random, m, p), order, 1);
  }
}

TEST(QrKernels, SolveLargeSystems) {
  Random random(7);
  expect_solved_by_all(uniform(random, 130, 130), uniform(random, 130, 130), 130, 0);
  expect_solved_by_all(uniform(random, 700, 40), uniform(random, 700, 3), 40, 0);
  expect_solved_by_all(sparse(random, 90, 60), reference::identity(90), 60, 0);
}

}  // namespace
