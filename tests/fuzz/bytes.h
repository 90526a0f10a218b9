// SPDX-License-Identifier: MIT

#pragma once

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

#include "reference/decomposition_reference.h"
#include "support/values.h"

// Decisions and numbers from the bytes of a fuzzer.  Where they have run out, every decision is the first
// one and every number is 0.
class Bytes {
 public:
  Bytes(const std::uint8_t* data, std::size_t size) : next_(data), left_(size) {}

  bool empty() const { return left_ == 0; }

  std::uint8_t byte() {
    if (left_ == 0) return 0;
    --left_;
    return *next_++;
  }

  // In 0 ... n-1.
  std::size_t below(std::size_t n) {
    const std::size_t value = n > 256 ? std::size_t{256} * byte() + byte() : byte();
    return value % n;
  }
  int between(int low, int high) {
    return low + static_cast<int>(below(static_cast<std::size_t>(high - low) + 1));
  }
  bool flag() { return below(2) == 1; }
  // True once in n times.
  bool rarely(std::size_t n) { return below(n) == n - 1; }

  template <class T, std::size_t n>
  T& one_of(T (&values)[n]) {
    return values[below(n)];
  }
  template <class T, std::size_t n>
  const T& one_of(const T (&values)[n]) {
    return values[below(n)];
  }

  // A special value, any eight bytes, or a multiple of 1/16 up to 8.
  double number() {
    constexpr std::size_t kSpecial = 16;
    const std::size_t kind = byte();
    if (kind < kSpecial) return special_values()[kind % special_values().size()];
    if (kind > kSpecial) return (static_cast<double>(kind) - 128.0) / 16.0;
    std::uint64_t bits = 0;
    for (int i = 0; i < 8; ++i) bits = 256 * bits + byte();
    double value = 0.0;
    std::memcpy(&value, &bits, sizeof value);
    return value;
  }

  Random random() { return Random(below(65536)); }

  // n numbers: one by one, or of a kind that arithmetic may treat in a way of its own, by a generator.
  std::vector<double> numbers(std::size_t n) {
    const std::size_t kind = below(8);
    std::vector<double> values(n);
    if (kind == 0) {
      for (double& x : values) x = number();
      return values;
    }
    Random generator = random();
    const double scale = kind == 7 ? std::ldexp(1.0, between(-600, 600)) : 1.0;
    for (double& x : values) {
      if (kind == 2) x = generator.any();
      if (kind == 3) x = static_cast<double>(generator.below(3)) - 1.0;
      if (kind == 4)
        x = generator.below(4) == 0 ? generator.uniform() : generator.below(2) == 0 ? 0.0 : -0.0;
      if (kind == 5) x = std::ldexp(generator.uniform(), static_cast<int>(generator.below(80)) - 60);
      if (kind == 1 || kind > 5) x = scale * generator.uniform();
    }
    return values;
  }

  reference::Matrix matrix(std::size_t m, std::size_t n) { return {m, n, numbers(m * n)}; }

 private:
  const std::uint8_t* next_;
  std::size_t left_;
};
