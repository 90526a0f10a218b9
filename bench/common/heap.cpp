// SPDX-License-Identifier: MIT

#include "common/heap.h"

#include <malloc.h>

#include <algorithm>
#include <cstdlib>
#include <new>

namespace {

// The programs have one thread.
bool counting = false;
long long bytes_now = 0;
long long most_bytes = 0;
std::size_t n_allocations = 0;

void* allocate(std::size_t n) {
  void* const block = std::malloc(n == 0 ? 1 : n);
  if (block == nullptr) throw std::bad_alloc();
  if (counting) {
    ++n_allocations;
    bytes_now += static_cast<long long>(malloc_usable_size(block));
    most_bytes = std::max(most_bytes, bytes_now);
  }
  return block;
}

void release(void* block) {
  if (counting && block != nullptr) bytes_now -= static_cast<long long>(malloc_usable_size(block));
  std::free(block);
}

}  // namespace

void heap::start() {
  bytes_now = most_bytes = 0;
  n_allocations = 0;
  counting = true;
}

heap::Use heap::stop() {
  counting = false;
  return {static_cast<std::size_t>(most_bytes), n_allocations};
}

void* operator new(std::size_t n) { return allocate(n); }
void* operator new[](std::size_t n) { return allocate(n); }
void operator delete(void* block) noexcept { release(block); }
void operator delete[](void* block) noexcept { release(block); }
void operator delete(void* block, std::size_t /*n*/) noexcept { release(block); }
void operator delete[](void* block, std::size_t /*n*/) noexcept { release(block); }
