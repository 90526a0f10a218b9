// SPDX-License-Identifier: MIT

#include "jacobi_turns.h"

namespace tnla_kernels::TNLA_SET {

namespace {

struct AllRows {
  Lanes operator()(double s, Index) const { return splat(s); }
};

// The first n rows of the block.
struct FirstRows {
  explicit FirstRows(Index n) {
    for (Index r = 0; r < kBlockRows; ++r) mask[r / kLanes][r % kLanes] = r < n ? -1 : 0;
  }
  Lanes operator()(double s, Index v) const { return select(mask[v], splat(s), Lanes{}); }

  Mask mask[kBlockVectors];
};

// Stage p.  `rows(s, v)` is s where vector v is to be turned, and 0 elsewhere.
template <class Rows>
inline void turn_stage(Index p, const Turns& turns, double* block, const Rows& rows) {
  const Turn* const end = turns.list + turns.first[p + 1];
  const Turn* turned = turns.list + turns.first[p];
  if (turned == end) return;
  Lanes x[kBlockVectors];
  for (Index v = 0; v < kBlockVectors; ++v) x[v] = load(block + p * kBlockRows + v * kLanes);
  for (; turned != end; ++turned) {
    double* const column = block + turned->q * kBlockRows;
    const Lanes tau = splat(turned->tau);
    for (Index v = 0; v < kBlockVectors; ++v) {
      Lanes y = load(column + v * kLanes);
      turn(rows(turned->s, v), tau, x[v], y);
      store(column + v * kLanes, y);
    }
  }
  for (Index v = 0; v < kBlockVectors; ++v) store(block + p * kBlockRows + v * kLanes, x[v]);
}

}  // namespace

void turn_block(Index n, const Turns& turns, double* block) {
  for (Index p = 0; p < n - 1; ++p) turn_stage(p, turns, block, AllRows());
}

void turn_triangle_block(Index n, Index j, const Turns& turns, double* block) {
  const Index behind = smaller(j + kBlockRows, n - 1);
  for (Index p = j + 1; p < behind; ++p) turn_stage(p, turns, block, FirstRows(p - j));
  for (Index p = behind; p < n - 1; ++p) turn_stage(p, turns, block, AllRows());
}

}  // namespace tnla_kernels::TNLA_SET
