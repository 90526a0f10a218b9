#pragma once

#include <cstddef>

#include "kernels/index.h"
#include "kernels/kernel_set.h"
#include "tnarray_i.h"
#include "tnla_matrix_vector_i.h"
#include "tnlahouseholder_i.h"

// The one door through which the library's algorithms reach what its classes keep to themselves.
struct TnLaAccess {
  // The elements of a dense or small matrix or vector, column by column; null if there are none.
  template <class T>
  static auto elements(T& object) {
    return object.data();
  }

  // The array in which a dense vector keeps its elements.
  static TnArray<double>& array(TnLaDblVec& v) { return v.array_; }

  // A reflection that is finished, of a vector of n elements.
  static TnLaHouseholder* new_reflection(int j_pivot, int j_zero, int n,
                                         const tnla_kernels::StoredReflection& h) {
    return new TnLaHouseholder(j_pivot, j_zero, n, h.u, h.up, h.scale);
  }

  // The reflection as the kernels take it.
  static tnla_kernels::StoredReflection stored(const TnLaHouseholder& h) {
    const double* const u = h.u_.data();
    return {u + h.j_zero_, u[h.j_pivot_], h.scale_};
  }

  // Applies a reflection to n_vec vectors of its length; vector k starts at w + k * stride.
  static void reflect(const TnLaHouseholder& h, double* w, tnla_kernels::Index incr,
                      tnla_kernels::Index stride, std::size_t n_vec) {
    const tnla_kernels::Index range = static_cast<tnla_kernels::Index>(h.u_.size()) - h.j_zero_;
    if (range == 0 || h.scale_ == 0.0) return;
    const double* const u = h.u_.data();
    tnla_kernels::best.reflection.reflect(u[h.j_pivot_], u + h.j_zero_, 1, range, h.scale_,
                                          w + h.j_pivot_ * incr, w + h.j_zero_ * incr, incr, stride,
                                          static_cast<tnla_kernels::Index>(n_vec));
  }
};
