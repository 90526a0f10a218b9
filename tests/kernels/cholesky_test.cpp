// SPDX-License-Identifier: MIT

#include <gtest/gtest.h>

#include <cstddef>
#include <vector>

#include "reference/cholesky_reference.h"
#include "support/bits.h"
#include "support/guarded.h"
#include "support/kernel_sets.h"
#include "support/values.h"

namespace {

using reference::Matrix;
using tnla_kernels::CholeskyKernels;
using tnla_kernels::Index;

using Values = std::vector<double>;

// A's upper triangle; what counts as not there is NaN.
Values upper_triangle(const Matrix& A) {
  Values l(A.n * A.n, kNaN);
  for (std::size_t j = 0; j < A.n; ++j) {
    for (std::size_t i = 0; i <= j; ++i) l[j * A.n + i] = A(i, j);
  }
  return l;
}

void expect_factor(const CholeskyKernels& kernels, const Matrix& A, std::size_t before = Guarded::kGuard) {
  const std::size_t n = A.n;
  SCOPED_TRACE(testing::Message() << n << " rows, " << before << " values before");
  const auto size = static_cast<Index>(n);
  const reference::Cholesky expected(A);
  Guarded l(upper_triangle(A), before);
  Guarded diagonal(Values(n, 0.0), before);
  Guarded scratch(Values(static_cast<std::size_t>(kernels.factor_scratch(size)), kNaN), before);
  ASSERT_EQ(kernels.factor(size, l.data(), diagonal.data(), scratch.data()), expected.complete);
  ASSERT_TRUE(l.is_intact() && diagonal.is_intact() && scratch.is_intact());
  EXPECT_SAME_ARRAY(n, diagonal.data(), expected.diagonal.data());
  if (!expected.complete) return;
  for (std::size_t j = 0; j < n; ++j) {
    for (std::size_t i = j + 1; i < n; ++i) {
      ASSERT_TRUE(same_bits(l.data()[j * n + i], expected.L(i, j))) << i << ", " << j;
      ASSERT_TRUE(same_bits(l.data()[i * n + j], expected.L(i, j))) << j << ", " << i;
    }
  }
  Values b(n);
  for (std::size_t i = 0; i < n; ++i) b[i] = static_cast<double>(i % 5) - 1.7;
  const Values x = expected.solve(b);
  Guarded actual(b, before);
  kernels.solve(size, l.data(), diagonal.data(), actual.data(), actual.data());
  EXPECT_SAME_ARRAY(n, actual.data(), x.data());
  Guarded apart(Values(n, kNaN), before);
  kernels.solve(size, l.data(), diagonal.data(), b.data(), apart.data());
  EXPECT_SAME_ARRAY(n, apart.data(), x.data());
  EXPECT_TRUE(actual.is_intact() && apart.is_intact());
}

// Diagonally dominant, so definite.
Matrix random_definite(Random& random, std::size_t n) {
  Matrix A(n, n, random.vector(n * n));
  for (std::size_t i = 0; i < n; ++i) A(i, i) = static_cast<double>(n) + 1.0;
  return A;
}

TEST(CholeskyKernels, FactorsEverySize) {
  for_every_kernel_set([](const tnla_kernels::KernelSet& set) {
    Random random(1);
    for (std::size_t n = 0; n <= 70; ++n) expect_factor(set.cholesky, random_definite(random, n));
    for (const std::size_t n : {95u, 96u, 97u, 127u, 128u, 129u, 130u, 144u, 160u, 161u, 200u, 257u}) {
      expect_factor(set.cholesky, random_definite(random, n));
    }
  });
}

TEST(CholeskyKernels, FactorAtEveryAlignment) {
  for_every_kernel_set([](const tnla_kernels::KernelSet& set) {
    Random random(2);
    for (std::size_t before = 0; before <= Guarded::kGuard; ++before) {
      for (const std::size_t n : {3u, 8u, 37u, 131u}) {
        expect_factor(set.cholesky, random_definite(random, n), before);
      }
    }
  });
}

// The last pivot is 2 - tiny^2 - 1, where tiny^2 is lost beside 2 and not beside 1; so in every row of a
// block that ends with these three.
TEST(CholeskyKernels, SubtractTheLatestColumnFirst) {
  const double tiny = 1.25 * 0x1p-27;
  ASSERT_NE(2.0 - tiny * tiny - 1.0, 2.0 - 1.0 - tiny * tiny);
  for_every_kernel_set([tiny](const tnla_kernels::KernelSet& set) {
    for (std::size_t n = 3; n <= 150; ++n) {
      Matrix A = reference::identity(n);
      A(n - 3, n - 1) = 1.0;
      A(n - 2, n - 1) = tiny;
      A(n - 1, n - 1) = 2.0;
      expect_factor(set.cholesky, A);
    }
  });
}

// At every place; the pivots before it are still there.
TEST(CholeskyKernels, EndAtAFailedPivot) {
  for_every_kernel_set([](const tnla_kernels::KernelSet& set) {
    Random random(3);
    for (const std::size_t n : {1u, 7u, 8u, 33u, 72u, 150u}) {
      const Matrix A = random_definite(random, n);
      for (std::size_t i = 0; i < n; ++i) {
        Matrix failing = A;
        failing(i, i) = i % 2 == 0 ? -1.0 : 0.0;
        ASSERT_FALSE(reference::Cholesky(failing).complete);
        expect_factor(set.cholesky, failing);
      }
    }
  });
}

// One pivot is the bound itself, or lies beside it; all before it are apart from it.
TEST(CholeskyKernels, APivotEqualToTheBoundPasses) {
  constexpr double kBound = tnla_kernels::kSmallestPivot;
  for_every_kernel_set([](const tnla_kernels::KernelSet& set) {
    for (const std::size_t n : {1u, 5u, 12u, 40u}) {
      for (const double pivot : {ulp_below(kBound), kBound, ulp_above(kBound)}) {
        Matrix A = reference::identity(n);
        A(n - 1, n - 1) = pivot;
        EXPECT_EQ(reference::Cholesky(A).complete, pivot >= kBound);
        expect_factor(set.cholesky, A);
      }
    }
  });
}

// A NaN pivot passes, and so does an infinite one.
TEST(CholeskyKernels, FactorSpecialValues) {
  for_every_kernel_set([](const tnla_kernels::KernelSet& set) {
    Random random(4);
    int n_complete = 0;
    for (const std::size_t n : {2u, 6u, 9u, 18u, 45u}) {
      const Matrix A = random_definite(random, n);
      for (const double special : special_values()) {
        for (int trial = 0; trial < 12; ++trial) {
          Matrix changed = A;
          const std::size_t row = random.below(n);
          changed(row, row + random.below(n - row)) = special;
          expect_factor(set.cholesky, changed);
          n_complete += reference::Cholesky(changed).complete ? 1 : 0;
        }
      }
      expect_factor(set.cholesky, reference::diagonal(Values(n, kNaN)));
      expect_factor(set.cholesky, reference::diagonal(Values(n, kInf)));
      expect_factor(set.cholesky, Matrix(n, n, Values(n * n, kNaN)));
    }
    EXPECT_GT(n_complete, 300);
  });
}

// Zeros of both signs, and elements that vanish.
TEST(CholeskyKernels, FactorSparseAndTinyElements) {
  for_every_kernel_set([](const tnla_kernels::KernelSet& set) {
    Random random(5);
    const Values elements = {0.0, -0.0, 0.0, kTiny, -kTiny, 1e-200, 0.25, -0.25};
    for (std::size_t n = 1; n <= 50; ++n) {
      Matrix A(n, n);
      for (double& element : A.a) element = elements[random.below(elements.size())];
      for (std::size_t i = 0; i < n; ++i) A(i, i) = static_cast<double>(n);
      expect_factor(set.cholesky, A);
    }
  });
}

}  // namespace
