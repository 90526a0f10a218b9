// SPDX-License-Identifier: MIT

#pragma once

#include <cblas.h>
#include <lapacke.h>

#include <algorithm>

#include "common/peer.h"

// The forms with a workspace of the caller: LAPACK at its best, no allocation and no search for NaN.
namespace bench {

// The workspace that a routine asks for when it is called with a length of -1.
template <class Routine>
std::vector<double> workspace(Routine routine) {
  double size = 0.0;
  routine(&size, -1);
  return std::vector<double>(static_cast<std::size_t>(size));
}

inline int length(const std::vector<double>& x) { return static_cast<int>(x.size()); }

}  // namespace bench
