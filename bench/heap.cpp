#include "heap.h"

#include <malloc.h>

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <new>

namespace {

std::atomic<std::size_t> bytes_now{0};
std::atomic<std::size_t> most_bytes{0};

void* allocate(std::size_t n) {
  void* const block = std::malloc(n == 0 ? 1 : n);
  if (block == nullptr) throw std::bad_alloc();
  const std::size_t now = bytes_now += malloc_usable_size(block);
  most_bytes = std::max(most_bytes.load(), now);
  return block;
}

void release(void* block) {
  if (block == nullptr) return;
  bytes_now -= malloc_usable_size(block);
  std::free(block);
}

}  // namespace

std::size_t heap::bytes() { return bytes_now; }
std::size_t heap::peak() { return most_bytes; }
void heap::reset_peak() { most_bytes = bytes_now.load(); }

void* operator new(std::size_t n) { return allocate(n); }
void* operator new[](std::size_t n) { return allocate(n); }
void operator delete(void* block) noexcept { release(block); }
void operator delete[](void* block) noexcept { release(block); }
void operator delete(void* block, std::size_t /*n*/) noexcept { release(block); }
void operator delete[](void* block, std::size_t /*n*/) noexcept { release(block); }
