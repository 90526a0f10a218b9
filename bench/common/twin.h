// SPDX-License-Identifier: MIT

#pragma once

#include <algorithm>

#include "common/peer.h"
#include "reference/decomposition_reference.h"

// A case's numbers for the plain algorithms in tests/reference/.
namespace bench {

inline reference::Matrix matrix_a(const Case& c) {
  return {static_cast<std::size_t>(c.m), static_cast<std::size_t>(c.n), c.a};
}
inline reference::Matrix matrix_b(const Case& c) {
  return {static_cast<std::size_t>(c.b_rows()), static_cast<std::size_t>(c.p), c.b};
}
inline void copy_out(const reference::Matrix& matrix, double* out) {
  std::copy(matrix.a.begin(), matrix.a.end(), out);
}

}  // namespace bench
