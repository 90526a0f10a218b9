// SPDX-License-Identifier: MIT

#include "band.h"

#include <cmath>

#include "band_reflection.h"
#include "simd.h"
#include "transpose.h"

namespace tnla_kernels::TNLA_SET {

namespace band {
bool fold(Index n_old, Index n_rows, Index bandwidth, double* rows, Index stride, double* scratch);
void eliminate(Index column, Index n, double* pivot, double* rows, Index stride, double* u);
}  // namespace band

namespace {

using band::numbers_from;

// --- Contiguous columns --------------------------------------------------------------------------------

template <Index n_cols>
void reflect_together(double up, const double* u, Index n, double scale, double* w, Index stride) {
  double sums[n_cols];
  for (Index c = 0; c < n_cols; ++c) sums[c] = w[c * stride] * up;
  const double* const range = w + 1;
  for (Index e = 0; e < n; ++e) {
    for (Index c = 0; c < n_cols; ++c) sums[c] += range[c * stride + e] * u[e];
  }
  for (Index c = 0; c < n_cols; ++c, w += stride) {
    if (sums[c] == 0.0) continue;
    const double factor = sums[c] * scale;
    w[0] += factor * up;
    for (Index e = 0; e < n; ++e) w[1 + e] += factor * u[e];
  }
}

void reflect_columns(double up, const double* u, Index n, double scale, double* w, Index stride,
                     Index n_cols) {
  for (; n_cols >= 5; n_cols -= 3, w += 3 * stride) reflect_together<3>(up, u, n, scale, w, stride);
  switch (n_cols) {
    case 1:
      return reflect_together<1>(up, u, n, scale, w, stride);
    case 2:
      return reflect_together<2>(up, u, n, scale, w, stride);
    case 3:
      return reflect_together<3>(up, u, n, scale, w, stride);
    case 4:
      return reflect_together<4>(up, u, n, scale, w, stride);
    default:
      return;
  }
}

// --- Substitution ------------------------------------------------------------------------------------

// sum over j of x(j, k) * row(j), for a vector of k.
Lanes sum_of_solved(Index n, const double* row, const double* x, Index x_stride) {
  Lanes sum{};
  for (Index j = 0; j < n; ++j, x += x_stride) sum += load(x) * row[j];
  return sum;
}

Index substitute(Index n, Index bandwidth, Index n_rhs, double smallest, const double* rows, Index stride,
                 Index n_coupled, const double* coupling, const double* x_coupled, double* x,
                 Index x_stride) {
  for (Index i = n - 1; i >= 0; --i) {
    const double* const row = rows + i * stride;
    if (std::fabs(row[0]) < smallest) return i + 1;
    for (Index k = 0; k < n_rhs; k += kLanes) {
      double* const place = x + i * x_stride + k;
      const Lanes band = sum_of_solved(bandwidth - 1, row + 1, place + x_stride, x_stride);
      const Lanes coupled = sum_of_solved(n_coupled, coupling + i * n_coupled, x_coupled + k, x_stride);
      store(place, ((load(row + bandwidth + k) - band) - coupled) / row[0]);
    }
  }
  return 0;
}

// --- Copies ------------------------------------------------------------------------------------------

// By single elements: the client has written them so a moment ago, and a vector could not be read before
// they have left the processor's store queue.
void gather(Index n_rows, Index shift, Index bandwidth, Index n_rhs, const double* matrix, Index ld,
            double* rows, Index stride) {
  for (Index c = 0; c < stride; c += kLanes) {
    const double* from[kLanes];
    Mask given{};
    for (Index l = 0; l < kLanes; ++l) {
      const bool in_band = c + l < bandwidth;
      const Index column = in_band ? c + l + shift : c + l;
      const bool exists = column < (in_band ? bandwidth : bandwidth + n_rhs);
      from[l] = matrix + (exists ? column : 0) * ld;
      given[l] = exists ? -1 : 0;
    }
    double* to = rows + c;
    for (Index i = 0; i < n_rows; ++i, to += stride) {
      Lanes v{};
      for (Index l = 0; l < kLanes; ++l) v[l] = from[l][i];
      store(to, select(given, v, Lanes{}));
    }
  }
}

// Calls f(row, height) for tiles of kLanes rows; if there are as many, the last one overlaps the one
// before.
template <class F>
void for_tiles(Index n_rows, const F& f) {
  if (n_rows < 1) return;
  if (n_rows < kLanes) return f(0, n_rows);
  for (Index row = 0; row + kLanes < n_rows; row += kLanes) f(row, kLanes);
  f(n_rows - kLanes, kLanes);
}

void store_some(double* p, Lanes v, Index n) {
  if (n == kLanes) return store(p, v);
  for (Index l = 0; l < n; ++l) p[l] = v[l];
}

void scatter(Index n_rows, Index n_cols, Index n_zeroed, const double* rows, Index stride, double* matrix,
             Index ld) {
  for (Index c = 0; c < n_cols; c += kLanes) {
    const Index width = smaller(kLanes, n_cols - c);
    for_tiles(n_rows, [&](Index row, Index height) {
      Lanes tile[kLanes] = {};
      for (Index l = 0; l < height; ++l) tile[l] = load(rows + (row + l) * stride + c);
      transpose_tile(tile);
      for (Index l = 0; l < width; ++l) {
        if (c + l < n_zeroed) tile[l] = select(numbers_from(row) > c + l - Mask{}, Lanes{}, tile[l]);
        store_some(matrix + (c + l) * ld + row, tile[l], height);
      }
    });
  }
}

}  // namespace

BandKernels band_kernels() {
  return {gather, scatter, band::fold, reflect_columns, band::eliminate, substitute};
}

}  // namespace tnla_kernels::TNLA_SET
