// SPDX-License-Identifier: MIT

// Needs nothing of TARNtn by itself.

#include <tarntnla.h>

int main() {
  const double x[] = {3.0, 4.0};
  return tnla_norm(2, x, nullptr) == 5.0 ? 0 : 1;
}
