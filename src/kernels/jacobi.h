// SPDX-License-Identifier: MIT

#pragma once

#include <cstddef>

#include "index.h"

namespace tnla_kernels {

// Cyclic Jacobi rotations with a threshold.
struct JacobiKernels {
  // The number of bytes that `diagonalize` needs as scratch, aligned as a double is.
  Index (*scratch_bytes)(Index n);

  // Turns the strictly upper triangle of the symmetric a, n x n with the leading dimension lda, into zeros,
  // and the identity v, n x n without gaps, by the same rotations.  d becomes the diagonal of the turned
  // matrix; b and z are scratch of n values each.  False after 50 sweeps.
  //
  // At the start b = d = diag(a), z = 0.  Sweep 0, 1, ...:
  //
  //     sum = sum of |a(p, q)|, p outer and q inner, ascending;  sum == 0: converged
  //     threshold = (sum * 0.2) / (n * n) in sweeps 0 to 2, then 0
  //     for p < q, p outer and q inner, ascending, with g = 100 * |a(p, q)|:
  //         after sweep 3, and g is lost beside both |d(p)| and |d(q)|:  a(p, q) = 0
  //         otherwise, |a(p, q)| > threshold:                            rotate
  //     b = b + z;  d = b;  z = 0
  //
  // Rotate, by the angle whose tangent is t:
  //
  //     h = d(q) - d(p)
  //     t = a(p, q) / h                                if g is lost beside |h|; otherwise
  //     theta = (0.5 * h) / a(p, q)
  //     t = 1 / (|theta| + sqrt(theta^2 + 1))          with the sign changed if theta < 0
  //     c = 1 / sqrt(t^2 + 1);  s = t * c;  tau = s / (1 + c);  h = t * a(p, q)
  //     z(p) -= h;  z(q) += h;  d(p) -= h;  d(q) += h;  a(p, q) = 0
  //     every other pair (x, y) of a, upper triangle only, and of v, in columns p and q:
  //         x' = x - s * (y + x * tau);   y' = y + s * (x - y * tau)
  bool (*diagonalize)(Index n, double* a, Index lda, double* d, double* v, double* b, double* z,
                      std::byte* scratch);
};

}  // namespace tnla_kernels
