// SPDX-License-Identifier: MIT

#pragma once

#include <algorithm>

#include "common/peer.h"
#include "tarntnla.h"

// A case's numbers as objects of the library.
namespace bench {

inline TnLaDblMat matrix_a(const Case& c) {
  return {c.a.data(), static_cast<std::size_t>(c.m), static_cast<std::size_t>(c.n)};
}
inline TnLaDblMat matrix_b(const Case& c) {
  return {c.b.data(), static_cast<std::size_t>(c.b_rows()), static_cast<std::size_t>(c.p)};
}
inline TnLaDblVec vector_a(const Case& c) { return {c.a.data(), static_cast<int>(c.a.size())}; }
inline TnLaDblVec vector_b(const Case& c) { return {c.b.data(), static_cast<int>(c.b.size())}; }

template <class Object>  // a matrix or a vector
void copy_out(const Object& object, double* out) {
  std::copy_n(object.array().data(), object.array().size(), out);
}

}  // namespace bench
