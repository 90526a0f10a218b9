#include "band.h"

#include <cmath>
#include <limits>

#include "reflection.h"
#include "simd.h"
#include "transpose.h"

namespace tnla_kernels::TNLA_SET {

namespace {

constexpr Index kSideBySide = 4;  // vectors whose sums run together: they hide the latency of an addition
constexpr Index kFewRows = 4;     // below the pivot that stay in registers
constexpr Index kChunk = 16;      // rows after which work on the chain and work beside it take turns

// --- One reflection ----------------------------------------------------------------------------------

// A reflection of a pivot row and n rows below it, in the course of its construction and after it.
struct Reflection {
  double* pivot;
  double* rows;
  Index stride;
  Index n;
  const double* u;

  double largest = 0.0;
  double inverse = 0.0;
  double sum = 0.0;
  double s = 0.0;
  double up = 0.0;
  double scale = 0.0;

  void begin(double p, double magnitude) {
    s = p;
    largest = magnitude;
    inverse = 1.0 / largest;
    sum = (p * inverse) * (p * inverse);
  }

  void add_squares(Index from, Index to) {
    double total = sum;  // in a register, whatever u may overlap
    for (Index e = from; e < to; ++e) total += (u[e] * inverse) * (u[e] * inverse);
    sum = total;
  }

  void finish() {
    if (largest < kNoReflection) return;  // s stays p, and up and scale are 0: the identity
    static constexpr double kSign[] = {1.0, -1.0};
    const double p = s;
    s = largest * kSign[p > 0.0] * std::sqrt(sum);  // the sign costs no branch, and no time before the root
    up = p - s;
    scale = reflection_scale(s, up);
  }
};

double larger_magnitude(double x, double largest) {
  const double magnitude = std::fabs(x);
  return magnitude > largest ? magnitude : largest;
}

// --- Vectors of columns --------------------------------------------------------------------------------

Mask numbers_from(Index first) {
  Mask lane{};
  for (Index l = 0; l < kLanes; ++l) lane[l] = l;
  return lane + first;
}

Mask bits_of(Lanes v) {
  Mask bits;
  std::memcpy(&bits, &v, sizeof bits);
  return bits;
}

Mask is_negative_zero(Lanes v) { return bits_of(v) == std::numeric_limits<std::int64_t>::min() - Mask{}; }

// What a reflection adds to n_vec vectors from column `begin` on.
struct Change {
  Index begin;
  Index n_vec;
  Lanes factor[kSideBySide];  // the sum, until it is complete
  Mask live[kSideBySide];

  double* of(double* row, Index g) const { return row + begin + g * kLanes; }

  void start(const Reflection& h, Index from, Index end) {
    begin = from;
    n_vec = smaller(kSideBySide, (end - begin) / kLanes);
    for (Index g = 0; g < n_vec; ++g) factor[g] = load(of(h.pivot, g)) * h.up;
  }

  template <Index n>
  void add_products(const Reflection& h, Index from, Index to) {
    Lanes sums[n];
    for (Index g = 0; g < n; ++g) sums[g] = factor[g];
    const double* row = h.rows + from * h.stride + begin;
    for (Index e = from; e < to; ++e, row += h.stride) {
      const Lanes u = splat(h.u[e]);
      for (Index g = 0; g < n; ++g) sums[g] += load(row + g * kLanes) * u;
    }
    for (Index g = 0; g < n; ++g) factor[g] = sums[g];
  }

  void add_products(const Reflection& h, Index from, Index to) {
    switch (n_vec) {
      case 1: return add_products<1>(h, from, to);
      case 2: return add_products<2>(h, from, to);
      case 3: return add_products<3>(h, from, to);
      case kSideBySide: return add_products<kSideBySide>(h, from, to);
      default: return;
    }
  }

  void complete(const Reflection& h) {
    const Mask applies = splat(h.scale) != 0.0;
    for (Index g = 0; g < n_vec; ++g) {
      live[g] = (factor[g] != 0.0) & applies;
      factor[g] *= h.scale;
    }
  }

  void update_rows(const Reflection& h, Index from, Index to) const {
    const double* const u = h.u;
    for (Index g = 0; g < n_vec; ++g) {
      double* w = of(h.rows, g) + from * h.stride;
      const Lanes f = factor[g];
      const Mask applies = live[g];
      for (Index e = from; e < to; ++e, w += h.stride) {
        const Lanes old = load(w);
        store(w, select(applies, old + f * u[e], old));
      }
    }
  }

  void update_pivot(const Reflection& h) const {
    for (Index g = 0; g < n_vec; ++g) {
      const Lanes old = load(of(h.pivot, g));
      store(of(h.pivot, g), select(live[g], old + factor[g] * h.up, old));
    }
  }
};

// --- Fold --------------------------------------------------------------------------------------------

class Fold {
 public:
  Fold(Index n_old, Index n_rows, Index bandwidth, double* rows, Index stride, double* scratch)
      : n_old_(n_old),
        n_rows_(n_rows),
        n_reflections_(smaller(bandwidth, n_rows - 1)),
        rows_(rows),
        stride_(stride),
        columns_{scratch, scratch + n_rows} {}

  bool run() {
    if (n_reflections_ > 0) build_first();
    const bool plain_zeros = n_rows_ - n_old_ <= kFewRows && !has_negative_zero(n_old_, n_rows_);
    for (Index i = 0; i < n_reflections_;) {
      const Index end = larger(smaller(n_old_, n_reflections_), i + 1);  // up to which n stays
      switch (plain_zeros ? h_.n : 0) {
        case 1: few_rows<1>(i, end); break;
        case 2: few_rows<2>(i, end); break;
        case 3: few_rows<3>(i, end); break;
        case 4: few_rows<4>(i, end); break;
        default: step(i), ++i; continue;
      }
      i = end;
    }
    for (Index i = larger(n_reflections_, 0); i < n_old_; ++i) check_old_row(i);
    return !any(odd_) && !any(not_finite_ != 0.0);
  }

 private:
  double* row(Index i) const { return rows_ + i * stride_; }

  Index first_below(Index i) const { return larger(i + 1, n_old_); }

  Reflection reflection(Index i, const double* u) const {
    const Index below = first_below(i);
    return {row(i), row(below), stride_, n_rows_ - below, u};
  }

  bool has_negative_zero(Index begin, Index end) const {
    Mask found{};
    for (const double* p = row(begin); p < row(end); p += kLanes) found |= is_negative_zero(load(p));
    return any(found);
  }

  void build_first() {
    h_ = reflection(0, columns_[0]);
    double largest = std::fabs(h_.pivot[0]);
    for (Index e = 0; e < h_.n; ++e) {
      columns_[0][e] = h_.rows[e * stride_];
      largest = larger_magnitude(columns_[0][e], largest);
    }
    h_.begin(h_.pivot[0], largest);
    h_.add_squares(0, h_.n);
    h_.finish();
  }

  // Applies reflection i, and builds the next one while the change of the rows is under way: its chain of
  // operations is the longest.
  void step(Index i) {
    const bool is_last = i + 1 == n_reflections_;
    Change change;
    change.start(h_, (i + 1) / kLanes * kLanes, stride_);
    double lead = is_last ? 0.0 : h_.pivot[i + 1] * h_.up;
    for (Index from = 0; from < h_.n; from += kChunk) {
      const Index to = smaller(from + kChunk, h_.n);
      if (!is_last) lead = add_products_of_column(i + 1, from, to, lead);
      change.add_products(h_, from, to);
    }
    Reflection next = is_last ? h_ : begin_next(i + 1, lead);
    complete(i, change);
    for (Index from = 0; from < h_.n; from += kChunk) {
      const Index to = smaller(from + kChunk, h_.n);
      if (!is_last) next.add_squares(from, smaller(to, next.n));
      change.update_rows(h_, from, to);
    }
    if (!is_last) next.finish();
    check_old_row(i);
    change.update_pivot(h_);
    apply_from(change.begin + change.n_vec * kLanes, i);
    h_.pivot[i] = h_.s;
    h_ = next;
  }

  // The same for the reflections begin ... end-1 of n rows, which stay in registers.
  template <Index n>
  void few_rows(Index begin, Index end) {
    Reflection h = h_;
    for (Index i = begin; i < end; ++i) {
      Reflection next = h;
      if (i + 1 < n_reflections_) next = build_next<n>(i + 1, h);
      check_old_row(i);
      if (h.scale != 0.0) apply<n>(i, h);
      h.pivot[i] = h.s;
      h = next;
    }
    h_ = h;
  }

  template <Index n>
  void apply(Index i, const Reflection& h) {
    Lanes u[n];
    for (Index e = 0; e < n; ++e) u[e] = splat(h.u[e]);
    for (Index c = (i + 1) / kLanes * kLanes; c < stride_; c += kLanes) {
      double* const w = h.rows + c;
      const Lanes pivot = load(h.pivot + c);
      Lanes rows[n];
      Lanes sum = pivot * h.up;
      for (Index e = 0; e < n; ++e) {
        rows[e] = load(w + e * stride_);
        sum += rows[e] * u[e];
      }
      const Lanes factor = sum * h.scale;
      not_finite_ += factor - factor;
      store(h.pivot + c, pivot + factor * h.up);
      for (Index e = 0; e < n; ++e) store(w + e * stride_, rows[e] + factor * u[e]);
    }
  }

  // Reflection i, from its column, to which the one before is applied here.
  template <Index n>
  Reflection build_next(Index i, const Reflection& h) {
    const double* const rows = h.rows + i;
    double product = h.pivot[i] * h.up;
    for (Index e = 0; e < n; ++e) product += rows[e * stride_] * h.u[e];
    double entries[n];
    for (Index e = 0; e < n; ++e) entries[e] = rows[e * stride_];
    if (h.scale != 0.0) {
      const double factor = product * h.scale;
      for (Index e = 0; e < n; ++e) entries[e] += factor * h.u[e];
    }
    double* const u = columns_[i % 2];
    for (Index e = 0; e < n; ++e) u[e] = entries[e];
    const Index is_new = i >= n_old_ ? 1 : 0;  // the pivot is one of the rows that change
    Reflection next = reflection(i, u + is_new);
    const double pivot = is_new == 1 ? entries[0] : next.pivot[i];
    double largest = std::fabs(pivot);  // the pivot once more, where it is new, does no harm
    for (Index e = 0; e < n; ++e) largest = larger_magnitude(entries[e], largest);
    next.begin(pivot, largest);
    if (is_new == 0) next.sum += (entries[0] * next.inverse) * (entries[0] * next.inverse);
    for (Index e = 1; e < n; ++e) next.sum += (entries[e] * next.inverse) * (entries[e] * next.inverse);
    next.finish();
    return next;
  }

  double add_products_of_column(Index column, Index from, Index to, double sum) const {
    const double* entry = h_.rows + from * stride_ + column;
    const double* const u = h_.u;
    for (Index e = from; e < to; ++e, entry += stride_) sum += *entry * u[e];
    return sum;
  }

  // Reflection i from its column, to which the one before is applied here: the vectors come later.
  Reflection begin_next(Index i, double product) {
    const bool applies = product != 0.0 && h_.scale != 0.0;
    const double factor = product * h_.scale;
    double* const u = columns_[i % 2];
    const double* const rows = h_.rows + i;
    const auto updated = [&, old_u = h_.u, stride = stride_](Index e) {
      const double entry = rows[e * stride];
      return u[e] = applies ? entry + factor * old_u[e] : entry;
    };
    const Index is_new = i >= n_old_ ? 1 : 0;  // the pivot is one of the rows that change
    Reflection next = reflection(i, u + is_new);
    const double pivot = is_new == 1 ? updated(0) : next.pivot[i];
    double largest = std::fabs(pivot);
    for (Index e = is_new; e < h_.n; ++e) largest = larger_magnitude(updated(e), largest);
    next.begin(pivot, largest);
    return next;
  }

  void complete(Index i, Change& change) {
    change.complete(h_);
    for (Index g = 0; g < change.n_vec; ++g) {
      change.live[g] &= numbers_from(change.begin + g * kLanes) > i - Mask{};
      not_finite_ += select(change.live[g], change.factor[g] - change.factor[g], Lanes{});
    }
  }

  // The vectors from `begin` on.
  void apply_from(Index begin, Index i) {
    for (; begin < stride_; begin += kSideBySide * kLanes) {
      Change change;
      change.start(h_, begin, stride_);
      change.add_products(h_, 0, h_.n);
      complete(i, change);
      change.update_rows(h_, 0, h_.n);
      change.update_pivot(h_);
    }
  }

  void check_old_row(Index i) {
    if (i >= n_old_) return;
    const double* const w = row(i);
    for (Index c = 0; c < stride_; c += kLanes) {
      const Lanes v = load(w + c);
      odd_ |= is_negative_zero(v) | (bits_of(v) & (numbers_from(c) < i - Mask{}));
      not_finite_ += v - v;
    }
  }

  Index n_old_;
  Index n_rows_;
  Index n_reflections_;
  double* rows_;
  Index stride_;
  double* columns_[2];  // u of the reflections of even and of odd columns
  Reflection h_;
  Mask odd_{};
  Lanes not_finite_{};
};

bool fold(Index n_old, Index n_rows, Index bandwidth, double* rows, Index stride, double* scratch) {
  return Fold(n_old, n_rows, bandwidth, rows, stride, scratch).run();
}

// --- Contiguous columns --------------------------------------------------------------------------------

template <Index n_cols>
void reflect_together(double up, const double* u, Index n, double scale, double* w, Index stride) {
  double sums[n_cols];
  for (Index c = 0; c < n_cols; ++c) sums[c] = w[c * stride] * up;
  const double* const range = w + 1;
  for (Index e = 0; e < n; ++e) {
    for (Index c = 0; c < n_cols; ++c) sums[c] += range[c * stride + e] * u[e];
  }
  for (Index c = 0; c < n_cols; ++c, w += stride) {
    if (sums[c] == 0.0) continue;
    const double factor = sums[c] * scale;
    w[0] += factor * up;
    for (Index e = 0; e < n; ++e) w[1 + e] += factor * u[e];
  }
}

void reflect_columns(double up, const double* u, Index n, double scale, double* w, Index stride,
                     Index n_cols) {
  for (; n_cols >= 6; n_cols -= 3, w += 3 * stride) reflect_together<3>(up, u, n, scale, w, stride);
  switch (n_cols) {
    case 1: return reflect_together<1>(up, u, n, scale, w, stride);
    case 2: return reflect_together<2>(up, u, n, scale, w, stride);
    case 3: return reflect_together<3>(up, u, n, scale, w, stride);
    case 4: return reflect_together<4>(up, u, n, scale, w, stride);
    case 5: return reflect_together<5>(up, u, n, scale, w, stride);
    default: return;
  }
}

// --- Elimination -------------------------------------------------------------------------------------

void eliminate(Index column, Index n, double* pivot, double* rows, Index stride, double* u) {
  Reflection h{pivot, rows, stride, n, u};
  double largest = std::fabs(pivot[column]);
  for (Index e = 0; e < n; ++e) {
    u[e] = rows[e * stride + column];
    rows[e * stride + column] = 0.0;
    largest = larger_magnitude(u[e], largest);
  }
  h.begin(pivot[column], largest);
  h.add_squares(0, n);
  h.finish();
  for (Index begin = 0; begin < stride; begin += kSideBySide * kLanes) {
    Change change;
    change.start(h, begin, stride);
    change.add_products(h, 0, n);
    change.complete(h);
    for (Index g = 0; g < change.n_vec; ++g) {
      change.live[g] &= numbers_from(begin + g * kLanes) != column - Mask{};
    }
    change.update_rows(h, 0, n);
    change.update_pivot(h);
  }
  pivot[column] = h.s;
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

// By single elements: the client has written them so a moment ago, and a vector could not be read before
// they have left the processor's store queue.
void gather(Index n_rows, Index shift, Index bandwidth, Index n_rhs, const double* matrix, Index ld,
            double* rows, Index stride) {
  for (Index c = 0; c < stride; c += kLanes) {
    const double* from[kLanes];
    Mask given{};
    for (Index l = 0; l < kLanes; ++l) {
      const bool in_band = c + l < bandwidth;
      const Index column = in_band ? c + l + shift : c + l;
      const bool exists = column < (in_band ? bandwidth : bandwidth + n_rhs);
      from[l] = matrix + (exists ? column : 0) * ld;
      given[l] = exists ? -1 : 0;
    }
    double* to = rows + c;
    for (Index i = 0; i < n_rows; ++i, to += stride) {
      Lanes v{};
      for (Index l = 0; l < kLanes; ++l) v[l] = from[l][i];
      store(to, select(given, v, Lanes{}));
    }
  }
}

// Calls f(row, height) for tiles of kLanes rows; if there are as many, the last one overlaps the one
// before.
template <class F>
void for_tiles(Index n_rows, const F& f) {
  if (n_rows < 1) return;
  if (n_rows < kLanes) return f(0, n_rows);
  for (Index row = 0; row + kLanes < n_rows; row += kLanes) f(row, kLanes);
  f(n_rows - kLanes, kLanes);
}

void store_some(double* p, Lanes v, Index n) {
  if (n == kLanes) return store(p, v);
  for (Index l = 0; l < n; ++l) p[l] = v[l];
}

void scatter(Index n_rows, Index n_cols, Index n_zeroed, const double* rows, Index stride, double* matrix,
             Index ld) {
  for (Index c = 0; c < n_cols; c += kLanes) {
    const Index width = smaller(kLanes, n_cols - c);
    for_tiles(n_rows, [&](Index row, Index height) {
      Lanes tile[kLanes] = {};
      for (Index l = 0; l < height; ++l) tile[l] = load(rows + (row + l) * stride + c);
      transpose_tile(tile);
      for (Index l = 0; l < width; ++l) {
        if (c + l < n_zeroed) tile[l] = select(numbers_from(row) > c + l - Mask{}, Lanes{}, tile[l]);
        store_some(matrix + (c + l) * ld + row, tile[l], height);
      }
    });
  }
}

}  // namespace

BandKernels band_kernels() { return {gather, scatter, fold, reflect_columns, eliminate, substitute}; }

}  // namespace tnla_kernels::TNLA_SET
