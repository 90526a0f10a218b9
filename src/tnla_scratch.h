#pragma once

#include <array>
#include <cstddef>
#include <memory>

// Room for n doubles while an operation runs; what they hold at first is not defined.  Small ones take no
// memory from the heap, otherwise std::bad_alloc is possible.
class TnLaScratch {
 public:
  explicit TnLaScratch(std::size_t n)
      : outside_(n > inside_.size() ? std::make_unique_for_overwrite<double[]>(n) : nullptr) {}

  double* data() { return outside_ ? outside_.get() : inside_.data(); }

 private:
  std::array<double, 1024> inside_;  // 8 KB of the stack
  std::unique_ptr<double[]> outside_;
};
