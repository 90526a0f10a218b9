#include "reductions.h"

#include <cmath>

namespace tnla_kernels {

double sum_of_squares(Index n, const double* x) {
  double sum = 0.0;
  for (Index i = 0; i < n; ++i) sum += x[i] * x[i];
  return sum;
}

double dot(Index n, const double* x, const double* y) {
  double sum = 0.0;
  for (Index i = 0; i < n; ++i) sum += x[i] * y[i];
  return sum;
}

double dot(Index n, const double* x, const double* y, Index incr_y) {
  double sum = 0.0;
  for (Index i = 0; i < n; ++i) sum += x[i] * y[i * incr_y];
  return sum;
}

double scaled_dot(Index n, const double* x, const double* y, double f) {
  double sum = 0.0;
  for (Index i = 0; i < n; ++i) sum += (f * x[i]) * y[i];
  return sum;
}

Distance distance(Index n, const double* x, const double* y) {
  Distance sums{0.0, 0.0};
  for (Index i = 0; i < n; ++i) {
    const double difference = x[i] - y[i];
    sums.squared += difference * difference;
    sums.reference += x[i] * x[i];
  }
  return sums;
}

double largest_magnitude(Index n, const double* x) {
  double largest = x[0];
  for (Index i = 1; i < n; ++i) {
    const double magnitude = std::fabs(x[i]);
    if (!(largest > magnitude)) largest = magnitude;
  }
  return largest;
}

}  // namespace tnla_kernels
