// SPDX-License-Identifier: MIT

#pragma once

#include <cstddef>

#include "tnexport.h"
#include "tnjournal.h"

// Prints the values of an array to the journal.
//
// Every value is written in scientific form with `digits` digits after the point (none when digits < 0),
// right-aligned in `width` columns, `per_line` values to a line (at least one).  Every line begins with
// `indent` blanks and ends with a newline.  Values that a count asks for but the array does not hold are
// not printed.

template <class T, class A>
class TnArray;

// The printers themselves, on plain storage.  `values` may be null where nothing is to be printed.
TN_API void tn_print_values(TnJournal& journal, std::size_t n, const double* values, int per_line,
                            int width, int digits, int indent);
TN_API void tn_print_matrix(TnJournal& journal, bool name_rows, std::size_t n_rows, std::size_t n_cols,
                            const double* values, int per_line, int width, int digits, int indent);

// The first n values of `a`.
template <class A>
void tn_arraydebug(TnJournal& journal, int n, const TnArray<double, A>& a, int per_line, int width,
                   int digits, int indent) {
  const std::size_t wanted = n < 0 ? 0 : static_cast<std::size_t>(n);
  const std::size_t count = wanted < a.size() ? wanted : a.size();
  tn_print_values(journal, count, a.data(), per_line, width, digits, indent);
}

// The column-major matrix of `n_rows` rows held in `a`, row by row, each row on lines of its own.  With
// `flag`, a line that names the row ("row 0") stands before each.  The third argument is reserved.
template <class A>
void tn_arraydebug(TnJournal& journal, bool flag, int /*reserved*/, int n_rows, const TnArray<double, A>& a,
                   int per_line, int width, int digits, int indent) {
  if (n_rows < 1) return;
  const std::size_t rows = static_cast<std::size_t>(n_rows);
  tn_print_matrix(journal, flag, rows, a.size() / rows, a.data(), per_line, width, digits, indent);
}
