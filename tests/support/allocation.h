// SPDX-License-Identifier: MIT

#pragma once

#include <cstddef>

// Counts the program's allocations through every form of operator new, and makes chosen ones fail.  Ends
// the program where a block has been written to behind its end.  Link support/allocation.cpp into the test.
namespace allocation {

// Fails the allocation of this index (0 is the next one), or with `for_good` all from it on, until
// the object is destroyed.  One at a time.
class Failing {
 public:
  explicit Failing(std::size_t index, bool for_good = false);
  ~Failing();
  Failing(const Failing&) = delete;
  Failing& operator=(const Failing&) = delete;

  bool has_failed() const;
};

// Allocations made since the start of the program, and blocks that are still out.
std::size_t made();
std::size_t alive();

}  // namespace allocation
