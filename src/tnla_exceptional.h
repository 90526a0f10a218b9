// SPDX-License-Identifier: MIT

#pragma once

#include <cstddef>

#include "kernels/index.h"
#include "tnla_band.h"
#include "tnla_matrix_vector_i.h"

// Equations that couple the first unknowns of a banded problem with the last ones, and the two ways to
// solve them together with the triangle.

// Row e holds the coefficients of the unknowns 0 ... NB-1 in `first`, those of the unknowns N-NB ... N-1 in
// `last`, and the right-hand sides.
struct TnLaExceptional {
  TnLaDblMat first;
  TnLaDblMat last;
  TnLaDblMat rhs;
  int count = 0;

  // Room for `most` equations, all zero.
  TnLaExceptional(std::size_t most, std::size_t bandwidth, std::size_t n_rhs);

  // The matrices have the shape that they were given, and room for `count` equations.
  bool fit(std::size_t most, std::size_t bandwidth, std::size_t n_rhs) const;
};

// The least-squares solution of the triangle and the equations together.  It uses both up.
//
// From N = 3 NB on, unknown after unknown is eliminated from the equations, until only the last 2 NB - 1
// are left; the bound keeps the strip of `first`, as it travels along the unknowns, clear of those of
// `last`.  Below, everything is written out as one dense system.
//
// False where the dense system or that of the last unknowns is not of full rank, or a diagonal element of
// the triangle is too small.
bool tnla_solve_with_exceptional(TnLaBand& triangle, TnLaExceptional& equations, TnLaDblMat& x);
