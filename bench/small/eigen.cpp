// SPDX-License-Identifier: MIT

#include "common/eigen.h"

#include "common/fixed_size.h"

namespace {

// householderQr() does not tell whether the matrix is regular; the spread of R's diagonal does, as ours.
template <class Qr>
bool is_regular(const Qr& qr) {
  const auto diagonal = qr.matrixQR().diagonal().cwiseAbs();
  return diagonal.maxCoeff() <= 1e10 * diagonal.minCoeff();
}

template <class MatrixA, class MatrixB>
struct Solve {
  MatrixA A;
  MatrixB B;
  MatrixB X;
  bool solved = false;

  explicit Solve(const bench::Case& c) : A(bench::matrix_a(c)), B(bench::matrix_b(c)) {}
  void step() {
    const Eigen::HouseholderQR<MatrixA> qr(A);
    solved = is_regular(qr);
    if (solved) X = qr.solve(B);
  }
  void answer(double* out) const { bench::copy_out(X, out); }
};

template <int N>
using TwoSides = Solve<Eigen::Matrix<double, N, N>, Eigen::Matrix<double, N, 2>>;
template <int N>
using NSides = Solve<Eigen::Matrix<double, N, N>, Eigen::Matrix<double, N, N>>;
using Request = Solve<Eigen::MatrixXd, Eigen::MatrixXd>;

}  // namespace

std::unique_ptr<bench::Task> bench::make_task(const Case& c) {
  if (c.operation == "request") return task<Request>(c);
  if (c.operation == "two_sides") return fixed_size_task<TwoSides>(c);
  return fixed_size_task<NSides>(c);
}
