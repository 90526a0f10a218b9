// SPDX-License-Identifier: MIT

#include <algorithm>
#include <cstddef>
#include <memory>
#include <utility>

#include "kernels/kernel_set.h"
#include "tnla_access.h"
#include "tnla_eigenvector_basis_i.h"

namespace {

// By selection: the first of the largest values left comes next, in exchange for the one in its place.
void sort_decreasing(std::size_t n, double* d, TnLaDblMat& V) {
  for (std::size_t i = 0; i < n; ++i) {
    std::size_t k = i;
    for (std::size_t j = i + 1; j < n; ++j) {
      if (d[j] > d[k]) k = j;
    }
    if (k == i) continue;
    std::swap(d[i], d[k]);
    V.swap_cols(i, k);
  }
}

}  // namespace

bool tnla_eigenvector_basis(TnLaDblMat& a, TnArray<double>& eigenvalues, TnLaDblMat& vectors) {
  const std::size_t n = a.n_rows();
  vectors.resize(n, n, false);
  vectors.set_diagonal(1.0, 0);
  eigenvalues.set_size(n, false);
  if (eigenvalues.size() > 0) std::fill_n(eigenvalues.data(), eigenvalues.size(), 0.0);
  const bool reaches_the_diagonal = n <= a.n_cols();
  TN_ASSERT("interfaces/tnla_matrix_vector_i.h", reaches_the_diagonal);
  const bool has_room = n <= eigenvalues.size();  // a derived array sizes itself as it likes
  TN_ASSERT("interfaces/tnarray_i.h", has_room);
  if (!reaches_the_diagonal || !has_room) return false;

  TnArray<double> b;
  b.set_size(n, false);
  TnArray<double> z;
  z.set_size(n, false);
  const auto size = static_cast<tnla_kernels::Index>(n);
  const auto& kernels = tnla_kernels::best.jacobi;
  const auto scratch_bytes = static_cast<std::size_t>(kernels.scratch_bytes(size));
  std::unique_ptr<std::byte[]> scratch;
  if (scratch_bytes > 0) scratch = std::make_unique_for_overwrite<std::byte[]>(scratch_bytes);
  if (!kernels.diagonalize(size, TnLaAccess::elements(a), size, eigenvalues.data(),
                           TnLaAccess::elements(vectors), b.data(), z.data(), scratch.get())) {
    return false;
  }
  sort_decreasing(n, eigenvalues.data(), vectors);
  return true;
}
