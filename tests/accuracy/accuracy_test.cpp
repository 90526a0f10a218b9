// SPDX-License-Identifier: MIT

// The ratios by which LAPACK's own test programs judge a factorisation or a solution, for more than 100,000
// matrices within the usable range (docs/numbers.md).  For every type of matrix the program prints the
// worst ratio, and it holds them to the limits of tally.h.  The formulas and the types are those of LAPACK
// Working Note 41 and of the LAPACK Users' Guide; the residuals are computed in long double (wide.h).

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdio>

#include "accuracy/families.h"

namespace {

TEST(Accuracy, RatiosStayBelowTheLimits) {
  std::size_t n = square_systems();
  n += rectangular_systems();
  n += deficient_systems();
  n += definite_systems();
  n += symmetric_matrices();
  std::printf("\n%zu matrices in all\n", n);
  EXPECT_GE(n, 100000u / ACCURACY_SHARE);
}

}  // namespace
