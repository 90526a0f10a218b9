// SPDX-License-Identifier: MIT

#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <type_traits>
#include <vector>

#include "tarntnla.h"

// 64 bits that stand for a sequence of results.
//
// A result is what one operation returned or wrote.  Numbers count by their bits, signs of zeros included,
// and any NaN as any other; lengths and answers as integers.  The program computes nothing with a result,
// so that the flags that it is compiled with cannot matter.
class Digest {
 public:
  void add(double x) {
    ++results_;
    number(x);
  }
  void add(const double* x, std::size_t n) {
    ++results_;
    numbers(x, n);
  }
  void add(const std::vector<double>& x) { add(x.data(), x.size()); }
  void add(const TnArray<double>& a) {
    add(a.data(), a.size());
    integer(a.size());
  }
  void add(const TnLaDblVec& v) { add(v.array()); }
  void add(const TnLaDblMat& A) {
    add(A.array());
    integer(A.n_rows());
    integer(A.n_cols());
  }
  template <int N>
  void add(const TnLaTSmallVec<N, double>& v) {
    add(v.data(), N);
  }
  template <std::size_t N>
  void add(const TnLaTSmallMat<N, N, double>& A) {
    add(&A(0, 0), N * N);
  }
  void add(const std::string& text) {
    ++results_;
    this->text(text.c_str());
  }
  template <class Integer, std::enable_if_t<std::is_integral_v<Integer>, int> = 0>
  void add(Integer i) {
    ++results_;
    integer(i);
  }

  // A failed check, which is no result but counts all the same.
  void text(const char* text) {
    for (; *text != '\0'; ++text) mix(static_cast<unsigned char>(*text));
    mix(0);
  }

  std::uint64_t value() const { return value_; }
  std::uint64_t results() const { return results_; }

 private:
  void mix(std::uint64_t bits) {
    value_ = (value_ ^ bits) * 0x9fb21c651e98df25u;
    value_ ^= value_ >> 32;
  }

  void number(double x) {
    constexpr std::uint64_t infinity = 0x7ff0000000000000u;
    constexpr std::uint64_t one_nan = 0x7ff8000000000000u;
    std::uint64_t bits = 0;
    std::memcpy(&bits, &x, sizeof bits);
    mix((bits & ~(std::uint64_t{1} << 63)) > infinity ? one_nan : bits);
  }

  void numbers(const double* x, std::size_t n) {
    for (std::size_t i = 0; i < n; ++i) number(x[i]);
  }

  // The same for integers of any size.
  template <class Integer>
  void integer(Integer i) {
    mix(static_cast<std::uint64_t>(static_cast<std::int64_t>(i)));
  }

  std::uint64_t value_ = 0xcbf29ce484222325u;
  std::uint64_t results_ = 0;
};
