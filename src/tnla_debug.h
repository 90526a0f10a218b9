// SPDX-License-Identifier: MIT

#pragma once

#include <cstddef>

#include "tnarray_i.h"
#include "tnjournal.h"

// How debug output is laid out: columns of digits + 10, as many as fit into a line of 80.
struct TnLaDebugLayout {
  int width;
  int per_line;  // meaningless where the width is 0
};

// The argument that the matrix printer reserves.
inline constexpr int kPrinterReserved = 1;

TnLaDebugLayout tnla_debug_layout(int digits, int indent);

// n values as the array that the printers take.
TnArray<double> tnla_debug_array(const double* values, std::size_t n);

// Print what a small vector of n elements, or a small n x n matrix, holds.  Asserted in the name of `file`:
// the width is not 0; otherwise nothing is written.
void tnla_debug_small_vector(TnJournal& journal, const char* file, const double* values, int n, int digits,
                             int indent);
void tnla_debug_small_matrix(TnJournal& journal, const char* file, const double* values, int n, int digits,
                             bool flag, int indent);
