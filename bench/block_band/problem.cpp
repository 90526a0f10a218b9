// SPDX-License-Identifier: MIT

// Banded least squares, block by block, for 2 right sides: see chain.h.  The answer is X, n x 2; the size
// of a case is bandwidth x unknowns.
//
//     open, closed       4 equations in a block
//     open_2, closed_2   2 equations in a block, and so on: memory must not grow with them

#include "common/problem.h"

#include <cmath>

#include "block_band/chain.h"
#include "common/check.h"
#include "common/numbers.h"

namespace {

using bench::Extent;

bench::Case chain(const std::string& kind, int bandwidth, int unknowns, int per_block, Extent extent) {
  const bool is_usual = per_block == 4;
  return {is_usual ? kind : kind + "_" + std::to_string(per_block), bandwidth, unknowns, per_block, extent};
}

}  // namespace

std::vector<bench::Case> bench::cases() {
  std::vector<Case> all;
  for (const char* const kind : {"open", "closed"}) {
    for (const int bandwidth : {4, 16}) {
      for (const int n : {100, 1000, 10000}) all.push_back(chain(kind, bandwidth, n, 4, Extent::kQuick));
      all.push_back(chain(kind, bandwidth, 100000, 4, Extent::kFull));
    }
  }
  all.push_back(chain("open", 4, 1000000, 4, Extent::kLong));
  for (const int n : {103, 1003}) all.push_back(chain("open", 4, n, 100, Extent::kFull));
  for (const int per_block : {2, 10, 100}) all.push_back(chain("open", 4, 10003, per_block, Extent::kFull));
  all.push_back(chain("open", 4, 10003, 1000, Extent::kLong));
  for (const int per_block : {10, 100}) all.push_back(chain("closed", 4, 10003, per_block, Extent::kFull));
  return all;
}

void bench::fill(Case& c) {
  c.b = matrix(kPeriod, kSides, 1);
  c.a = matrix(kPeriod * kMostEquations, c.m + kSides, 2);
  double* row = c.a.data();
  for (int block = 0; block < kPeriod; ++block) {
    for (int e = 0; e < kMostEquations; ++e, row += c.m + kSides) {
      for (int k = 0; k < kSides; ++k) {
        row[c.m + k] = 0.0;
        for (int j = 0; j < c.m; ++j) row[c.m + k] += row[j] * solution(c, block + j, k);
      }
    }
  }
}

std::size_t bench::answer_size(const Case& c) { return static_cast<std::size_t>(c.n) * kSides; }

// The condition of these chains is far below 1e4 (random equations, at least two for an unknown), and a
// backward error is a small multiple of the numbers in a window, whatever the length of the chain.
double bench::error(const Case& c, const double* answer) {
  constexpr double kLimit = 1e5 * kEpsilon;
  double worst = 0.0;
  for (int k = 0; k < kSides; ++k) {
    for (int v = 0; v < c.n; ++v) worst = worse(worst, std::fabs(*answer++ - solution(c, v, k)) / kLimit);
  }
  return worst;
}
