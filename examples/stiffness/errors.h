// SPDX-License-Identifier: MIT

#pragma once

#include <tarntnla.h>

// How exactly A x = f is solved: residuals, and the bounds that rounding errors permit.  |A| is the
// Frobenius norm, |x| the Euclidean one; n is the number of unknowns.

// The bound for n rounding errors in a row: n u / (1 - n u), u = 2^-53.
double roundings(double n);

// The larger of two errors; a NaN counts as the largest.
double larger(double a, double b);

// |r| / (|A| |x| + |f|), r = A x - f being the residual: how far, relatively, A and f are from a system
// that x solves exactly.
double relative_residual(const TnLaDblVec& r, const TnLaDblMat& A, const TnLaDblVec& x,
                         const TnLaDblVec& f);

// Bounds for it.  Each ends with roundings(n + 1), the rounding errors of the residual itself.
//
// By Cholesky: (A + E) x = f for an E with |E_ij| <= roundings(3n + 1) (|L| |L'|)_ij (Higham, Accuracy and
// Stability of Numerical Algorithms, theorem 10.4).  A row of L has at most the squared length
// a_ii / (1 - roundings(n + 1)), so that |L| |L'| has at most the trace of A over 1 - roundings(n + 1) as
// its norm, and the trace is at most sqrt(n) |A|.
double cholesky_bound(double n);

// By reflections: one on m elements errs by 6 m + 21 roundoffs of a column's length at most, all of them by
// 3 n^2 + 24 n, and the triangular solve by n.  With n >= 48 that is below 4 n^2 (Higham, section 19.3,
// with the constants counted).
double reflection_bound(double n);

// The magnitude of the eigenvalue of the symmetric D that is nearest to 0, at least; d and V are computed
// eigenvalues and eigenvectors.  With orthonormal V, V' D V = diag(d) + V' E, where E = D V - V diag(d),
// and no eigenvalue is moved by more than |E| (Weyl).  What V lacks, |V' V - I|, adds at most 2 |d| times
// that.
double distance_to_singular(const TnLaDblMat& D, const TnLaDblVec& d, const TnLaDblMat& V);

// How far apart, relatively, two solutions x and y of A x = f may be: A times their difference is that of
// their residuals, each within the bound for relative residuals.  `distance` is that of A to singular.
double difference_bound(const TnLaDblMat& A, const TnLaDblVec& x, const TnLaDblVec& y, const TnLaDblVec& f,
                        double residual_bound, double distance);
