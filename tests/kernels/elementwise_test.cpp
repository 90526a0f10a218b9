// SPDX-License-Identifier: MIT

#include <gtest/gtest.h>

#include <cstddef>
#include <vector>

#include "support/bits.h"
#include "support/kernel_sets.h"
#include "support/values.h"

namespace {

using tnla_kernels::ElementwiseKernels;
using tnla_kernels::Index;

// Every length around the vector widths and their multiples, and around that from which stores are aligned,
// at every alignment.
constexpr std::size_t kLongest = 84;
constexpr std::size_t kAlignments = 8;

using Values = std::vector<double>;

Values numbers(std::uint64_t seed) { return Random(seed).any_vector(kLongest + kAlignments); }

// `kernel(set, n, x, y, out)` gives `element(x, y)` in each of n places and writes no other.
template <class Kernel, class Element>
void expect_elementwise(const Kernel& kernel, const Element& element) {
  const Values x = numbers(1);
  const Values y = numbers(2);
  const Values before = numbers(3);
  for_every_kernel_set([&](const tnla_kernels::KernelSet& set) {
    for (std::size_t start = 0; start < kAlignments; ++start) {
      for (std::size_t n = 0; n <= kLongest; ++n) {
        Values out = before;
        Values expected = before;
        for (std::size_t i = start; i < start + n; ++i) expected[i] = element(x[i], y[i]);
        kernel(set.elementwise, static_cast<Index>(n), x.data() + start, y.data() + start,
               out.data() + start);
        ASSERT_TRUE(are_same("", "out", "", out.size(), out.data(), expected.data()))
            << n << " at " << start;
      }
    }
  });
}

// An output anywhere in its inputs, and behind or before them: every element is formed as if alone, the
// first one first.
template <class Kernel, class Element>
void expect_overlap(const Kernel& kernel, const Element& element) {
  constexpr std::size_t kReach = 9;
  for_every_kernel_set([&](const tnla_kernels::KernelSet& set) {
    for (const std::size_t n : {1u, 2u, 3u, 4u, 5u, 8u, 15u, 33u, 70u}) {
      for (std::size_t x = 0; x <= 2 * kReach; ++x) {
        for (std::size_t y : {x, kReach, kReach + 1, 2 * kReach - x}) {
          Values actual = Random(n).vector(n + 2 * kReach);
          Values expected = actual;
          for (std::size_t i = 0; i < n; ++i) {
            expected[kReach + i] = element(expected[x + i], expected[y + i]);
          }
          double* const array = actual.data();
          kernel(set.elementwise, static_cast<Index>(n), array + x, array + y, array + kReach);
          ASSERT_TRUE(are_same("", "array", "", actual.size(), actual.data(), expected.data()))
              << n << " at " << kReach << " from " << x << " and " << y;
        }
      }
    }
  });
}

TEST(ElementwiseKernels, MayOverlapTheirInputs) {
  expect_overlap([](const ElementwiseKernels& k, Index n, const double* x, const double* y,
                    double* out) { k.add(n, x, y, out); },
                 [](double x, double y) { return x + y; });
  expect_overlap([](const ElementwiseKernels& k, Index n, const double* x, const double* y,
                    double* out) { k.subtract(n, x, y, out); },
                 [](double x, double y) { return x - y; });
  expect_overlap([](const ElementwiseKernels& k, Index n, const double* x, const double*,
                    double* out) { k.scale(n, x, 0.9, out); },
                 [](double x, double) { return x * 0.9; });
  expect_overlap([](const ElementwiseKernels& k, Index n, const double* x, const double*,
                    double* out) { k.divide(n, x, 1.1, out); },
                 [](double x, double) { return x / 1.1; });
  expect_overlap([](const ElementwiseKernels& k, Index n, const double* x, const double* y,
                    double* out) { k.combine(n, x, 0.5, y, 0.7, out); },
                 [](double x, double y) {
                   const double first = 0.5 * x;
                   const double second = 0.7 * y;
                   return first + second;
                 });
}

TEST(ElementwiseKernels, AddEachElement) {
  expect_elementwise([](const ElementwiseKernels& k, Index n, const double* x, const double* y,
                        double* out) { k.add(n, x, y, out); },
                     [](double x, double y) { return x + y; });
}

TEST(ElementwiseKernels, SubtractEachElement) {
  expect_elementwise([](const ElementwiseKernels& k, Index n, const double* x, const double* y,
                        double* out) { k.subtract(n, x, y, out); },
                     [](double x, double y) { return x - y; });
}

TEST(ElementwiseKernels, ScaleEachElement) {
  expect_elementwise([](const ElementwiseKernels& k, Index n, const double* x, const double*,
                        double* out) { k.scale(n, x, 0.1, out); },
                     [](double x, double) { return x * 0.1; });
}

TEST(ElementwiseKernels, DivideEachElement) {
  expect_elementwise([](const ElementwiseKernels& k, Index n, const double* x, const double*,
                        double* out) { k.divide(n, x, 0.3, out); },
                     [](double x, double) { return x / 0.3; });
}

TEST(ElementwiseKernels, CombineEachElement) {
  expect_elementwise([](const ElementwiseKernels& k, Index n, const double* x, const double* y,
                        double* out) { k.combine(n, x, 0.1, y, 3.0, out); },
                     [](double x, double y) {
                       const double first = 0.1 * x;
                       const double second = 3.0 * y;
                       return first + second;
                     });
}

}  // namespace
