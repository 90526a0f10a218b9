// SPDX-License-Identifier: MIT

#include <gtest/gtest.h>

#include <cstddef>
#include <vector>

#include "reference/decomposition_reference.h"
#include "support/bits.h"
#include "support/kernel_sets.h"
#include "support/values.h"

namespace {

using reference::Matrix;
using tnla_kernels::Index;
using tnla_kernels::KernelSet;

using Values = std::vector<double>;

// Solves with the triangle of an ldr-high matrix in place, and compares all of the ldx-high block: what
// lies below the solution must stay.
void expect_substituted(Random& random, std::size_t n, std::size_t p, bool any_values) {
  const std::size_t ldr = n + random.below(4);
  const std::size_t ldx = n + random.below(4);
  const auto values = [&](std::size_t count) {
    return any_values ? random.any_vector(count) : random.vector(count);
  };
  const Matrix R(ldr, n, values(ldr * n));
  const Matrix X(ldx, p, values(ldx * p));
  Matrix expected = X;
  reference::back_substitute(R, n, expected);
  for_every_kernel_set([&](const KernelSet& set) {
    Values x = X.a;
    set.triangular.back_substitute(static_cast<Index>(n), R.a.data(), static_cast<Index>(ldr), x.data(),
                                   static_cast<Index>(ldx), static_cast<Index>(p));
    ASSERT_TRUE(are_same("", "x", "", x.size(), x.data(), expected.a.data())) << n << " x " << p;
  });
}

TEST(TriangularKernels, SubstituteBackForEveryNumberOfRightSides) {
  Random random(1);
  for (std::size_t n = 0; n <= 9; ++n) {
    for (std::size_t p = 0; p <= 11; ++p) {
      expect_substituted(random, n, p, false);
      expect_substituted(random, n, p, true);
    }
  }
}

TEST(TriangularKernels, SubstituteBackInLargeTriangles) {
  Random random(2);
  expect_substituted(random, 130, 7, false);
  expect_substituted(random, 64, 16, true);
}

// The sum of no terms is +0.0: -0.0 less that is -0.0, and divided by a negative number 0.0.
TEST(TriangularKernels, KeepTheSignsOfZeros) {
  for_every_kernel_set([](const KernelSet& set) {
    const Values r = {-2.0};
    Values x = {-0.0, 0.0, -0.0, -0.0, 0.0};
    set.triangular.back_substitute(1, r.data(), 1, x.data(), 1, 5);
    const Values expected = {0.0, -0.0, 0.0, 0.0, -0.0};
    ASSERT_TRUE(are_same("", "x", "", 5, x.data(), expected.data()));
  });
}

}  // namespace
