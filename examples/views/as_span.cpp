// SPDX-License-Identifier: MIT

// A matrix or vector as std::span, of C++20: all elements, or one column, without a copy.
//
//   all elements   {A.array().data(), A.array().size()}    column by column
//   column j       the A.n_rows() elements from j * A.n_rows() on
//
// A row is not contiguous: its elements are A.n_rows() apart.  A span is valid until A is assigned,
// resized, edited or gone.

#include <tarntnla.h>

#include <algorithm>
#include <cstdio>
#include <numeric>
#include <span>

#include "common/checks.h"

namespace {

std::span<const double> elements(const TnLaDblMat& A) { return {A.array().data(), A.array().size()}; }

std::span<const double> elements(const TnLaDblVec& x) { return {x.array().data(), x.array().size()}; }

std::span<const double> column(const TnLaDblMat& A, std::size_t j) {
  return elements(A).subspan(j * A.n_rows(), A.n_rows());
}

// To write into A; the elements of an empty matrix have no address.
std::span<double> elements(TnLaDblMat& A) {
  return A.empty() ? std::span<double>() : std::span<double>(&A(0, 0), A.array().size());
}

}  // namespace

int main() {
  Checks checks;

  const double values[] = {3, 1, 2, 9, 7, 8};
  TnLaDblMat A(values, 3, 2);
  const TnLaDblMat& constant = A;

  checks.is_true("all six elements, in their order", std::ranges::equal(elements(constant), values));
  checks.is_true("they are A's own", elements(constant).data() == &A(0, 0));

  const std::span<const double> last = column(constant, 1);
  checks.is_true("the last column adds up to 24", std::accumulate(last.begin(), last.end(), 0.0) == 24.0);

  std::ranges::sort(elements(A).first(A.n_rows()));
  checks.is_true("sorting the first column in A", A(0, 0) == 1.0 && A(1, 0) == 2.0 && A(2, 0) == 3.0);
  checks.is_true("the last one stayed", A(0, 1) == 9.0);

  const TnLaDblVec x(values, 6);
  checks.is_true("the largest element of a vector", std::ranges::max(elements(x)) == 9.0);

  TnLaDblMat empty(0, 5, 0.0);
  checks.is_true("an empty matrix is an empty span",
                 elements(empty).empty() && elements(static_cast<const TnLaDblMat&>(empty)).empty());
  return checks.exit_code();
}
