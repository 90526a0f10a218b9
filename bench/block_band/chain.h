// SPDX-License-Identifier: MIT

#pragma once

#include <cstddef>

#include "common/case.h"

// A chain of equations with a known solution, for 2 right sides.
//
// Block b holds p equations for the unknowns b ... b + m - 1, where the bandwidth m is the number of rows
// of the case and n its number of unknowns.  Coefficients and solution repeat after 64 blocks, and the
// equations of a block after 16: a long chain needs no memory, and delivering an equation is to copy it.  A
// closed chain has one equation more, which gives the difference of the first unknown and the last one.
namespace bench {

constexpr int kSides = 2;
constexpr int kPeriod = 64;
constexpr int kMostEquations = 16;

inline int n_blocks(const Case& c) { return c.n - c.m + 1; }
inline bool is_closed(const Case& c) { return c.operation.substr(0, 6) == "closed"; }

// The m coefficients of equation e of a block, and then the right sides.
inline const double* equation(const Case& c, int block, int e) {
  const int place = block % kPeriod * kMostEquations + e % kMostEquations;
  return c.a.data() + n_elements(place, c.m + kSides);
}

inline double solution(const Case& c, int unknown, int k) {
  const int place = k * kPeriod + unknown % kPeriod;
  return c.b[static_cast<std::size_t>(place)];
}

inline double closing_right_side(const Case& c, int k) {
  return solution(c, 0, k) - solution(c, c.n - 1, k);
}

}  // namespace bench
