#pragma once

#include <cstddef>

#include "kernels/index.h"
#include "kernels/qr.h"
#include "tnarray_i.h"
#include "tnla_scratch.h"
#include "tnlahouseholder_i.h"

// Lists of reflections, each made with new and owned by the list's holder.

// Appends the reflection of the strided vector v, which it reduces (see TnLaHouseholder), and applies it
// to n_vec more vectors of the same increment, of which vector k starts at w + k * stride.  If it throws,
// the list holds what it held and perhaps a null behind it.
void tnla_reflect_and_keep(TnArray<TnLaHouseholder*>& list, int j_pivot, int j_zero, int n, double* v,
                           int incr, double* w, tnla_kernels::Index stride, std::size_t n_vec);

// Fills an empty list with the reflections 0 ... n_made-1 of the rows ... m-1.  If it throws, the list
// holds some of them and nulls.
void tnla_keep_reflections(TnArray<TnLaHouseholder*>& list, std::size_t m, std::size_t n_made,
                           const tnla_kernels::StoredReflection* made);

// Deletes them all; the slots become null.
void tnla_delete_reflections(TnArray<TnLaHouseholder*>& list);

// The memory that the kernels of QrKernels ask for.
class TnLaQrScratch {
 public:
  // For an m x n matrix, or n vectors of m elements, and at most n_reflections reflections.
  TnLaQrScratch(std::size_t m, std::size_t n, std::size_t n_reflections)
      : reflections_(n_reflections),
        slabs_(static_cast<std::size_t>(tnla_kernels::qr_scratch(static_cast<tnla_kernels::Index>(m),
                                                                 static_cast<tnla_kernels::Index>(n)))) {}

  tnla_kernels::StoredReflection* reflections() { return reflections_.data(); }
  double* slabs() { return slabs_.data(); }

 private:
  // Enough for 16 columns of 16 elements.
  TnLaScratch<tnla_kernels::StoredReflection, 16> reflections_;
  TnLaScratch<double, 400> slabs_;
};
