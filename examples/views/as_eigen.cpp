// SPDX-License-Identifier: MIT

// A matrix, a vector and the small types as Eigen::Map: Eigen works on the library's own elements, and the
// library sees what it writes.  Both keep a matrix column by column, so a map needs no stride.
//
// A map is valid until its matrix is assigned, resized, edited or gone.  What Eigen computes is Eigen's:
// the promise of the same bits everywhere holds for what this library computes.

#include <tarntnla.h>

#include <Eigen/Core>
#include <cstdio>

#include "common/checks.h"

namespace {

Eigen::Map<const Eigen::MatrixXd> map(const TnLaDblMat& A) {
  return {A.array().data(), static_cast<Eigen::Index>(A.n_rows()), static_cast<Eigen::Index>(A.n_cols())};
}

// To write into A; the elements of an empty matrix have no address.
Eigen::Map<Eigen::MatrixXd> map(TnLaDblMat& A) {
  return {A.empty() ? nullptr : &A(0, 0), static_cast<Eigen::Index>(A.n_rows()),
          static_cast<Eigen::Index>(A.n_cols())};
}

Eigen::Map<Eigen::VectorXd> map(TnLaDblVec& x) { return {x.empty() ? nullptr : &x(0), x.dim()}; }

template <std::size_t N>
auto map(TnLaTSmallMat<N, N, double>& S) {
  constexpr int n = static_cast<int>(N);
  return Eigen::Map<Eigen::Matrix<double, n, n>>(&S(0, 0));
}

}  // namespace

int main() {
  Checks checks;

  const double values[] = {4, 1, 0, 1, 3, 1, 0, 1, 2};
  const double right[] = {1, 2, 3};
  TnLaDblMat A(values, 3, 3);
  TnLaDblVec b(right, 3);
  const TnLaDblMat& constant = A;

  checks.is_true("the map shows A's own elements", map(constant).data() == &A(0, 0));
  checks.is_true("in their places", map(constant)(2, 1) == A(2, 1));

  // Eigen writes, the library solves: A x = b.
  map(A).row(1) *= 2.0;
  map(b)(1) *= 2.0;
  checks.is_true("the library sees what Eigen writes", A(1, 0) == 2.0 && A(1, 1) == 6.0 && b(1) == 4.0);
  TnLaDblMat X;
  checks.is_true("it solves the system", tnla_linearsolve(A, TnLaDblMat(b, false), X));

  // Eigen tests the solution, on the elements of all three.
  checks.at_most("largest element of A x - b",
                 (map(constant) * map(X).col(0) - map(b)).cwiseAbs().maxCoeff(), 1e-14, "");

  TnLaTSmallMat<2, 2, double> S(2, 2, 1.0);
  map(S)(0, 1) = 5.0;
  checks.is_true("a small matrix, with its size known to the compiler",
                 S(0, 1) == 5.0 && map(S).sum() == 7.0);

  TnLaDblMat empty(0, 5, 0.0);
  checks.is_true("an empty matrix keeps its shape", map(empty).rows() == 0 && map(empty).cols() == 5);
  return checks.exit_code();
}
