// SPDX-License-Identifier: MIT

#pragma once

#include "tnla_export.h"
#include "tnla_matrix_vector_i.h"
#include "tnoperationbehaviour.h"

// Gives the jet of a curve the speed of another jet at the same point, by a change of parameter.
//
// A jet is a matrix whose column k is the k-th derivative of a curve x(t) at one parameter; column 0 is the
// point, the rows are the coordinates.  The function replaces x(t) by x(phi(s)) and rewrites columns 1 to 3
// by the chain rule,
//
//     x' phi',   x'' phi'^2 + x' phi'',   x''' phi'^3 + 3 x'' phi' phi'' + x' phi'''
//
// with phi' such that the first derivative becomes as long as the reference's, and phi'' and phi''' such
// that the second and third get the component along x' that the reference's have.  So two jets of one curve
// agree afterwards; of jets of different curves, what is left is geometry.
//
// `behaviour` may be null.  Otherwise it is asked once where a third derivative is to be rewritten: at a
//     level below 1 of operation 0 of TnLa::package_id(), version 1, the middle term of the third
//     derivative takes x' in place of x''.  It must leave `jet` alone.
// `order` is the highest derivative to adapt: 1, 2, or 3 and more.  Below 1 nothing changes.
// `jet` is rewritten in place in its columns 1 to 3, as far as `order` goes.
// `ref` is read only, and may be the same matrix.
// `linear_only` leaves phi'' and phi''' zero: the parameter is scaled, and no more.
// `orientation` may be null: x' is then reversed where it and the reference's point against each other.
//     Otherwise +1 keeps its direction and -1 reverses it; 0 is first set to -1 where the two point against
//     each other, to +1 where they do not.
//
//  (1) A first derivative of length 1e-20 or less leaves the jet and *orientation unchanged.  Where phi''
//      is needed, that is from `order` 2 on unless `linear_only`, so does, for the jet, one whose squared
//      length, as tnla_sq_norm gives it, is 1e-20 or less.  Scale your curve so that its speed is near 1.
//  (2) Asserted, in three checks of src/tnla_util.cpp: both jets have the same number of rows; each has
//      more than `order` columns.  The function goes on: with the rows of `jet`, with the derivatives that
//      `jet` has, and with 0.0 for elements beyond the end of `ref`.
//  (3) std::bad_alloc leaves the jet as it was, and so does an exception of `behaviour`; *orientation may
//      be set.
//
// All sums and combinations are those of tnla_util_i.h, zero thresholds included.
TNLA_API void tnla_util_adapt_jet(TnOperationBehaviour* behaviour, int order, TnLaDblMat& jet,
                                  const TnLaDblMat& ref, bool linear_only, int* orientation = nullptr);
