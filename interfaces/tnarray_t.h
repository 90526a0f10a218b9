#pragma once

// How TnArray grows, shrinks and copies.  Included by tnarray_i.h.

#include <cstring>
#include <limits>

#include "tnarray_i.h"

// Growth doubles below this many elements, and goes in steps of kTnArrayStep from there on, which
// bounds the waste of large arrays.
inline constexpr std::size_t kTnArrayLarge = 64000;
inline constexpr std::size_t kTnArrayStep = 4096;

// The capacity to take when n elements do not fit into `capacity` any more: capacity < n <= result.
inline std::size_t tn_grown_capacity(std::size_t capacity, std::size_t n) {
  if (n >= kTnArrayLarge) {
    if (n > std::numeric_limits<std::size_t>::max() - kTnArrayStep) throw std::bad_alloc();
    return capacity + kTnArrayStep + (n - capacity - 1) / kTnArrayStep * kTnArrayStep;
  }
  std::size_t grown = capacity == 0 ? 1 : capacity;
  while (grown < n) grown *= 2;
  return grown;
}

template <class T>
T* TnAllocator<T>::allocate(std::size_t n) const {
  if (n > std::numeric_limits<std::size_t>::max() / sizeof(T)) throw std::bad_alloc();
  return static_cast<T*>(::operator new(n * sizeof(T)));
}

template <class T, class A>
TnArray<T, A>& TnArray<T, A>::operator=(const TnArray& other) {
  if (this == &other) return *this;
  set_size(other.size_, false);
  if (size_ > 0) std::memcpy(data_, other.data_, size_ * sizeof(T));
  return *this;
}

template <class T, class A>
void TnArray<T, A>::set_size(std::size_t n, bool keep) {
  if (n > capacity_) {
    set_capacity(tn_grown_capacity(capacity_, n), keep);
  } else if (n < size_) {
    std::memset(data_ + n, 0, (size_ - n) * sizeof(T));
  }
  size_ = n;
}

template <class T, class A>
void TnArray<T, A>::set_capacity(std::size_t n, bool keep) {
  TN_ASSERT("interfaces/tnarray_t.h", n >= size_);
  if (n < size_) return;
  T* const block = n == 0 ? nullptr : allocator_.allocate(n);
  const std::size_t kept = keep ? size_ : 0;
  if (kept > 0) std::memcpy(block, data_, kept * sizeof(T));
  if (n > kept) std::memset(block + kept, 0, (n - kept) * sizeof(T));
  allocator_.release(data_);
  data_ = block;
  capacity_ = n;
}

template <class T, class A>
void TnArray<T, A>::release() noexcept {
  allocator_.release(data_);
  data_ = nullptr;
  capacity_ = 0;
  size_ = 0;
}
