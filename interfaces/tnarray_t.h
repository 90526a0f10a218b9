// SPDX-License-Identifier: MIT

#pragma once

// How TnArray grows, shrinks and copies.  Included by tnarray_i.h.

#include <cstring>
#include <limits>

#include "tnarray_i.h"

template <class T>
T* TnAllocator<T>::allocate(std::size_t n) const {
  if (n > std::numeric_limits<std::size_t>::max() / sizeof(T)) throw std::bad_alloc();
  return static_cast<T*>(::operator new(n * sizeof(T)));
}

template <class T, class A>
TnArray<T, A>::TnArray(const TnArray& other) {
  start(other.size_);
  if (size_ > 0) std::memcpy(data_, other.data_, size_ * sizeof(T));
}

template <class T, class A>
TnArray<T, A>& TnArray<T, A>::operator=(const TnArray& other) {
  if (this == &other) return *this;
  set_size(other.size_, false);
  if (size_ == other.size_) {
    if (size_ > 0) std::memcpy(data_, other.data_, size_ * sizeof(T));
  } else {  // a derived class took another size: every access is an element access like any other
    for (std::size_t i = 0; i < other.size_; ++i) (*this)[i] = other[i];
  }
  return *this;
}

template <class T, class A>
void TnArray<T, A>::set_size(std::size_t n, bool keep) {
  if (n > capacity_) {
    set_capacity(grown_capacity(n), keep);
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

// The capacity for n elements, n > capacity_.
template <class T, class A>
std::size_t TnArray<T, A>::grown_capacity(std::size_t n) const {
  if (n >= kLarge) {
    if (n > std::numeric_limits<std::size_t>::max() - kStep) throw std::bad_alloc();
    return capacity_ + kStep + (n - capacity_ - 1) / kStep * kStep;
  }
  std::size_t grown = capacity_ == 0 ? 1 : capacity_;
  while (grown < n) grown *= 2;
  return grown;
}

template <class T, class A>
void TnArray<T, A>::start(std::size_t n) {
  if (n == 0) return;
  const std::size_t capacity = grown_capacity(n);
  data_ = allocator_.allocate(capacity);
  if (capacity > n) std::memset(data_ + n, 0, (capacity - n) * sizeof(T));
  capacity_ = capacity;
  size_ = n;
}

// The stores are volatile because a compiler may drop what is written to an object at the end of its life;
// whoever uses a dead array by mistake shall find it empty.
template <class T, class A>
void TnArray<T, A>::release() noexcept {
  allocator_.release(data_);
  *const_cast<T* volatile*>(&data_) = nullptr;
  *const_cast<volatile std::size_t*>(&capacity_) = 0;
  *const_cast<volatile std::size_t*>(&size_) = 0;
}
