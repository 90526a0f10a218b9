// SPDX-License-Identifier: MIT

#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdlib>
#include <sstream>
#include <string>
#include <vector>

#include "reference/reflection_reference.h"
#include "support/bits.h"
#include "support/values.h"
#include "tnlahouseholder_i.h"

// What the tests of the reflections need: strided vectors with something in their gaps, all index
// combinations, and a look into a reflection.

// Memory with room on both sides of the element that a strided vector starts with.
struct Block {
  std::vector<double> values;
  std::ptrdiff_t origin = 0;

  double* start() { return values.data() + origin; }
};

#define EXPECT_SAME_BLOCK(actual, expected) \
  EXPECT_SAME_ARRAY((expected).size(), (actual).data(), (expected).data())

enum class Gaps { finite, nan };  // nan: an operation that reads a gap shows it in its result
enum class Entries { uniform, any };

// A vector of n entries, `incr` apart; a negative increment runs backwards.
inline Block strided(Random& random, int n, int incr, Gaps gaps, Entries entries) {
  const int extent = std::abs(incr) * n + 4;
  const std::size_t size = 2 * static_cast<std::size_t>(extent) + 1;
  Block block{gaps == Gaps::nan ? std::vector<double>(size, kNaN) : random.vector(size), extent};
  for (int i = 0; i < n; ++i) {
    block.start()[i * incr] = entries == Entries::any ? random.any() : random.uniform();
  }
  return block;
}

// How several vectors lie in a block: entry i of vector k at k * stride + i * incr.
struct Layout {
  int incr;
  int stride;
};

// Side by side with a gap between them, interleaved as the rows of a matrix, and backwards.
inline std::vector<Layout> layouts(int n, int n_vec) {
  return {{1, n + 1}, {n_vec + 1, 1}, {2, 2 * n}, {-1, n}, {1, -n - 2}};
}

inline Block vectors(Random& random, int n, int n_vec, Layout layout, Entries entries) {
  const int extent = std::abs(layout.incr) * n + std::abs(layout.stride) * n_vec;
  const std::size_t size = 2 * static_cast<std::size_t>(extent) + 1;
  return {entries == Entries::any ? random.any_vector(size) : random.vector(size), extent};
}

// What defines a reflection, where it is valid: 0 <= pivot < zero <= n.
struct Indices {
  int pivot;
  int zero;
  int n;
};

inline std::ostream& operator<<(std::ostream& out, const Indices& at) {
  return out << "pivot " << at.pivot << ", zero " << at.zero << ", n " << at.n;
}

inline std::vector<Indices> all_indices(int largest_n) {
  std::vector<Indices> all;
  for (int n = 1; n <= largest_n; ++n) {
    for (int zero = 1; zero <= n; ++zero) {
      for (int pivot = 0; pivot < zero; ++pivot) all.push_back({pivot, zero, n});
    }
  }
  return all;
}

inline Indices random_indices(Random& random, int largest_n) {
  const int n = 2 + static_cast<int>(random.below(static_cast<std::size_t>(largest_n) - 1));
  const int zero = 1 + static_cast<int>(random.below(static_cast<std::size_t>(n)));
  return {static_cast<int>(random.below(static_cast<std::size_t>(zero))), zero, n};
}

// What a reflection holds, read from what it prints.
struct Inside {
  std::vector<double> u;
  double scale = -1.0;
};

inline Inside inside(const TnLaHouseholder& reflection) {
  std::ostringstream text;
  text << std::hexfloat;
  TnJournal journal(text);
  reflection.debug(journal, 0);
  const std::string label = "  -2./<u_, u_> = ";
  Inside result;
  std::istringstream lines(text.str());
  for (std::string line; std::getline(lines, line);) {
    if (line.rfind(label, 0) == 0) {
      result.scale = std::strtod(line.c_str() + label.size(), nullptr);
    } else if (line.rfind("  ", 0) == 0) {
      result.u.push_back(std::strtod(line.c_str(), nullptr));
    }
  }
  return result;
}

inline void expect_holds(const TnLaHouseholder& reflection, const reference::Reflection& expected) {
  const Inside held = inside(reflection);
  EXPECT_SAME(held.scale, expected.scale);
  ASSERT_EQ(held.u.size(), expected.u.size());
  EXPECT_SAME_BLOCK(held.u, expected.u);
}

inline void expect_applies(const TnLaHouseholder& reflection, const reference::Reflection& expected,
                           Block w, int incr) {
  Block expected_w = w;
  expected.apply(expected_w.start(), incr);
  reflection.apply(w.start(), incr);
  EXPECT_SAME_BLOCK(w.values, expected_w.values);
}
