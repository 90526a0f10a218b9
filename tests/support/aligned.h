// SPDX-License-Identifier: MIT

#pragma once

#include <cstddef>
#include <cstdlib>

#ifdef _WIN32
#include <malloc.h>
#endif

// Blocks with an alignment beyond malloc's, for which Windows has calls of its own.  The size is a multiple
// of the alignment.
#ifdef _WIN32
inline void* aligned_block(std::size_t alignment, std::size_t size) {
  return _aligned_malloc(size, alignment);
}
inline void release_aligned(void* block) { _aligned_free(block); }
#else
inline void* aligned_block(std::size_t alignment, std::size_t size) {
  return std::aligned_alloc(alignment, size);
}
inline void release_aligned(void* block) { std::free(block); }
#endif
