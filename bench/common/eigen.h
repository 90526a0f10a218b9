// SPDX-License-Identifier: MIT

#pragma once

#include <Eigen/Dense>

#include "common/peer.h"

// A case's numbers as Eigen's objects.
namespace bench {

inline Eigen::MatrixXd matrix_a(const Case& c) {
  return Eigen::Map<const Eigen::MatrixXd>(c.a.data(), c.m, c.n);
}
inline Eigen::MatrixXd matrix_b(const Case& c) {
  return Eigen::Map<const Eigen::MatrixXd>(c.b.data(), c.b_rows(), c.p);
}
inline Eigen::VectorXd vector_a(const Case& c) {
  return Eigen::Map<const Eigen::VectorXd>(c.a.data(), static_cast<Eigen::Index>(c.a.size()));
}
inline Eigen::VectorXd vector_b(const Case& c) {
  return Eigen::Map<const Eigen::VectorXd>(c.b.data(), static_cast<Eigen::Index>(c.b.size()));
}

template <class Matrix>
void copy_out(const Matrix& matrix, double* out) {
  Eigen::Map<Eigen::MatrixXd>(out, matrix.rows(), matrix.cols()) = matrix;
}

}  // namespace bench
