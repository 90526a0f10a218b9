// SPDX-License-Identifier: MIT

#pragma once

#include <gsl/gsl_blas.h>
#include <gsl/gsl_linalg.h>
#include <gsl/gsl_matrix.h>
#include <gsl/gsl_vector.h>

#include <memory>

#include "common/peer.h"

// A case's numbers as GSL's objects: its matrices are row by row.
namespace bench {

struct Free {
  void operator()(gsl_matrix* x) const { gsl_matrix_free(x); }
  void operator()(gsl_vector* x) const { gsl_vector_free(x); }
  void operator()(gsl_permutation* x) const { gsl_permutation_free(x); }
};
using Matrix = std::unique_ptr<gsl_matrix, Free>;
using Vector = std::unique_ptr<gsl_vector, Free>;
using Permutation = std::unique_ptr<gsl_permutation, Free>;

inline Matrix new_matrix(int rows, int cols) {
  return Matrix(gsl_matrix_calloc(static_cast<std::size_t>(rows), static_cast<std::size_t>(cols)));
}
inline Vector new_vector(int n) { return Vector(gsl_vector_calloc(static_cast<std::size_t>(n))); }
inline Permutation new_permutation(int n) {
  return Permutation(gsl_permutation_calloc(static_cast<std::size_t>(n)));
}

inline Matrix by_rows(int rows, int cols, const double* by_column) {
  Matrix result = new_matrix(rows, cols);
  for (std::size_t j = 0; j < result->size2; ++j) {
    for (std::size_t i = 0; i < result->size1; ++i) gsl_matrix_set(result.get(), i, j, *by_column++);
  }
  return result;
}
inline Matrix matrix_a(const Case& c) { return by_rows(c.m, c.n, c.a.data()); }
inline Matrix matrix_b(const Case& c) { return by_rows(c.b_rows(), c.p, c.b.data()); }

inline Vector vector_of(const std::vector<double>& values) {
  Vector result = new_vector(static_cast<int>(values.size()));
  for (std::size_t i = 0; i < values.size(); ++i) gsl_vector_set(result.get(), i, values[i]);
  return result;
}

inline void copy_out(const gsl_matrix& matrix, double* out) {
  for (std::size_t j = 0; j < matrix.size2; ++j) {
    for (std::size_t i = 0; i < matrix.size1; ++i) *out++ = gsl_matrix_get(&matrix, i, j);
  }
}
inline void copy_out(const gsl_vector& vector, double* out) {
  for (std::size_t i = 0; i < vector.size; ++i) *out++ = gsl_vector_get(&vector, i);
}

}  // namespace bench
