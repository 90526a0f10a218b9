// SPDX-License-Identifier: MIT

#pragma once

#include "index.h"

namespace tnla_kernels {

inline constexpr double kSmallestDiagonal = 1e-20;  // a diagonal entry of R below this: not of full rank
inline constexpr double kLargestSpread = 1e10;      // largest over smallest entry above this: neither
inline constexpr double kNoMinimumYet = 1e20;       // where the search for the smallest entry starts

// The verdict on the diagonal of R (see TnLaTQRDecompo), which takes its entries in ascending order.  The
// comparisons are written so that a NaN replaces the running value, the entry after a NaN replaces it in
// turn, and a NaN that is the last passes the tests.
struct FullRank {
  double smallest = kNoMinimumYet;
  double largest = 0.0;

  [[gnu::always_inline]] void take(double entry) {
    const double magnitude = __builtin_fabs(entry);
    smallest = smallest < magnitude ? smallest : magnitude;
    largest = largest > magnitude ? largest : magnitude;
  }

  [[gnu::always_inline]] bool verdict() const {
    if (kSmallestDiagonal > smallest) return false;
    return !(largest / smallest > kLargestSpread);
  }
};

}  // namespace tnla_kernels
