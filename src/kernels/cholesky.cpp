#include "cholesky.h"

#include <cmath>

#include "simd.h"

namespace tnla_kernels::TNLA_SET {

namespace {

// s - sum of row(k) * row(k) over the earlier columns, the last one first.
double reduced_pivot(double s, Index j, const double* row, Index n) {
  for (Index k = j - 1; k >= 0; --k) s -= row[k * n] * row[k * n];
  return s;
}

// Column j of L below its diagonal.  The rows are independent sums, side by side.
void reduced_column(Index j, Index n, const double* a, double* l, double pivot) {
  double* const column = l + j * n;
  for (Index i = j + 1; i < n; ++i) column[i] = a[i * n + j];
  for (Index k = j - 1; k >= 0; --k) {
    const double* const earlier = l + k * n;
    for (Index i = j + 1; i < n; ++i) column[i] -= earlier[i] * earlier[j];
  }
  for (Index i = j + 1; i < n; ++i) column[i] /= pivot;
}

bool cholesky(Index n, const double* a, double* l, double* diagonal) {
  for (Index j = 0; j < n; ++j) {
    const double s = reduced_pivot(a[j * n + j], j, l + j, n);
    if (s < kSmallestPivot) return false;
    diagonal[j] = std::sqrt(s);
    reduced_column(j, n, a, l, diagonal[j]);
  }
  return true;
}

void cholesky_solve(Index n, const double* l, const double* diagonal, const double* b, double* x) {
  for (Index i = 0; i < n; ++i) {
    double s = b[i];
    for (Index k = i - 1; k >= 0; --k) s -= l[k * n + i] * x[k];
    x[i] = s / diagonal[i];
  }
  for (Index i = n - 1; i >= 0; --i) {
    double s = x[i];
    for (Index k = i + 1; k < n; ++k) s -= l[i * n + k] * x[k];
    x[i] = s / diagonal[i];
  }
}

}  // namespace

CholeskyKernels cholesky_kernels() { return {cholesky, cholesky_solve}; }

}  // namespace tnla_kernels::TNLA_SET
