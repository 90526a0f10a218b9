// SPDX-License-Identifier: MIT

#pragma once

#include <cstdint>
#include <cstring>

#include "index.h"

// A vector of doubles, as wide as the instruction set that a source is compiled for.
//
// The sources of the kernel sets are compiled once per set, with TNLA_SET its namespace and TNLA_LANES its
// width.  All that their objects define is in that namespace: of a function that several of them define,
// one of the standard library for example, the linker keeps one copy for the whole module, and it might be
// the one for the newer processor.  (Without optimisation they do define some; there the portable set comes
// first.)
#if !defined(TNLA_SET) || !defined(TNLA_LANES)
#error "the sources of the kernel sets are compiled by tnla_kernel_set (cmake/KernelSets.cmake)"
#endif

namespace tnla_kernels::TNLA_SET {

inline constexpr Index kLanes = TNLA_LANES;

typedef double Lanes __attribute__((vector_size(8 * TNLA_LANES)));
typedef std::int64_t Mask __attribute__((vector_size(8 * TNLA_LANES)));  // a lane is 0 or -1

inline Lanes load(const double* p) {
  Lanes v;
  std::memcpy(&v, p, sizeof v);
  return v;
}

inline void store(double* p, Lanes v) { std::memcpy(p, &v, sizeof v); }

inline Lanes splat(double x) { return x - Lanes{}; }  // minus, so that -0.0 stays -0.0

// Where the mask is set `a`, elsewhere `b`.
inline Lanes select(Mask mask, Lanes a, Lanes b) { return mask ? a : b; }

inline bool any(Mask mask) {
  std::int64_t bits = 0;
  for (Index l = 0; l < kLanes; ++l) bits |= mask[l];
  return bits != 0;
}

inline Index smaller(Index a, Index b) { return b < a ? b : a; }
inline Index larger(Index a, Index b) { return a < b ? b : a; }

}  // namespace tnla_kernels::TNLA_SET
