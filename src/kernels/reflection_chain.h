// SPDX-License-Identifier: MIT

#pragma once

#include "simd.h"
#include "slab.h"

// A chain of Householder reflections on many columns side by side.
//
// The columns lie in slabs: kLanes of them, row after row, so that a vector holds one row of a slab.
//
//     slab 0: a00 a01 a02 a03 a10 a11 ...        slab 1, `ld` doubles further: a04 a05 a06 a07 a14 ...
//
// Applying a reflection takes a sum over a column and then an update of it, and the next one does the same.
// A chain does the update of one and the sum of the next in a single pass: each element is loaded and
// stored once a reflection.  Between two passes a column is represented by its sum, from which the update
// that it still lacks follows.
//
// Every column has its own operations, in the order that reflection.h states.  A sum of exactly 0 leaves
// its column alone, which is not the same as adding 0 * u; a group of slabs that has such a column takes a
// pass that blends.  A lane that holds no column, or none any longer, has NaN in its pivot row: its sum is
// not 0, unless the reflection is the identity, and so it does not ask for that pass.
namespace tnla_kernels::TNLA_SET {

inline constexpr double kDead = __builtin_nan("");  // the content of a lane without a column

struct Slabs {
  double* data;
  Index ld;

  double* row(Index slab, Index i) const { return data + slab * ld + i * kLanes; }
  double* column(Index l) const { return data + l / kLanes * ld + l % kLanes; }  // kLanes from row to row
};

// Slabs of n_rows rows in scratch: they begin at a cache line, and one line further apart than they need,
// so that slabs of 2^k rows do not meet in one cache set.
Slabs slabs_in(double* scratch, Index n_rows);

// n_cols columns of a, and dead ones up to the end of the last slab.
void fill_slabs(Index n_rows, Index n_cols, const double* a, Index lda, const Slabs& w);
// The first rows and columns to a.
void empty_slabs(Index n_rows, Index n_cols, const Slabs& w, double* a, Index lda);

// Builds the reflection of a pivot and a range of n entries, as ReflectionKernels::make does.
void build_reflection(double& pivot, Index n, const double* range, double& up, double& scale);

// What is still to be added to the rows of a pass: sum * scale * u.
//
// Nothing is pending if sum is 1, scale -0.0 and u holds ones: adding -0.0 leaves every number as it is.
struct Pending {
  const double* u;
  double scale;
};

// Makes n ones, and `sums` of the slabs so that nothing is pending.
Pending nothing_pending(Index n, double* ones, Index n_slabs, double* sums);

// The n rows of one column, after the addition of what is pending, to `column`.
void settle_column(Index n, const double* from, double sum, const Pending& pending, double* column);

// A reflection as the chain applies it to a pivot row and n further rows: the identity if scale is 0.
struct Link {
  const double* u;  // n entries
  Index n;
  double up;
  double scale;
};

// Where the pivot row of a link is, and whether what is pending concerns it.
struct PivotRow {
  double* row;
  Index ld;
  const double* pending_entry;  // null: it does not
};

// Slabs side by side, from one row on, and what belongs to their columns.
struct Columns {
  Index n_slabs;
  double* rows;
  Index ld;
  double* sums;
  double* lengths;  // squared; may be null
};

// Applies the link: the pivot row becomes final, the n rows pending.  The sums are replaced, and the
// squares of the pivot row subtracted from the lengths.
void apply_link(const Link& link, const Pending& pending, const PivotRow& pivot, const Columns& columns);

// Adds what is pending to n rows, and leaves the sums 1.  The lengths become the sums of their squares,
// from +0.0 on.
void settle(Index n, const Pending& pending, const Columns& columns);

}  // namespace tnla_kernels::TNLA_SET
