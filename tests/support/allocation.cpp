// SPDX-License-Identifier: MIT

#include "support/allocation.h"

#include <malloc.h>

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <new>

#include "support/aligned.h"

namespace {

constexpr std::size_t kNever = std::numeric_limits<std::size_t>::max();

// No machine has more.  Refused here, as a sanitizer's malloc ends the program over it.
constexpr std::size_t kTooLarge = kNever / 4;

std::atomic<std::size_t> n_made{0};
std::atomic<std::size_t> n_alive{0};
std::atomic<std::size_t> n_to_go{kNever};
std::atomic<bool> fails_for_good{false};
std::atomic<bool> failed{false};

bool must_fail() {
  if (n_to_go == kNever) return false;
  if (n_to_go > 0) {
    --n_to_go;
    return false;
  }
  failed = true;
  if (!fails_for_good) n_to_go = kNever;
  return true;
}

constexpr std::size_t kUsual = alignof(std::max_align_t);

// What lies behind the n bytes that were asked for, up to the block's end, where n is noted: at least
// kMargin bytes that nobody may write.  A sanitizer looks closer, and is left to it.  On Windows, where
// each kind of block has another call for its size, there is no margin.
#if defined(__SANITIZE_ADDRESS__) || defined(_WIN32)
constexpr std::size_t kMargin = 0;
void mark_margin(void* /*block*/, std::size_t /*n*/) {}
void check_margin(void* /*block*/) noexcept {}
#else
constexpr std::size_t kMargin = 4 * sizeof(std::size_t);
constexpr unsigned char kMark = 0xa5;

void mark_margin(void* block, std::size_t n) {
  unsigned char* const bytes = static_cast<unsigned char*>(block);
  const std::size_t note = malloc_usable_size(block) - sizeof n;
  std::memset(bytes + n, kMark, note - n);
  std::memcpy(bytes + note, &n, sizeof n);
}

void check_margin(void* block) noexcept {
  const unsigned char* const bytes = static_cast<unsigned char*>(block);
  std::size_t n = 0;
  const std::size_t note = malloc_usable_size(block) - sizeof n;
  std::memcpy(&n, bytes + note, sizeof n);
  const auto is_mark = [](unsigned char byte) { return byte == kMark; };
  if (n <= note && std::all_of(bytes + n, bytes + note, is_mark)) return;
  std::fputs("a block has been written to behind its end\n", stderr);
  std::abort();
}
#endif

// A block, or null.  Alignments beyond malloc's own take whole multiples of themselves.
void* block_of(std::size_t size, std::size_t alignment) noexcept {
  if (size > kTooLarge || must_fail()) return nullptr;
  const std::size_t used = std::max<std::size_t>(size + kMargin, 1);
  void* const block = alignment <= kUsual
                          ? std::malloc(used)
                          : aligned_block(alignment, (used + alignment - 1) / alignment * alignment);
  if (block == nullptr) return nullptr;
  mark_margin(block, size);
  ++n_made;
  ++n_alive;
  return block;
}

void* block_or_throw(std::size_t size, std::size_t alignment) {
  void* const block = block_of(size, alignment);
  if (block == nullptr) throw std::bad_alloc();
  return block;
}

void release(void* block, std::size_t alignment = kUsual) noexcept {
  if (block == nullptr) return;
  --n_alive;
  check_margin(block);
  if (alignment <= kUsual) {
    std::free(block);
  } else {
    release_aligned(block);
  }
}

std::size_t value(std::align_val_t alignment) { return static_cast<std::size_t>(alignment); }

}  // namespace

// Every form, as a sanitizer's runtime has its own of each, which would not be counted.

void* operator new(std::size_t n) { return block_or_throw(n, kUsual); }
void* operator new[](std::size_t n) { return block_or_throw(n, kUsual); }
void* operator new(std::size_t n, std::align_val_t a) { return block_or_throw(n, value(a)); }
void* operator new[](std::size_t n, std::align_val_t a) { return block_or_throw(n, value(a)); }
void* operator new(std::size_t n, const std::nothrow_t&) noexcept { return block_of(n, kUsual); }
void* operator new[](std::size_t n, const std::nothrow_t&) noexcept { return block_of(n, kUsual); }
void* operator new(std::size_t n, std::align_val_t a, const std::nothrow_t&) noexcept {
  return block_of(n, value(a));
}
void* operator new[](std::size_t n, std::align_val_t a, const std::nothrow_t&) noexcept {
  return block_of(n, value(a));
}

void operator delete(void* block) noexcept { release(block); }
void operator delete[](void* block) noexcept { release(block); }
void operator delete(void* block, std::size_t) noexcept { release(block); }
void operator delete[](void* block, std::size_t) noexcept { release(block); }
void operator delete(void* block, std::align_val_t a) noexcept { release(block, value(a)); }
void operator delete[](void* block, std::align_val_t a) noexcept { release(block, value(a)); }
void operator delete(void* block, std::size_t, std::align_val_t a) noexcept { release(block, value(a)); }
void operator delete[](void* block, std::size_t, std::align_val_t a) noexcept { release(block, value(a)); }
void operator delete(void* block, const std::nothrow_t&) noexcept { release(block); }
void operator delete[](void* block, const std::nothrow_t&) noexcept { release(block); }
void operator delete(void* block, std::align_val_t a, const std::nothrow_t&) noexcept {
  release(block, value(a));
}
void operator delete[](void* block, std::align_val_t a, const std::nothrow_t&) noexcept {
  release(block, value(a));
}

namespace allocation {

Failing::Failing(std::size_t index, bool for_good) {
  failed = false;
  fails_for_good = for_good;
  n_to_go = index;
}

Failing::~Failing() { n_to_go = kNever; }

bool Failing::has_failed() const { return failed; }

std::size_t made() { return n_made; }

std::size_t alive() { return n_alive; }

}  // namespace allocation
