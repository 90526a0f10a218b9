// SPDX-License-Identifier: MIT

#pragma once

#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>

#include "reflection.h"
#include "simd.h"

// Reflections of contiguous rows, several columns a vector.
namespace tnla_kernels::TNLA_SET::band {

// --- One reflection ----------------------------------------------------------------------------------

// The reflection of a pivot row and n rows below it, taken from one of their columns.  It is built in
// stages, so that other work can run beside its long chain of operations: begin(), add_squares() for all of
// u, finish().
struct Reflection {
  double* pivot;
  double* rows;
  Index stride;
  Index n;
  const double* u;

  double largest = 0.0;
  double inverse = 0.0;
  double sum = 0.0;
  double s = 0.0;  // the pivot entry, and after finish() the new one
  double up = 0.0;
  double scale = 0.0;

  void begin(double p, double magnitude) {
    s = p;
    largest = magnitude;
    inverse = 1.0 / largest;
    sum = (p * inverse) * (p * inverse);
  }

  void add_squares(Index from, Index to) {
    double total = sum;  // in a register, whatever u may overlap
    for (Index e = from; e < to; ++e) total += (u[e] * inverse) * (u[e] * inverse);
    sum = total;
  }

  void finish() {
    if (largest < kNoReflection) return;  // s stays p, and up and scale are 0: the identity
    static constexpr double kSign[] = {1.0, -1.0};
    const double p = s;
    s = largest * kSign[p > 0.0] * std::sqrt(sum);  // the sign costs no branch, and no time before the root
    up = p - s;
    scale = reflection_scale(s, up);
  }
};

inline double larger_magnitude(double x, double largest) {
  const double magnitude = std::fabs(x);
  return magnitude > largest ? magnitude : largest;
}

// --- Vectors of columns --------------------------------------------------------------------------------

inline Mask numbers_from(Index first) {
  Mask lane{};
  for (Index l = 0; l < kLanes; ++l) lane[l] = l;
  return lane + first;
}

inline Mask bits_of(Lanes v) {
  Mask bits;
  std::memcpy(&bits, &v, sizeof bits);
  return bits;
}

inline Mask is_negative_zero(Lanes v) {
  return bits_of(v) == std::numeric_limits<std::int64_t>::min() - Mask{};
}

inline constexpr Index kSideBySide = 4;  // their sums run together: that hides the latency of an addition

// What a reflection adds to n_vec vectors from column `begin` on: to the entry w of a row, unless the
// column's sum is 0, factor * u.  The rows can be taken piece by piece.
struct Change {
  Index begin;
  Index n_vec;
  Lanes factor[kSideBySide];  // the sum, until it is complete
  Mask live[kSideBySide];

  double* of(double* row, Index g) const { return row + begin + g * kLanes; }

  void start(const Reflection& h, Index from, Index end) {
    begin = from;
    n_vec = smaller(kSideBySide, (end - begin) / kLanes);
    for (Index g = 0; g < n_vec; ++g) factor[g] = load(of(h.pivot, g)) * h.up;
  }

  template <Index n>
  void add_products(const Reflection& h, Index from, Index to) {
    Lanes sums[n];
    for (Index g = 0; g < n; ++g) sums[g] = factor[g];
    const double* row = h.rows + from * h.stride + begin;
    for (Index e = from; e < to; ++e, row += h.stride) {
      const Lanes u = splat(h.u[e]);
      for (Index g = 0; g < n; ++g) sums[g] += load(row + g * kLanes) * u;
    }
    for (Index g = 0; g < n; ++g) factor[g] = sums[g];
  }

  void add_products(const Reflection& h, Index from, Index to) {
    switch (n_vec) {
      case 1:
        return add_products<1>(h, from, to);
      case 2:
        return add_products<2>(h, from, to);
      case 3:
        return add_products<3>(h, from, to);
      case kSideBySide:
        return add_products<kSideBySide>(h, from, to);
      default:
        return;
    }
  }

  void complete(const Reflection& h) {
    const Mask applies = splat(h.scale) != 0.0;
    for (Index g = 0; g < n_vec; ++g) {
      live[g] = (factor[g] != 0.0) & applies;
      factor[g] *= h.scale;
    }
  }

  void update_rows(const Reflection& h, Index from, Index to) const {
    const double* const u = h.u;
    for (Index g = 0; g < n_vec; ++g) {
      double* w = of(h.rows, g) + from * h.stride;
      const Lanes f = factor[g];
      const Mask applies = live[g];
      for (Index e = from; e < to; ++e, w += h.stride) {
        const Lanes old = load(w);
        store(w, select(applies, old + f * u[e], old));
      }
    }
  }

  void update_pivot(const Reflection& h) const {
    for (Index g = 0; g < n_vec; ++g) {
      const Lanes old = load(of(h.pivot, g));
      store(of(h.pivot, g), select(live[g], old + factor[g] * h.up, old));
    }
  }
};

}  // namespace tnla_kernels::TNLA_SET::band
