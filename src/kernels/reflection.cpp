// SPDX-License-Identifier: MIT

#include "reflection.h"

#include <cmath>

#include "simd.h"

namespace tnla_kernels::TNLA_SET {

namespace {

// The largest magnitude of the range, but `largest` unless one is strictly greater; the lanes search apart.
double find_largest(double largest, Index n, const double* range, Index incr) {
  Lanes of_lane{};
  Index i = 0;
  for (; i + kLanes <= n; i += kLanes) {
    Lanes x;
    for (Index l = 0; l < kLanes; ++l) x[l] = std::fabs(range[(i + l) * incr]);
    of_lane = select(x > of_lane, x, of_lane);
  }
  for (Index l = 0; l < kLanes; ++l) {
    if (of_lane[l] > largest) largest = of_lane[l];
  }
  for (; i < n; ++i) {
    const double magnitude = std::fabs(range[i * incr]);
    if (magnitude > largest) largest = magnitude;
  }
  return largest;
}

bool make_reflection(double& pivot, Index n, const double* range, Index incr, double& up) {
  const double largest = find_largest(std::fabs(pivot), n, range, incr);
  if (largest < kNoReflection) return false;

  const double inverse = 1.0 / largest;  // scaling before squaring keeps the sum from overflowing
  double sum = (pivot * inverse) * (pivot * inverse);
  for (Index i = 0; i < n; ++i) {
    const double scaled = range[i * incr] * inverse;
    sum += scaled * scaled;
  }
  double s = largest * std::sqrt(sum);
  if (pivot > 0.0) s = -s;
  up = pivot - s;
  pivot = s;
  return true;
}

// Ranges from this length on are reflected four vectors at a time.  The processor overlaps shorter ones by
// itself: 16 vectors of 3 entries take 43 ns one by one and 49 ns together, of 10 entries 92 and 74 ns.
constexpr Index kLongRange = 8;

struct Reflection {
  double up;
  const double* u;
  Index incr_u;
  Index n;
  double scale;
};

// V vectors whose sums run side by side.
template <Index V>
void reflect_strided(const Reflection& h, double* pivot, double* range, Index incr, Index stride) {
  double sum[V];
  for (Index v = 0; v < V; ++v) sum[v] = pivot[v * stride] * h.up;
  for (Index i = 0; i < h.n; ++i) {
    const double ui = h.u[i * h.incr_u];
    for (Index v = 0; v < V; ++v) sum[v] += range[v * stride + i * incr] * ui;
  }
  for (Index v = 0; v < V; ++v) {
    if (sum[v] == 0.0) continue;
    const double factor = sum[v] * h.scale;
    pivot[v * stride] += factor * h.up;
    double* const w = range + v * stride;
    if (incr == 1 && h.incr_u == 1) {  // said for the compiler, which then takes several entries at once
      for (Index i = 0; i < h.n; ++i) w[i] += factor * h.u[i];
    } else {
      for (Index i = 0; i < h.n; ++i) w[i * incr] += factor * h.u[i * h.incr_u];
    }
  }
}

// V * kLanes vectors that lie side by side, as the rows of a matrix do.
template <Index V>
void reflect_adjacent(const Reflection& h, double* pivot, double* range, Index incr) {
  Lanes sum[V];
  for (Index v = 0; v < V; ++v) sum[v] = load(pivot + v * kLanes) * splat(h.up);
  for (Index i = 0; i < h.n; ++i) {
    const Lanes ui = splat(h.u[i * h.incr_u]);
    for (Index v = 0; v < V; ++v) sum[v] += load(range + i * incr + v * kLanes) * ui;
  }
  Lanes factor[V];
  Mask skip[V];
  for (Index v = 0; v < V; ++v) {
    factor[v] = sum[v] * splat(h.scale);
    skip[v] = sum[v] == Lanes{};
  }
  const auto update = [&](double* w, double u) {
    for (Index v = 0; v < V; ++v) {
      const Lanes x = load(w + v * kLanes);
      store(w + v * kLanes, select(skip[v], x, x + factor[v] * splat(u)));
    }
  };
  update(pivot, h.up);
  for (Index i = 0; i < h.n; ++i) update(range + i * incr, h.u[i * h.incr_u]);
}

void reflect(double up, const double* u, Index incr_u, Index n, double scale, double* pivot, double* range,
             Index incr, Index stride, Index n_vec) {
  const Reflection h = {up, u, incr_u, n, scale};
  Index k = 0;
  if (stride == 1) {
    for (; k + 4 * kLanes <= n_vec; k += 4 * kLanes) reflect_adjacent<4>(h, pivot + k, range + k, incr);
    for (; k + kLanes <= n_vec; k += kLanes) reflect_adjacent<1>(h, pivot + k, range + k, incr);
  }
  for (; k + 4 <= n_vec && n >= kLongRange; k += 4) {
    reflect_strided<4>(h, pivot + k * stride, range + k * stride, incr, stride);
  }
  for (; k < n_vec; ++k) reflect_strided<1>(h, pivot + k * stride, range + k * stride, incr, stride);
}

}  // namespace

ReflectionKernels reflection_kernels() { return {make_reflection, reflect}; }

}  // namespace tnla_kernels::TNLA_SET
