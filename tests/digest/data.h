// SPDX-License-Identifier: MIT

#pragma once

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

#include "support/values.h"
#include "tarntnla.h"

// The data of the digest: the same on every machine, from integers and exact operations alone.
//
// A compiler chooses in which order it evaluates the arguments of a call, so no call has two arguments that
// draw from the data.

// What the numbers of a round are like.
enum class Kind {
  plain,     // in [-1, 1)
  zeros,     // the same, a third of them zeros of both signs
  special,   // the same, with infinities, NaN, subnormals and the library's thresholds among them
  integers,  // -2 ... 2: sums without rounding, ties, exact zeros
  spread,    // of very different magnitudes
  extreme,   // so different that squares overflow and underflow
  tiny,      // around 1e-20 and 1e-10, where the thresholds are
};
constexpr std::size_t kKinds = 7;

// The numbers and sizes of one round of a family.  Rounds do not depend on each other.
class Data : public Random {
 public:
  Data(std::uint64_t family, std::size_t round, std::size_t n_rounds)
      : Random((family << 32) + round),
        round_(round),
        is_last_(round + 1 == n_rounds),
        // Half of the rounds are plain: other kinds end many an operation early.
        kind_(below(2) == 0 ? Kind::plain : static_cast<Kind>(below(kKinds))),
        rarity_(std::size_t{8} << (3 * below(4))) {}

  std::size_t round() const { return round_; }
  Kind kind() const { return kind_; }
  bool one_in(std::size_t n) { return below(n) == 0; }

  // A length: every fourth round takes 0 ... 64 in turn, a few take 100 and 183, the last one `last`.  All
  // others are short, as are the errors that show there.
  std::size_t size(std::size_t last = 183) {
    if (is_last_) return last;
    if (round_ % 4 == 0) return round_ / 4 % 65;
    if (round_ % 512 == 201) return 100;
    if (round_ % 1024 == 303) return 183;
    return short_size();
  }
  // Mostly up to 12, and up to 64.
  std::size_t short_size() {
    const std::size_t range = below(16);
    return below(range < 11 ? 13 : range < 15 ? 33 : 65);
  }

  double number() {
    switch (kind_) {
      case Kind::zeros:
        return below(3) == 0 ? zero() : uniform();
      case Kind::special:
        return one_in(rarity_) ? special() : uniform();
      case Kind::integers:
        return static_cast<double>(static_cast<int>(below(5)) - 2);
      case Kind::spread:
        return scaled(-40, 40);
      case Kind::extreme:
        return scaled(-560, 500);
      case Kind::tiny:
        return one_in(2) ? scaled(-70, -63) : scaled(-37, -30);
      default:
        return uniform();
    }
  }

  std::vector<double> numbers(std::size_t n) {
    std::vector<double> x(n);
    for (double& element : x) element = number();
    return x;
  }
  TnArray<double> array(std::size_t n) { return vector(n).array(); }
  TnLaDblVec vector(std::size_t n) { return TnLaDblVec(numbers(n).data(), static_cast<int>(n)); }

  // Often with columns that depend on each other, or with much of it zero.
  TnLaDblMat matrix(std::size_t m, std::size_t n) {
    std::vector<double> a = numbers(m * n);
    if (m > 0 && n > 1) shape(a, m, n);
    return TnLaDblMat(a.data(), m, n);
  }
  template <std::size_t N>
  TnLaTSmallMat<N, N, double> small_matrix() {
    const TnLaDblMat dense = matrix(N, N);
    TnLaTSmallMat<N, N, double> A;
    for (std::size_t j = 0; j < N; ++j) {
      for (std::size_t i = 0; i < N; ++i) A(i, j) = dense(i, j);
    }
    return A;
  }

  // What an operation finds in a matrix that it is to overwrite.
  TnLaDblMat leftover() {
    const std::size_t m = below(4);
    return matrix(m, below(4));
  }

 private:
  static constexpr std::uint64_t kSign = std::uint64_t{1} << 63;

  // Not from a constant, which a compiler may take for another one (0.0 for -0.0).
  static double from_bits(std::uint64_t bits) {
    double x = 0.0;
    std::memcpy(&x, &bits, sizeof x);
    return x;
  }
  double zero() { return from_bits(bits() & kSign); }

  // Exact, as nothing here reaches the subnormals.
  double scaled(int lowest, int highest) {
    const int n_exponents = highest - lowest + 1;
    const int exponent = lowest + static_cast<int>(below(static_cast<std::size_t>(n_exponents)));
    return std::ldexp(uniform(), exponent);
  }

  double special() {
    if (!one_in(3)) return special_values()[below(special_values().size())];
    const std::uint64_t exponent = one_in(2) ? 0 : 0x0010000000000000u;  // of subnormals, or the next one
    return from_bits((bits() & 0x800fffffffffffffu) | exponent);
  }

  void shape(std::vector<double>& a, std::size_t m, std::size_t n) {
    const std::size_t from = below(n) * m;
    const std::size_t to = below(n) * m;
    const std::size_t row = below(m);
    switch (below(16)) {
      case 0:  // two equal columns
      case 1:
        for (std::size_t i = 0; i < m; ++i) a[to + i] = a[from + i];
        break;
      case 2:  // equal but for a power of two
        for (std::size_t i = 0; i < m; ++i) a[to + i] = -4.0 * a[from + i];
        break;
      case 3:
        for (std::size_t i = 0; i < m; ++i) a[to + i] = zero();
        break;
      case 4:
        for (std::size_t j = 0; j < n; ++j) a[j * m + row] = zero();
        break;
      case 5:  // an upper triangle
        for (std::size_t j = 0; j < n; ++j) {
          for (std::size_t i = j + 1; i < m; ++i) a[j * m + i] = 0.0;
        }
        break;
      case 6:  // rank 1: every column is the first one or its negative
        for (std::size_t k = m; k < a.size(); ++k) a[k] = k / m % 2 == 0 ? a[k % m] : -a[k % m];
        break;
      default:
        break;
    }
  }

  std::size_t round_;
  bool is_last_;
  Kind kind_;
  std::size_t rarity_;  // of special values: one in 8, 64, 512 or 4096
};
