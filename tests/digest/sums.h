// SPDX-License-Identifier: MIT

#pragma once

#include "digest.h"

// The arithmetic that matrices and vectors, dense and small, have in common.

template <class T>
void add_sums(Digest& digest, const T& x, const T& y, double s) {
  digest.add(x + y);
  digest.add(x - y);
  digest.add(x * s);
  digest.add(s * x);
  digest.add(-x);
}

template <class T>
void add_updates(Digest& digest, T& x, const T& y, double s) {
  x += y;
  digest.add(x);
  x *= s;
  digest.add(x);
  x -= y;
  digest.add(x);
}
