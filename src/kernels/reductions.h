// SPDX-License-Identifier: MIT

#pragma once

#include "index.h"

// Sums and maxima over contiguous arrays.
//
// A sum has one accumulator, starts from +0.0 and takes its terms in ascending order; n < 1 gives 0.0.
// Its speed limit is the latency of one addition a term: run several sums side by side, never one in
// pieces.  Those that serve vectors of three elements are inline: a call costs as much as such a sum.
namespace tnla_kernels {

// sum x[i] * y[i]
static inline double dot(Index n, const double* x, const double* y) {
  double sum = 0.0;
  for (Index i = 0; i < n; ++i) sum += x[i] * y[i];
  return sum;
}

// sum (f * x[i]) * y[i]
static inline double scaled_dot(Index n, const double* x, const double* y, double f) {
  double sum = 0.0;
  for (Index i = 0; i < n; ++i) sum += (f * x[i]) * y[i];
  return sum;
}

struct TwoSums {
  double x;
  double y;
};

// sum x[i] * x[i] and sum y[i] * y[i], in the time of one.
static inline TwoSums sums_of_squares(Index n, const double* x, const double* y) {
  double of_x = 0.0;
  double of_y = 0.0;
  for (Index i = 0; i < n; ++i) {
    of_x += x[i] * x[i];
    of_y += y[i] * y[i];
  }
  return {of_x, of_y};
}

struct Distance {
  double squared;    // sum (x[i] - y[i])^2
  double reference;  // sum x[i]^2
};

// Both in the time of one sum.
static inline Distance distance(Index n, const double* x, const double* y) {
  double squared = 0.0;
  double reference = 0.0;
  for (Index i = 0; i < n; ++i) {
    const double difference = x[i] - y[i];
    squared += difference * difference;
    reference += x[i] * x[i];
  }
  return {squared, reference};
}

double dot(Index n, const double* x, const double* y, Index incr_y);  // sum x[i] * y[i * incr_y]

// m = x[0], with its sign; then m = |x[i]| unless m > |x[i]|, for i = 1 ... n-1.  n >= 1.  The comparison
// is written this way round so that a NaN replaces m, and is replaced by what follows it.
double largest_magnitude(Index n, const double* x);

}  // namespace tnla_kernels
