// SPDX-License-Identifier: MIT

#include "placed.h"

#include <cstdlib>
#include <new>

// Every block of the program and of the library, at `place`; not on Windows, where the operators of a
// program are its own, and the library has others.
#ifndef _WIN32

namespace {
constexpr std::size_t kBoundary = kPlaces * sizeof(double);
}

void* operator new(std::size_t size) {
  const std::size_t shift = place / 2 * 2 * sizeof(double);
  if (size > SIZE_MAX / 2) throw std::bad_alloc();
  void* const block = std::aligned_alloc(kBoundary, (shift + size + kBoundary) / kBoundary * kBoundary);
  if (block == nullptr) throw std::bad_alloc();
  return static_cast<char*>(block) + shift;
}
void* operator new[](std::size_t size) { return operator new(size); }

void operator delete(void* block) noexcept {
  std::free(reinterpret_cast<void*>(reinterpret_cast<std::uintptr_t>(block) / kBoundary * kBoundary));
}
void operator delete[](void* block) noexcept { operator delete(block); }
void operator delete(void* block, std::size_t) noexcept { operator delete(block); }
void operator delete[](void* block, std::size_t) noexcept { operator delete(block); }

#endif
