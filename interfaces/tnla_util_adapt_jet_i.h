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
// `behaviour`, which may be null, is asked where `order` is 3 or more: at a level below 1 of operation 0 of
// TnLa::package_id(), version 1, the middle term of the third derivative takes x' in place of x'', as it
// did before that level. `order` is the highest derivative to adapt: 1, 2, or 3 and more.  Below 1 nothing
// changes. `jet` is rewritten in place in columns 1 to `order`; `ref` is read only, and may be the same
// matrix. `linear_only` leaves phi'' and phi''' zero: the parameter is scaled, and no more. `orientation`,
// which may be null, is +1 to keep the direction of x' and -1 to reverse it.  If it is 0 it is set first:
// to -1 where x' and the reference's point against each other, to +1 otherwise.  Without it x' is reversed
// where they do.
//
//  (1) A first derivative of length 1e-20 or less leaves the jet and *orientation unchanged.  Where the
//      second derivative is to be adapted too, so does, for the jet, one whose squared length, as
//      tnla_sq_norm gives it, is 1e-20 or less.  Scale your curve so that its speed is near 1.
//  (2) Asserted, in three checks of src/tnla_util.cpp: both jets have the same number of rows; each has
//  more
//      than `order` columns.  The function goes on: with the rows of `jet`, with the derivatives that `jet`
//      has, and with 0.0 for elements beyond the end of `ref`.
//  (3) std::bad_alloc leaves the jet as it was; so does an exception of `behaviour`.  *orientation may be
//      set.
//
// All sums and combinations are those of tnla_util_i.h, zero thresholds included.
TNLA_API void tnla_util_adapt_jet(TnOperationBehaviour* behaviour, int order, TnLaDblMat& jet,
                                  const TnLaDblMat& ref, bool linear_only, int* orientation);
