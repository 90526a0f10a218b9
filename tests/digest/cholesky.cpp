// SPDX-License-Identifier: MIT

#include "families.h"

// Symmetric systems by the Cholesky factor, and by the rank-revealing solve where there is none.

namespace {

// G G', positive definite unless its columns depend on each other, now and then with a larger diagonal.
TnLaDblMat symmetric(Data& data, std::size_t n) {
  const TnLaDblMat G = data.matrix(n, data.one_in(8) && n > 1 ? n - 1 : n);
  TnLaDblMat A = G * G.tr();
  if (data.one_in(2)) A += TnLaDblMat(n, n, data.one_in(2) ? 16.0 : 0x1p-20);
  return A;
}

// What is in the two triangles may differ: the factor looks at the upper one alone.
void factored(Data& data, std::size_t n, Digest& digest) {
  TnLaCholesky cholesky(static_cast<int>(n));
  if (data.one_in(16)) digest.add(cholesky.x());  // asserted, as is a wrong length
  cholesky.a((n < 40 && data.one_in(8) ? data.matrix(n, n) : symmetric(data, n)).array());
  for (int k = 0; k < 6; ++k) {
    cholesky.b(data.array(data.one_in(60) ? n + 1 : n));
    digest.add(cholesky.x());
    if (data.one_in(10)) digest.add(cholesky.x());
  }
  if (data.one_in(20)) {
    cholesky.a(data.array(3));
    digest.add(cholesky.x());
  }
}

}  // namespace

void cholesky_round(Data& data, Digest& digest) {
  const std::size_t n = data.size(1000);
  factored(data, n, digest);
  factored(data, data.below(10), digest);
  factored(data, data.below(20), digest);
}
