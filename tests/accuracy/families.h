// SPDX-License-Identifier: MIT

#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <iterator>
#include <string>
#include <utility>
#include <vector>

#include "accuracy/matrix_types.h"
#include "accuracy/wide.h"
#include "support/decomposition_types.h"
#include "support/values.h"

// The families of test matrices, and what they share.  Each function measures its family, prints its table,
// holds it to the limits, and returns the number of matrices.

std::size_t square_systems();
std::size_t rectangular_systems();
std::size_t deficient_systems();
std::size_t definite_systems();
std::size_t symmetric_matrices();

#ifndef ACCURACY_SHARE
#define ACCURACY_SHARE 1  // one of so many matrices; more than 1 under a sanitizer
#endif

// The largest condition with half of the digits left, and with hardly one left: sqrt(0.1 / u), 0.1 / u.
inline const long double kHalf = std::sqrt(0.1L / kUnit);
inline const long double kAlmostSingular = 0.1L / kUnit;

constexpr std::size_t kSizes[] = {1, 2, 3, 5, 10, 50};
constexpr std::size_t kRightSides[] = {1, 2, 15};

using Spreads = std::vector<std::pair<Spread, const char*>>;

inline const Spreads& spreads() {
  static const Spreads all = {{Spread::one_large, "one large"},
                              {Spread::one_small, "one small"},
                              {Spread::geometric, "geometric"},
                              {Spread::arithmetic, "arithmetic"},
                              {Spread::random, "random"}};
  return all;
}

// A matrix to be made again and again.
struct Type {
  std::string name;
  std::function<Matrix(Random&, std::size_t m, std::size_t n)> make;
  // Of an m x n matrix.
  std::function<std::size_t(std::size_t m, std::size_t n)> rank = [](std::size_t m, std::size_t n) {
    return std::min(m, n);
  };
};

// How many matrices of a type and size: the large ones take the time, but each number of right-hand sides
// has one.
inline std::size_t n_samples(std::size_t size, std::size_t n_small) {
  const std::size_t part = size < 5 ? 1 : size < 50 ? 2 : 30;
  return std::max<std::size_t>(1, std::max(std::size(kRightSides), n_small / part) / ACCURACY_SHARE);
}

struct Shape {
  std::size_t m;
  std::size_t n;
};

inline std::vector<Shape> square_shapes() {
  std::vector<Shape> shapes;
  for (const std::size_t n : kSizes) shapes.push_back({n, n});
  return shapes;
}

inline std::vector<Shape> rectangular_shapes() {
  std::vector<Shape> shapes;
  for (const std::size_t m : kSizes) {
    for (const std::size_t n : kSizes) {
      if (m != n) shapes.push_back({m, n});
    }
  }
  return shapes;
}

// Calls check(type, shape, random, sample number) for every type and shape, `n_small` times if that is
// small.
template <class AnyType, class Check>
void for_all(const std::vector<AnyType>& types, const std::vector<Shape>& shapes, std::size_t n_small,
             const Check& check) {
  std::uint64_t number = 0;
  for (const AnyType& type : types) {
    for (const Shape& shape : shapes) {
      ++number;
      for (std::size_t sample = 0; sample < n_samples(std::max(shape.m, shape.n), n_small); ++sample) {
        const std::uint64_t seed = number * 1000000 + sample;
        SCOPED_TRACE(testing::Message()
                     << type.name << ", " << shape.m << " x " << shape.n << ", seed " << seed);
        Random random(seed);
        check(type, shape, random, sample);
      }
    }
  }
}

inline Matrix random_solution(Random& random, std::size_t n, std::size_t sample) {
  return random_matrix(random, n, kRightSides[sample % std::size(kRightSides)]);
}
