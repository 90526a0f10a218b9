#pragma once

#include "index.h"

// Sums and maxima over contiguous arrays.
//
// A sum has one accumulator, starts from +0.0 and takes its terms in ascending order; n < 1 gives 0.0.
// Its speed limit is the latency of one addition a term: run several sums side by side, never one in
// pieces.
namespace tnla_kernels {

double sum_of_squares(Index n, const double* x);                         // sum x[i] * x[i]
double dot(Index n, const double* x, const double* y);                   // sum x[i] * y[i]
double dot(Index n, const double* x, const double* y, Index incr_y);     // sum x[i] * y[i * incr_y]
double scaled_dot(Index n, const double* x, const double* y, double f);  // sum (f * x[i]) * y[i]

struct Distance {
  double squared;    // sum (x[i] - y[i])^2
  double reference;  // sum x[i]^2
};
Distance distance(Index n, const double* x, const double* y);  // both in one pass

// m = x[0], with its sign; then m = |x[i]| unless m > |x[i]|, for i = 1 ... n-1.  n >= 1.  The comparison
// is written this way round so that a NaN replaces m, and is replaced by what follows it.
double largest_magnitude(Index n, const double* x);

}  // namespace tnla_kernels
