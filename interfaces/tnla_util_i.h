// SPDX-License-Identifier: MIT

#pragma once

#include "tnla_export.h"

// Kernels on plain arrays of double: norms, scalar products, linear combinations, cross products.
//
// An array has n contiguous elements, and stays the caller's.  n < 1 is an empty array: results are 0.0
// and nothing is written, except where a function says otherwise.
//
//  (1) A sum has one accumulator, starts from +0.0 and takes its terms in ascending order.
//  (2) What counts as zero is absolute: a sum of squares or a scalar product of magnitude below 1e-40 is
//      returned as exactly 0.0.  Scale problems in which such numbers matter.
//  (3) A unit flag means: as if that vector had been scaled to length 1 first.  No flag changes an input.
//  (4) Nothing is asserted and nothing is reported.  Only tnla_crossprod with n > 3 allocates.
//  (5) NaN and infinity propagate: a comparison with a threshold that involves NaN counts as false.

// x . x, or |x - y|^2 when y is not null.  The distance form gives 0.0 also when |x - y|^2 is below
// 1e-24 x . x: the reference is x alone, so the function is not symmetric near zero.
TNLA_API double tnla_sq_norm(int n, const double* x, const double* y);

// |x|, or |x - y|: the square root of tnla_sq_norm.
TNLA_API double tnla_norm(int n, const double* x, const double* y);

// x . y.  Every term is (f * x[i]) * y[i], where f = (1/|y|) * (1/|x|) by the flags; the factor of a
// numerically zero vector is 1.
TNLA_API double tnla_scalprod(int n, const double* x, const double* y, bool unit_x = false,
                              bool unit_y = false);

// res = a x + b y, with a / |x| and b / |y| by the flags (not for a numerically zero vector), then
// normalised by tnla_normalize if unit_res.  res may be x or y.
TNLA_API void tnla_lincomb(int n, const double* x, double a, const double* y, double b, double* res,
                           bool unit_x = false, bool unit_y = false, bool unit_res = false);

// res = u x w, orthogonal to u and w, as long as the area of their parallelogram.
//
// n = 3 is the ordinary cross product.  n > 3 takes the third vector of the orthonormal frame that two
// Householder reflections span: its sign follows from them, not from a right-hand rule.  n < 3 leaves
// res untouched.  A unit flag of a numerically zero vector makes the result zero (in tnla_scalprod and
// tnla_lincomb such a vector keeps the factor 1).  res must not overlap u or w.
TNLA_API void tnla_crossprod(int n, const double* u, const double* w, double* res, bool unit_u = false,
                             bool unit_w = false, bool unit_res = false);

// x = x / |x|, one division an element.  Returns the length that x had.  A vector whose sum of squares
// is below 1e-40 becomes the zero vector, and 0.0 is returned.
TNLA_API double tnla_normalize(int n, double* x);

// A unit vector orthogonal to x: e_k without its component along x, for the first k of smallest |x[k]|.
// The first unit vector when x is numerically zero.  n < 2 leaves res untouched.  res may be x.
TNLA_API void tnla_ortho_vec(int n, const double* x, double* res);
