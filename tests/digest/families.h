// SPDX-License-Identifier: MIT

#pragma once

#include <cstddef>

#include "data.h"
#include "digest.h"

// The families of operations, a file each: what one round computes goes into the digest.

void arrays_round(Data& data, Digest& digest);
void editing_round(Data& data, Digest& digest);
void arithmetic_round(Data& data, Digest& digest);
void product_round(Data& data, Digest& digest);
void raw_round(Data& data, Digest& digest);
void reflection_round(Data& data, Digest& digest);
void qr_round(Data& data, Digest& digest);
void rank_revealing_round(Data& data, Digest& digest);
void small_round(Data& data, Digest& digest);
void small_solve_round(Data& data, Digest& digest);
void cholesky_round(Data& data, Digest& digest);
void eigenvectors_round(Data& data, Digest& digest);
void band_round(Data& data, Digest& digest);
void jets_round(Data& data, Digest& digest);

struct Family {
  const char* name;
  std::size_t rounds;  // a multiple of 100, and at least 2700, so that a tenth has every size in turn
  void (*round)(Data& data, Digest& digest);
};

inline constexpr Family kFamilies[] = {
    {"arrays", 10000, arrays_round},
    {"editing", 10000, editing_round},
    {"arithmetic", 10000, arithmetic_round},
    {"product", 13000, product_round},
    {"raw", 10000, raw_round},
    {"reflection", 10000, reflection_round},
    {"qr", 10000, qr_round},
    {"rank_revealing", 11000, rank_revealing_round},
    {"small", 3000, small_round},
    {"small_solve", 3000, small_solve_round},
    {"cholesky", 10000, cholesky_round},
    {"eigenvectors", 9000, eigenvectors_round},
    {"band", 10000, band_round},
    {"jets", 10000, jets_round},
};
