// SPDX-License-Identifier: MIT

#pragma once

#include <algorithm>

#include "kernels/kernel_set.h"

// What constructing a TnLaHouseholder on a column and applying it does, without a copy of u: the reflection
// of the column[0 ... n], whose range stays u until finish().
class TnLaColumnReflection {
 public:
  using Index = tnla_kernels::Index;

  TnLaColumnReflection(double* column, Index n) : u_(column + 1), n_(n) {
    if (tnla_kernels::best.reflection.make(column[0], n, u_, 1, up_)) {
      scale_ = tnla_kernels::reflection_scale(column[0], up_);
    }
  }

  // To n_vec vectors w[0 ... n], `stride` apart.
  void apply(double* w, Index stride, Index n_vec) const {
    if (scale_ == 0.0) return;
    const tnla_kernels::KernelSet& best = tnla_kernels::best;
    if (n_ < kManyRows) {
      best.reflection.reflect(up_, u_, 1, n_, scale_, w, w + 1, 1, stride, n_vec);
    } else {
      best.band.reflect_columns(up_, u_, n_, scale_, w, stride, n_vec);
    }
  }

  // Zeroes the range.
  void finish() { std::fill_n(u_, n_, 0.0); }

 private:
  // From here on columns side by side are faster: bandwidth 4 with blocks of 1000 equations takes 10 us an
  // unknown instead of 15, with blocks of 10 it would take 250 ns instead of 230, with equations from a
  // table.
  static constexpr Index kManyRows = 24;

  double* u_;
  Index n_;
  double up_ = 0.0;
  double scale_ = 0.0;
};
