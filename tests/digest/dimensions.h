// SPDX-License-Identifier: MIT

#pragma once

#include <utility>

// Calls operation.template run<N>() for N = 1 ... 12.
template <class Operation, int... I>
void for_every_dimension(Operation& operation, std::integer_sequence<int, I...>) {
  (operation.template run<I + 1>(), ...);
}
template <class Operation>
void for_every_dimension(Operation operation) {
  for_every_dimension(operation, std::make_integer_sequence<int, 12>());
}
