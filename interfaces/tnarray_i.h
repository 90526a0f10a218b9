// SPDX-License-Identifier: MIT

#pragma once

#include <cstddef>
#include <new>
#include <type_traits>

#include "tnassert.h"

// A growable array of plain elements: the storage of every dense matrix and vector.
//
//     data -> [ 0 ... size-1 | zero bits ... capacity-1 ]
//
//  (1) size <= capacity, and every slot in [size, capacity) holds zero bits: growing within the capacity
//      reveals zeros, never stale values.
//  (2) Shrinking keeps the block.  Growing doubles the capacity, from 1, until it suffices; for 64000
//      elements and more it goes up in steps of 4096.
//  (3) The array owns its block, from ::operator new to ::operator delete; copies are deep.
//  (4) When memory is exhausted, or a size overflows, std::bad_alloc is thrown and the array is as it
//      was.
//  (5) An index out of range is asserted; the access then takes place all the same.
//
// T is trivially copyable, and zero bits are its zero.  One thread at a time.

// Hands out raw blocks; it has no state.
template <class T>
class TnAllocator {
 public:
  // A block of n elements, uninitialised.  std::bad_alloc if there is none, or n * sizeof(T) overflows.
  T* allocate(std::size_t n) const;
  // Returns a block; null is allowed.
  void release(T* block) const noexcept { ::operator delete(block); }
};

template <class T, class A = TnAllocator<T>>
class TnArray {
  static_assert(std::is_trivially_copyable_v<T>,
                "a TnArray moves its elements as bytes: use std::vector for this type");

 public:
  // An empty array; does not allocate.
  TnArray() noexcept = default;
  // A copy, with the capacity that growing to other.size() gives.
  TnArray(const TnArray& other);
  // Copies the elements; a capacity that suffices is kept.
  TnArray& operator=(const TnArray& other);

  virtual ~TnArray() { release(); }

  // Sets the number of elements in use.  Elements below min(size(), n) survive, unless the block has to
  // grow and `keep` is false: then all are zero.  New elements are zero.
  virtual void set_size(std::size_t n, bool keep);

  // Replaces the block by one of exactly n elements; size() stays.  With `keep` the elements survive,
  // else they become zero.  Asserted: n >= size(); otherwise nothing changes.
  virtual void set_capacity(std::size_t n, bool keep);

  // Element i.  Asserted: i < size(); the access takes place all the same.
  T& operator[](std::size_t i) {
    TN_ASSERT("interfaces/tnarray_i.h", i < size_);
    return data_[i];
  }
  const T& operator[](std::size_t i) const {
    TN_ASSERT("interfaces/tnarray_i.h", i < size_);
    return data_[i];
  }

  // The number of elements in use, and the number that the block has room for.
  std::size_t size() const noexcept { return size_; }
  std::size_t capacity() const noexcept { return capacity_; }

  // The element block; null while capacity() is 0.  Valid until the capacity changes.
  T* data() noexcept { return data_; }
  const T* data() const noexcept { return data_; }

 private:
  // Growth doubles below kLarge elements; the steps from there on bound the waste of large arrays.
  static constexpr std::size_t kLarge = 64000;
  static constexpr std::size_t kStep = 4096;

  std::size_t grown_capacity(std::size_t n) const;
  // set_size for an array without a block, but the n elements are left for the caller to write.
  void start(std::size_t n);
  void release() noexcept;

  A allocator_{};
  T* data_ = nullptr;
  std::size_t capacity_ = 0;
  std::size_t size_ = 0;

  friend struct TnLaAccess;
  friend struct TnLaLayout;
};

#include "tnarray_t.h"
