// SPDX-License-Identifier: MIT

#pragma once

#include "tnarray_i.h"
#include "tnla_export.h"
#include "tnla_matrix_vector_i.h"

// The eigenvalues and an orthonormal basis of eigenvectors of a symmetric matrix: a = V diag(d) V'.
//
// `a` is n x n.  The eigenvalues come in decreasing order, n of them; column k of `vectors`, n x n, is the
// unit eigenvector of eigenvalues[k].  A column is what the rotations make of it: its sign is not
// normalised.
//
//  (1) Only the diagonal and the strictly upper triangle of `a` are read.  The strictly upper triangle is
//      overwritten, and zero if the result is true; the diagonal and the lower triangle stay.
//  (2) The eigenvalues are sorted by selection: the first of the largest ones left comes next, in exchange
//      for the one in its place.  So equal ones need not keep their order.
//  (3) False: 50 sweeps were not enough.  Eigenvalues and vectors are then those of the last sweep,
//      unsorted.  Convergence is tested before a sweep only, so what converges in the fiftieth is false
//      too.  A NaN above the diagonal is false; other NaN and infinities may pass through.
//  (4) Asserted, as element accesses: `a` has no fewer columns than rows (more are not looked at), and
//      `eigenvalues` took n elements.  Otherwise false, with zero eigenvalues and the identity.
//  (5) std::bad_alloc leaves `a` as it was.
//
// Three to ten sweeps are usual, of about 8 n^3 flops each; about 7 n^2 numbers are allocated for the time
// of the call.  Nothing is scaled and no threshold is absolute.  `vectors` must not be `a`.
//
// Source: Rutishauser, The Jacobi Method for Real Symmetric Matrices, Numerische Mathematik 9 (1966):
// cyclic rotations by rows, with a threshold in the first three sweeps.
TNLA_API bool tnla_eigenvector_basis(TnLaDblMat& a, TnArray<double>& eigenvalues, TnLaDblMat& vectors);
