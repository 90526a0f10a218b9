// SPDX-License-Identifier: MIT

#pragma once

#include <cstddef>

// Uninitialised memory for the length of a computation: inside the object if it is enough, which spares the
// small problems an allocation, and otherwise one block on the heap.
class TnLaWorkspace {
 public:
  static constexpr std::size_t kInside = 8192;  // bytes: enough up to order 16, and for a narrow band

  explicit TnLaWorkspace(std::size_t size);  // in bytes
  ~TnLaWorkspace();
  TnLaWorkspace(const TnLaWorkspace&) = delete;
  TnLaWorkspace& operator=(const TnLaWorkspace&) = delete;

  // What is left of it, as doubles.
  double* doubles() { return reinterpret_cast<double*>(next_); }

  // The next n elements, which have to fit.  Ask for those of the strictest alignment first.
  template <class T>
  T* take(std::size_t n) {
    T* const taken = reinterpret_cast<T*>(next_);
    next_ += n * sizeof(T);
    return taken;
  }

 private:
  std::byte* heap_;  // null if the object is enough
  std::byte* next_;
  alignas(double) std::byte inside_[kInside];
};
