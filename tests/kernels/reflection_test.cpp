// SPDX-License-Identifier: MIT

#include <gtest/gtest.h>

#include <cstddef>
#include <vector>

#include "reference/reflection_reference.h"
#include "support/bits.h"
#include "support/kernel_sets.h"
#include "support/values.h"

namespace {

using tnla_kernels::Index;
using tnla_kernels::KernelSet;

using Values = std::vector<double>;

constexpr double kUntouched = 77.0;

// --- make -----------------------------------------------------------------------------------------------

void expect_made(const Values& v, int n, int incr) {
  SCOPED_TRACE(testing::Message() << "range of " << n << ", increment " << incr);
  Values expected = v;
  double expected_up = kUntouched;
  reference::h1(0, 1, n + 1, expected.data(), incr, expected_up);
  for_every_kernel_set([&](const KernelSet& set) {
    Values actual = v;
    double up = kUntouched;
    const bool made = set.reflection.make(actual[0], n, actual.data() + incr, incr, up);
    if (n > 0) {
      ASSERT_EQ(made, !same_bits(expected_up, kUntouched));
      ASSERT_TRUE(same_bits(up, expected_up)) << in_full(up) << " and " << in_full(expected_up);
      ASSERT_TRUE(are_same("", "v", "", v.size(), actual.data(), expected.data()));
    }
  });
}

TEST(ReflectionKernels, MakeFromEveryLength) {
  Random random(1);
  for (int n = 1; n <= 40; ++n) {
    for (const int incr : {1, 2, 5}) {
      const int entries = (n + 1) * incr;
      const auto size = static_cast<std::size_t>(entries);
      expect_made(random.vector(size), n, incr);
      expect_made(random.any_vector(size), n, incr);
    }
  }
}

// In each place in turn: the largest, a NaN beside it, the only one that counts.
TEST(ReflectionKernels, MakeFindsTheLargestInEveryPlace) {
  for (int n = 1; n <= 20; ++n) {
    for (std::size_t at = 0; at <= static_cast<std::size_t>(n); ++at) {
      for (const double entry : {3.0, -3.0, kNaN, kInf, 1e-20, ulp_below(1e-20), 1e200}) {
        for (const double others : {0.0, -0.0, 1.0, 1e-25}) {
          Values v(static_cast<std::size_t>(n) + 1, others);
          v[at] = entry;
          expect_made(v, n, 1);
        }
      }
    }
  }
}

// --- reflect --------------------------------------------------------------------------------------------

struct Shape {
  int n;  // of the range
  int n_vec;
  int incr;
  int stride;
};

// The reflections reach behind the last vector and before the first one nowhere.
void expect_reflected(Random& random, const Shape& s, const Values& u, double up, double scale) {
  SCOPED_TRACE(testing::Message() << s.n_vec << " vectors of " << s.n << ", increment " << s.incr
                                  << ", stride " << s.stride);
  const auto entries = (s.n + 1) * s.incr + (s.n_vec + 1) * s.stride + 16;
  const auto size = static_cast<std::size_t>(entries);
  Values w = random.vector(size);
  // Now and then a vector whose product with u is exactly zero.
  for (int k = 0; k < s.n_vec; ++k) {
    if (random.below(4) > 0) continue;
    for (int i = 0; i <= s.n; ++i) {
      const auto place = k * s.stride + i * s.incr;
      w[static_cast<std::size_t>(place)] = -0.0;
    }
  }
  if (random.below(3) == 0) w[random.below(size)] = kNaN;
  Values expected = w;
  for (int k = 0; k < s.n_vec; ++k) {
    double* const v = expected.data() + k * s.stride;
    double sum = v[0] * up;
    for (int i = 1; i <= s.n; ++i) sum = sum + v[i * s.incr] * u[static_cast<std::size_t>(i - 1)];
    if (sum == 0.0) continue;
    const double factor = sum * scale;
    v[0] = v[0] + factor * up;
    for (int i = 1; i <= s.n; ++i) {
      v[i * s.incr] = v[i * s.incr] + factor * u[static_cast<std::size_t>(i - 1)];
    }
  }
  for_every_kernel_set([&](const KernelSet& set) {
    Values actual = w;
    set.reflection.reflect(up, u.data(), 1, s.n, scale, actual.data(), actual.data() + s.incr, s.incr,
                           s.stride, s.n_vec);
    ASSERT_TRUE(are_same("", "w", "", size, actual.data(), expected.data()));
  });
}

TEST(ReflectionKernels, ReflectColumnsAndRows) {
  Random random(2);
  for (const int n : {1, 2, 3, 4, 5, 8, 11, 23, 24, 25, 26, 29, 50}) {
    for (int n_vec = 0; n_vec <= 37; n_vec += 1 + n_vec / 10) {
      Values u = random.vector(static_cast<std::size_t>(n));
      for (const bool infinite : {false, true}) {  // 0 * inf would be NaN where a vector is left alone
        if (infinite) u[random.below(u.size())] = kInf;
        expect_reflected(random, {n, n_vec, 1, n + 2}, u, 0.7, -0.3);
        expect_reflected(random, {n, n_vec, n_vec + 1, 1}, u, 0.7, -0.3);
        expect_reflected(random, {n, n_vec, 2, 2 * n + 2}, u, 0.7, -0.3);
        expect_reflected(random, {n, n_vec, 3 * n_vec + 1, 3}, u, 0.7, -0.3);
      }
    }
  }
}

}  // namespace
