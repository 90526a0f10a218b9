// SPDX-License-Identifier: MIT

#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

// Numbers to test with.

constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kTiny = std::numeric_limits<double>::denorm_min();
constexpr double kHuge = std::numeric_limits<double>::max();

// What arithmetic may treat in a way of its own.
inline const std::vector<double>& special_values() {
  static const std::vector<double> values = {0.0,    -0.0,  1.0,    -1.0,  kInf,  -kInf,  kNaN,  kTiny,
                                             -kTiny, kHuge, -kHuge, 1e-20, 1e-40, 1e-200, 1e200, 0.1};
  return values;
}

// A generator whose sequence is the same everywhere (splitmix64).  Print the seed where a test fails.
class Random {
 public:
  explicit Random(std::uint64_t seed) : state_(seed) {}

  std::uint64_t bits() {
    std::uint64_t z = (state_ += 0x9e3779b97f4a7c15u);
    z = (z ^ (z >> 30)) * 0xbf58476d1ce4e5b9u;
    z = (z ^ (z >> 27)) * 0x94d049bb133111ebu;
    return z ^ (z >> 31);
  }

  // In 0 ... n-1.
  std::size_t below(std::size_t n) { return static_cast<std::size_t>(bits() % n); }

  // In [-1, 1), with all 53 bits at work.
  double uniform() { return static_cast<double>(bits() >> 11) * 0x1p-52 - 1.0; }

  // Mostly uniform() times a power of two, and now and then a zero or a special value.
  double any() {
    const std::size_t kind = below(16);
    if (kind == 0) return special_values()[below(special_values().size())];
    if (kind == 1) return below(2) == 0 ? 0.0 : -0.0;
    const int exponent = static_cast<int>(below(41)) - 20;
    return uniform() *
           (exponent < 0 ? 1.0 / static_cast<double>(1 << -exponent) : static_cast<double>(1 << exponent));
  }

  std::vector<double> vector(std::size_t n) {
    std::vector<double> v(n);
    for (double& x : v) x = uniform();
    return v;
  }
  std::vector<double> any_vector(std::size_t n) {
    std::vector<double> v(n);
    for (double& x : v) x = any();
    return v;
  }

 private:
  std::uint64_t state_;
};
