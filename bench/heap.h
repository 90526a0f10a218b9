#pragma once

#include <cstddef>

// The program's heap: what operator new has handed out and not got back.
namespace heap {

std::size_t bytes();

// The most that bytes() has been since the last reset_peak().
std::size_t peak();
void reset_peak();

}  // namespace heap
