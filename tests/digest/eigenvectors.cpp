// SPDX-License-Identifier: MIT

#include "families.h"

// Eigenvalues and eigenvectors of symmetric matrices.

namespace {

void basis(Data& data, std::size_t n, Digest& digest) {
  // Now and then more columns than are looked at, or fewer than are needed, which is asserted.
  const std::size_t n_cols = data.one_in(40) && n > 0 ? n - 1 + 2 * data.below(2) : n;
  TnLaDblMat A = data.matrix(n, n_cols);
  if (data.one_in(3)) A += TnLaDblMat(n, n_cols, data.number());
  TnArray<double> values = data.array(data.below(4));
  TnLaDblMat vectors = data.leftover();
  digest.add(tnla_eigenvector_basis(A, values, vectors));
  digest.add(A);
  digest.add(values);
  digest.add(vectors);
}

}  // namespace

void eigenvectors_round(Data& data, Digest& digest) {
  basis(data, data.size(), digest);
  basis(data, data.below(8), digest);
  basis(data, data.below(12), digest);
}
