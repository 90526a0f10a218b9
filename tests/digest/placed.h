// SPDX-License-Identifier: MIT

#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "digest.h"

// Where in memory the data lie, which must not show in any result.

// The distance of all data from a multiple of 512 bytes, in doubles: 0 ... 63.  That of blocks from
// operator new is rounded down to an even number, as the language promises 16 bytes.  Set once, by main.
inline constexpr std::size_t kPlaces = 64;
inline std::size_t place = 0;

// Numbers in a buffer at that place.  Where a double may lie between two multiples of 8, as on a processor
// of 32 bits, an odd number of them does.
class Placed {
 public:
  explicit Placed(const std::vector<double>& x) : block_(x.size() + kPlaces + 1), size_(x.size()) {
    const std::size_t is_at = reinterpret_cast<std::uintptr_t>(block_.data()) / sizeof(double) % kPlaces;
    offset_ = (kPlaces + place - is_at) % kPlaces;
    for (std::size_t i = 0; i < size_; ++i) data()[i] = x[i];
  }

  double* data() {
    return reinterpret_cast<double*>(reinterpret_cast<char*>(block_.data() + offset_) + shift());
  }
  const double* data() const { return const_cast<Placed*>(this)->data(); }
  std::size_t size() const { return size_; }

 private:
  std::size_t shift() const { return size_ % 2 == 0 ? 0 : alignof(double) % sizeof(double); }

  std::vector<double> block_;
  std::size_t size_;
  std::size_t offset_ = 0;
};
