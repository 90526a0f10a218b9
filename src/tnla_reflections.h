// SPDX-License-Identifier: MIT

#pragma once

#include <cstddef>

#include "kernels/index.h"
#include "kernels/qr.h"
#include "tnarray_i.h"
#include "tnla_workspace.h"
#include "tnlahouseholder_i.h"

// Lists of reflections, each made with new and owned by the list's holder.

// Fills an empty list with the reflections 0 ... n_made-1 of the rows ... m-1.  If it throws, the list
// holds some of them and nulls.
void tnla_keep_reflections(TnArray<TnLaHouseholder*>& list, std::size_t m, std::size_t n_made,
                           const tnla_kernels::StoredReflection* made);

// Deletes them all; the slots become null.
void tnla_delete_reflections(TnArray<TnLaHouseholder*>& list);

// The memory that the kernels of QrKernels ask for, in one block with n_more doubles for the caller.
class TnLaQrScratch {
 public:
  // For an m x n matrix, or n vectors of m elements, and at most n_reflections reflections.
  TnLaQrScratch(std::size_t m, std::size_t n, std::size_t n_reflections, std::size_t n_more = 0)
      : TnLaQrScratch(n_reflections, n_slabs(m, n), n_more, 0) {}

  tnla_kernels::StoredReflection* reflections() { return reflections_; }
  double* slabs() { return slabs_; }
  double* more() { return more_; }

 private:
  TnLaQrScratch(std::size_t n_reflections, std::size_t n_slabs, std::size_t n_more, int)
      : block_(n_reflections * sizeof(tnla_kernels::StoredReflection) +
               (n_slabs + n_more) * sizeof(double)),
        reflections_(block_.take<tnla_kernels::StoredReflection>(n_reflections)),
        slabs_(block_.take<double>(n_slabs)),
        more_(block_.take<double>(n_more)) {}

  static std::size_t n_slabs(std::size_t m, std::size_t n) {
    return static_cast<std::size_t>(
        tnla_kernels::qr_scratch(static_cast<tnla_kernels::Index>(m), static_cast<tnla_kernels::Index>(n)));
  }

  TnLaWorkspace block_;
  tnla_kernels::StoredReflection* reflections_;
  double* slabs_;
  double* more_;
};
