// SPDX-License-Identifier: MIT

#pragma once

#include <utility>

#include "common/peer.h"

namespace bench {

// task<Step<N>>(c) for N = c.n, one of the sizes of the benchmark `small`.
template <template <int> class Step>
std::unique_ptr<Task> fixed_size_task(const Case& c) {
  switch (c.n) {
    case 3:
      return task<Step<3>>(c);
    case 4:
      return task<Step<4>>(c);
    case 6:
      return task<Step<6>>(c);
    case 8:
      return task<Step<8>>(c);
    case 12:
      return task<Step<12>>(c);
    default:
      return nullptr;
  }
}

}  // namespace bench
