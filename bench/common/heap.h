// SPDX-License-Identifier: MIT

#pragma once

#include <cstddef>

// What operator new hands out in this process, counted on demand: while nobody counts it costs a test.
namespace heap {

struct Use {
  std::size_t peak = 0;         // the most bytes in use at one time
  std::size_t allocations = 0;  // how often operator new was called
};

// From start() to stop(), which does not see what was allocated before, unless it is freed meanwhile.
void start();
Use stop();

}  // namespace heap
