// SPDX-License-Identifier: MIT

#pragma once

#include "jacobi_rotation.h"

// The rotations of a sweep, written down, to be applied later to what the angles do not depend on.
//
// A rotation of the columns p and q turns each row of a matrix on its own.  So a block of rows can take all
// rotations of a sweep while it is in the first cache, and column p while it is in registers.  A block
// holds kBlockRows rows, column after column.
namespace tnla_kernels::TNLA_SET {

// So many that their arithmetic takes as long as the chain of operations from one rotation of column p to
// the next.  bench/eigenvectors, AVX2: 4 vectors are 5% slower at n = 100 and 4% faster at n = 32, 8 are 4%
// slower.
inline constexpr Index kBlockVectors = 6;
inline constexpr Index kBlockRows = kBlockVectors * kLanes;

struct Turn {
  double s;
  double tau;
  Index q;
};

// Those of stage p, with the columns p and q, are list[first[p]] ... list[first[p + 1] - 1], q ascending.
struct Turns {
  Turn* list;
  Index* first;
};

// Applies the stages 0 ... n-2 to a block of n columns.
void turn_block(Index n, const Turns& turns, double* block);

// The same for the rows j ... j + kBlockRows - 1 of a triangle: row i takes the stages after i.  A rotation
// of finite numbers without a -0.0 by s == 0 changes nothing: no others may be in the block.
void turn_triangle_block(Index n, Index j, const Turns& turns, double* block);

}  // namespace tnla_kernels::TNLA_SET
