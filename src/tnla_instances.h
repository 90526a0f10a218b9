// SPDX-License-Identifier: MIT

#pragma once

#include "tnla_matrix_vector_i.h"

// The 13 matrix types for which the decompositions and solvers exist.

template <std::size_t N>
using TnLaSmallMat = TnLaTSmallMat<N, N, double>;

// Expands X(type) once for each of them.
#define TNLA_FOR_ALL_MATRICES(X) \
  X(TnLaDblMat)                  \
  X(TnLaSmallMat<1>)             \
  X(TnLaSmallMat<2>)             \
  X(TnLaSmallMat<3>)             \
  X(TnLaSmallMat<4>)             \
  X(TnLaSmallMat<5>)             \
  X(TnLaSmallMat<6>)             \
  X(TnLaSmallMat<7>)             \
  X(TnLaSmallMat<8>)             \
  X(TnLaSmallMat<9>)             \
  X(TnLaSmallMat<10>)            \
  X(TnLaSmallMat<11>)            \
  X(TnLaSmallMat<12>)
