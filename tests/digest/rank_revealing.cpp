// SPDX-License-Identifier: MIT

#include "families.h"

// The rank-revealing solve, its null space, and pseudo-inverses.

namespace {

double tolerance(Data& data) {
  constexpr double tolerances[] = {1e-13, 1e-9, 1e-20, 1e-3, 0.5, 2.0, 0.0};  // the last one is asserted
  return tolerances[data.below(data.one_in(12) ? 7 : 6)];
}

}  // namespace

void rank_revealing_round(Data& data, Digest& digest) {
  std::size_t m = data.size(1000);
  std::size_t n = m >= 100 ? 10 + data.below(m == 1000 ? 60 : 100) : data.short_size();
  if (data.one_in(2)) std::swap(m, n);
  if (data.one_in(4) && m < 100) n = m;
  TnLaDblMat A = data.matrix(m, n);
  const std::size_t n_sides = data.below(data.one_in(16) ? 70 : 6);
  const TnLaDblMat B = data.matrix(data.one_in(30) ? m + 1 : m, n_sides);

  TnLaDblMat X = data.leftover();
  TnLaDblMat null_space;
  int rank = -7;
  tnla_linearsolve(A, B, X, tolerance(data), &rank, &null_space);
  digest.add(rank);
  digest.add(X);
  digest.add(null_space);
  tnla_linearsolve<TnLaDblMat>(A, B, X, tolerance(data));
  digest.add(X);
  if (m < n) {  // where the default solve is this one
    TnLaDblMat basis;
    digest.add(tnla_linearsolve(A, B, X, &basis));
    digest.add(X);
    digest.add(basis);
  }
  if (m < 100 && n < 100) {
    TnLaDblMat inverse = data.leftover();
    tnla_inverse(A, inverse, tolerance(data), &rank);
    digest.add(rank);
    digest.add(inverse);
    tnla_inverse(inverse, inverse, tolerance(data));
    digest.add(inverse);
  }
  tnla_linearsolve<TnLaDblMat>(A, B, A, tolerance(data), &rank);  // X is A
  digest.add(rank);
  digest.add(A);
}
