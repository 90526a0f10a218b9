#pragma once

#include <cstddef>

#include "kernels/index.h"
#include "tnarray_i.h"
#include "tnlahouseholder_i.h"

// Lists of reflections, each made with new and owned by the list's holder.

// Appends the reflection of the strided vector v, which it reduces (see TnLaHouseholder), and applies it
// to n_vec more vectors of the same increment, of which vector k starts at w + k * stride.  If it throws,
// the list holds what it held and perhaps a null behind it.
void tnla_reflect_and_keep(TnArray<TnLaHouseholder*>& list, int j_pivot, int j_zero, int n, double* v,
                           int incr, double* w, tnla_kernels::Index stride, std::size_t n_vec);

// Deletes them all; the slots become null.
void tnla_delete_reflections(TnArray<TnLaHouseholder*>& list);
