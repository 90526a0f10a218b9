#include "band.h"

#include <cmath>
#include <limits>

#include "reflection.h"
#include "simd.h"
#include "transpose.h"

namespace tnla_kernels::TNLA_SET {

namespace {

// --- One reflection ----------------------------------------------------------------------------------

constexpr Index kSideBySide = 8;  // vectors whose sums run together: they hide the latency of an addition
constexpr Index kChunk = 16;      // rows that are updated between two pieces of the next one's sum

// Of a pivot row and n rows below it, taken from one column.
struct Reflection {
  Index column;
  Index n;
  double* pivot;
  double* rows;
  Index stride;
  double* u;

  double largest = 0.0;
  double inverse = 0.0;
  double sum = 0.0;
  double up = 0.0;
  double scale = 0.0;

  // Keeps the column as u, and zeroes it.
  void take_column() {
    largest = std::fabs(pivot[column]);
    double* entry = rows + column;
    for (Index e = 0; e < n; ++e, entry += stride) {
      u[e] = *entry;
      *entry = 0.0;
      const double magnitude = std::fabs(u[e]);
      largest = magnitude > largest ? magnitude : largest;
    }
    inverse = 1.0 / largest;
    const double scaled = pivot[column] * inverse;
    sum = scaled * scaled;
  }

  void add_squares(Index begin, Index end) {
    for (Index e = begin; e < end; ++e) {
      const double scaled = u[e] * inverse;
      sum += scaled * scaled;
    }
  }

  void finish() {
    if (largest < kNoReflection) return;  // up and scale are 0: the identity
    double s = largest * std::sqrt(sum);
    if (pivot[column] > 0.0) s = -s;
    up = pivot[column] - s;
    pivot[column] = s;
    scale = reflection_scale(s, up);
  }
};

// What a reflection adds to a vector of columns, and to which of them.
struct Change {
  Lanes factor;
  Mask live;
};

template <Index n_vec>
void form_changes(const Reflection& h, Index q, Change* changes) {
  Lanes sums[n_vec];
  for (Index g = 0; g < n_vec; ++g) sums[g] = load(h.pivot + (q + g) * kLanes) * h.up;
  const double* row = h.rows + q * kLanes;
  for (Index e = 0; e < h.n; ++e, row += h.stride) {
    const Lanes u = splat(h.u[e]);
    for (Index g = 0; g < n_vec; ++g) sums[g] += load(row + g * kLanes) * u;
  }
  const Mask applies = splat(h.scale) != 0.0;
  for (Index g = 0; g < n_vec; ++g) changes[g] = {sums[g] * h.scale, (sums[g] != 0.0) & applies};
}

void form_changes(const Reflection& h, Index q, Index n_vec, Change* changes) {
  switch (n_vec) {
    case 1:
      return form_changes<1>(h, q, changes);
    case 2:
      return form_changes<2>(h, q, changes);
    case 3:
      return form_changes<3>(h, q, changes);
    case 4:
      return form_changes<4>(h, q, changes);
    case 5:
      return form_changes<5>(h, q, changes);
    case 6:
      return form_changes<6>(h, q, changes);
    case 7:
      return form_changes<7>(h, q, changes);
    default:
      return form_changes<kSideBySide>(h, q, changes);
  }
}

Mask numbers_from(Index first) {
  Mask numbers;
  for (Index l = 0; l < kLanes; ++l) numbers[l] = first + l;
  return numbers;
}

// Leaves the reflection's own column alone, which take_column() and finish() have written.
void spare_column(const Reflection& h, Index q, Change& change) {
  change.live &= numbers_from(q * kLanes) != h.column - Mask{};
}

void add_change(double* w, const Change& change, Lanes u) {
  const Lanes old = load(w);
  store(w, select(change.live, old + change.factor * u, old));
}

// Vector q of the pivot row.
void update_pivot(const Reflection& h, Index q, const Change& change) {
  add_change(h.pivot + q * kLanes, change, splat(h.up));
}

// Vector q of the rows begin ... end-1.
void update_rows(const Reflection& h, Index q, const Change& change, Index begin, Index end) {
  double* w = h.rows + begin * h.stride + q * kLanes;
  for (Index e = begin; e < end; ++e, w += h.stride) add_change(w, change, splat(h.u[e]));
}

// Vectors begin ... end-1 of everything.
void update(const Reflection& h, Index q, const Change* changes, Index begin, Index end) {
  for (Index g = begin; g < end; ++g) {
    update_pivot(h, q + g, changes[g]);
    update_rows(h, q + g, changes[g], 0, h.n);
  }
}

// --- Fold --------------------------------------------------------------------------------------------

// Whether the old rows are a triangle with +0.0 below the diagonal, of finite numbers and without a -0.0.
bool is_plain_triangle(Index n_old, const double* rows, Index stride) {
  Lanes not_finite{};
  Mask odd{};
  for (Index i = 0; i < n_old; ++i, rows += stride) {
    for (Index q = 0; q < stride; q += kLanes) {
      const Lanes w = load(rows + q);
      Mask bits;
      std::memcpy(&bits, &w, sizeof bits);
      odd |= bits == std::numeric_limits<std::int64_t>::min() - Mask{};
      if (q < i) odd |= bits & (numbers_from(q) < i - Mask{});
      not_finite += w - w;
    }
  }
  return !any(odd) && !any(not_finite != 0.0);
}

// The rows in the course of a fold.
struct Fold {
  Index n_old;
  Index n_rows;
  double* rows;
  Index stride;
  double* scratch;

  // The one that zeroes column i.  Those of odd and even columns live at the same time.
  Reflection reflection(Index i) const {
    const Index begin = larger(i + 1, n_old);
    return {i, n_rows - begin, rows + i * stride, rows + begin * stride, stride, scratch + i % 2 * n_rows};
  }
};

// Applies h to the vectors from q on.  In the shadow of the next one's long chain.
void apply_and_build(const Reflection& h, Index q, Index n_vec, const Change* changes, Reflection& next) {
  update(h, q, changes, 0, 1);
  next.take_column();
  for (Index begin = 0; begin < h.n; begin += kChunk) {
    const Index end = smaller(begin + kChunk, h.n);
    next.add_squares(begin, smaller(end, next.n));
    for (Index g = 1; g < n_vec; ++g) update_rows(h, q + g, changes[g], begin, end);
  }
  for (Index g = 1; g < n_vec; ++g) update_pivot(h, q + g, changes[g]);
  next.finish();
}

bool fold(Index n_old, Index n_rows, Index bandwidth, double* rows, Index stride, double* scratch) {
  if (!is_plain_triangle(n_old, rows, stride)) return false;
  const Fold all{n_old, n_rows, rows, stride, scratch};
  const Index n_reflections = smaller(bandwidth, n_rows - 1);
  if (n_reflections < 1) return true;

  Lanes not_finite{};
  Reflection h = all.reflection(0);
  h.take_column();
  h.add_squares(0, h.n);
  h.finish();
  for (Index i = 0; i < n_reflections; ++i) {
    const bool is_last = i + 1 == n_reflections;
    Reflection next = is_last ? h : all.reflection(i + 1);
    const Index first = (i + 1) / kLanes;
    for (Index q = first; q * kLanes < stride; q += kSideBySide) {
      const Index n_vec = smaller(kSideBySide, stride / kLanes - q);
      Change changes[kSideBySide];
      form_changes(h, q, n_vec, changes);
      for (Index g = 0; g < n_vec; ++g) not_finite += changes[g].factor - changes[g].factor;
      if (q == first) spare_column(h, q, changes[0]);
      if (q > first || is_last) {
        update(h, q, changes, 0, n_vec);
      } else {
        apply_and_build(h, q, n_vec, changes, next);
      }
    }
    h = next;
  }
  return !any(not_finite != 0.0);
}

// --- Elimination -------------------------------------------------------------------------------------

void eliminate(Index column, Index n, double* pivot, double* rows, Index stride, double* u) {
  Reflection h{column, n, pivot, rows, stride, u};
  h.take_column();
  h.add_squares(0, n);
  h.finish();
  for (Index q = 0; q * kLanes < stride; q += kSideBySide) {
    const Index n_vec = smaller(kSideBySide, stride / kLanes - q);
    Change changes[kSideBySide];
    form_changes(h, q, n_vec, changes);
    for (Index g = 0; g < n_vec; ++g) spare_column(h, q + g, changes[g]);
    update(h, q, changes, 0, n_vec);
  }
}

// --- Substitution ------------------------------------------------------------------------------------

// sum over j of x(j, k) * row(j), for a vector of k.
Lanes sum_of_solved(Index n, const double* row, const double* x, Index x_stride) {
  Lanes sum{};
  for (Index j = 0; j < n; ++j, x += x_stride) sum += load(x) * row[j];
  return sum;
}

Index substitute(Index n, Index bandwidth, Index n_rhs, double smallest, const double* rows, Index stride,
                 Index n_coupled, const double* coupling, const double* x_coupled, double* x,
                 Index x_stride) {
  for (Index i = n - 1; i >= 0; --i) {
    const double* const row = rows + i * stride;
    if (std::fabs(row[0]) < smallest) return i + 1;
    for (Index k = 0; k < n_rhs; k += kLanes) {
      double* const place = x + i * x_stride + k;
      const Lanes band = sum_of_solved(bandwidth - 1, row + 1, place + x_stride, x_stride);
      const Lanes coupled = sum_of_solved(n_coupled, coupling + i * n_coupled, x_coupled + k, x_stride);
      store(place, ((load(row + bandwidth + k) - band) - coupled) / row[0]);
    }
  }
  return 0;
}

// --- Copies ------------------------------------------------------------------------------------------

// Calls f(row) for tiles of kLanes rows; the last one overlaps the one before.
template <class F>
void for_tiles(Index n_rows, const F& f) {
  for (Index row = 0; row + kLanes < n_rows; row += kLanes) f(row);
  f(n_rows - kLanes);
}

void gather(Index n_rows, Index shift, Index bandwidth, Index n_rhs, const double* matrix, Index ld,
            double* rows, Index stride) {
  for (Index c = 0; c < stride; c += kLanes) {
    static constexpr double kZeros[kLanes] = {};
    const double* from[kLanes];
    Index step[kLanes];
    for (Index l = 0; l < kLanes; ++l) {
      const Index column = c + l < bandwidth ? c + l + shift : c + l;
      const bool given = column < (c + l < bandwidth ? bandwidth : bandwidth + n_rhs);
      from[l] = given ? matrix + column * ld : kZeros;
      step[l] = given ? 1 : 0;
    }
    if (n_rows < kLanes) {
      for (Index i = 0; i < n_rows; ++i) {
        for (Index l = 0; l < kLanes; ++l) rows[i * stride + c + l] = from[l][i * step[l]];
      }
      continue;
    }
    for_tiles(n_rows, [&](Index row) {
      Lanes tile[kLanes];
      for (Index l = 0; l < kLanes; ++l) tile[l] = load(from[l] + row * step[l]);
      transpose_tile(tile);
      for (Index l = 0; l < kLanes; ++l) store(rows + (row + l) * stride + c, tile[l]);
    });
  }
}

void scatter(Index n_rows, Index n_cols, const double* rows, Index stride, double* matrix, Index ld) {
  for (Index c = 0; c < n_cols; c += kLanes) {
    const Index width = smaller(kLanes, n_cols - c);
    if (n_rows < kLanes) {
      for (Index l = 0; l < width; ++l) {
        for (Index i = 0; i < n_rows; ++i) matrix[(c + l) * ld + i] = rows[i * stride + c + l];
      }
      continue;
    }
    for_tiles(n_rows, [&](Index row) {
      Lanes tile[kLanes];
      for (Index l = 0; l < kLanes; ++l) tile[l] = load(rows + (row + l) * stride + c);
      transpose_tile(tile);
      for (Index l = 0; l < width; ++l) store(matrix + (c + l) * ld + row, tile[l]);
    });
  }
}

}  // namespace

BandKernels band_kernels() { return {gather, scatter, fold, eliminate, substitute}; }

}  // namespace tnla_kernels::TNLA_SET
