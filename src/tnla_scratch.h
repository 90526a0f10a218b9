#pragma once

#include <cstddef>
#include <memory>

// Uninitialised memory for the time of a computation: on the stack if it is little, so that a small problem
// does not allocate.  std::bad_alloc as from new.
template <class T, std::size_t kOnStack>
class TnLaScratch {
 public:
  explicit TnLaScratch(std::size_t n) : heap_(n > kOnStack ? new T[n] : nullptr) {}
  TnLaScratch(const TnLaScratch&) = delete;
  TnLaScratch& operator=(const TnLaScratch&) = delete;

  T* data() { return heap_ != nullptr ? heap_.get() : stack_; }

 private:
  T stack_[kOnStack];
  std::unique_ptr<T[]> heap_;
};
