// SPDX-License-Identifier: MIT

#pragma once

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string>

#include "support/decomposition_types.h"

// One number for the bits of many results (FNV-1a of 64 bits).
class Digest {
 public:
  void add(double x) {
    std::uint64_t bits = 0;
    std::memcpy(&bits, &x, sizeof bits);
    for (int shift = 0; shift < 64; shift += 8) {
      state_ = (state_ ^ ((bits >> shift) & 0xffu)) * 0x100000001b3u;
    }
  }
  void add(const Matrix& A) {
    for (const double x : A.a) add(x);
  }
  std::string text() const {
    char digits[17];
    std::snprintf(digits, sizeof digits, "%016llx", static_cast<unsigned long long>(state_));
    return digits;
  }

 private:
  std::uint64_t state_ = 0xcbf29ce484222325u;
};
