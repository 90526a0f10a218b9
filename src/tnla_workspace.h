#pragma once

#include <cstddef>
#include <memory>

// Uninitialised memory for the length of a computation: inside the object if it is enough, which spares the
// small problems an allocation, and otherwise one block on the heap.
class TnLaWorkspace {
 public:
  static constexpr std::size_t kInside =
      4096;  // bytes: what the decomposition of order 12 and its solve take

  explicit TnLaWorkspace(std::size_t size) {
    if (size > kInside) heap_ = std::make_unique_for_overwrite<std::byte[]>(size);
    next_ = heap_ ? heap_.get() : inside_;
  }
  TnLaWorkspace(const TnLaWorkspace&) = delete;
  TnLaWorkspace& operator=(const TnLaWorkspace&) = delete;

  // The next n elements, which have to fit.  Ask for those of the strictest alignment first.
  template <class T>
  T* take(std::size_t n) {
    T* const taken = reinterpret_cast<T*>(next_);
    next_ += n * sizeof(T);
    return taken;
  }

 private:
  std::unique_ptr<std::byte[]> heap_;
  std::byte* next_;
  alignas(double) std::byte inside_[kInside];
};
