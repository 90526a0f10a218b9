// SPDX-License-Identifier: MIT

#include "small_qr.h"

#include <cmath>

#include "full_rank.h"
#include "reflection.h"
#include "simd.h"

// All of a system is on the stack, by rows.  The trailing columns and the first right sides lie side by
// side in the lanes, so that one pass applies a reflection to both; column 0 is apart, and so is column 1
// where it would need a vector for itself:
//
//     n = 6, 4 lanes     0 | 1  2  3  4 | 5  b0 b1 b2          n = 4     0 | 1 | 2  3  b0 b1
//
// What takes the time is one chain: a reflection is made, the next column brought up to date, its
// reflection made.  So the vector with the next column comes first, and the others follow in the shadow of
// the next `make`.  There are no branches on values in it: what has to stay as it is gets -0.0 added, which
// changes nothing.
namespace tnla_kernels::TNLA_SET {

namespace {

// Up to here the steps are unrolled, and the rows are in registers as far as these go.  Beyond, that would
// take 0.88 of the time of the loops at order 6 and 0.87 at order 8 for two right sides, but 48 KB in
// the two sets, a tenth of the module.
inline constexpr Index kUnrolled = kLanes == 4 ? 4 : 3;

// And up to here also with as many right sides as unknowns, which small matrices have: 35 instead of 88 ns
// at order 3, compared with right sides that come after A.
inline constexpr Index kUnrolledSquare = 4;

constexpr Index vectors_for(Index n) { return (n + kLanes - 1) / kLanes; }

// A reflection for all lanes of a vector.
struct Reflection {
  Lanes up;
  Lanes scale;
  Mask identity;
};

[[gnu::always_inline]] inline double magnitude(double x) { return __builtin_fabs(x); }

// The largest of pivot and u, as `make` takes it: a NaN in u is passed over, and one as pivot stays.  Two
// running values for half the latency; the second never is NaN.
[[gnu::always_inline]] inline double largest_magnitude(double pivot, Index n, const double* u) {
  double first = magnitude(pivot);
  double second = 0.0;
  for (Index i = 0; i + 1 < n; i += 2) {
    first = magnitude(u[i]) > first ? magnitude(u[i]) : first;
    second = magnitude(u[i + 1]) > second ? magnitude(u[i + 1]) : second;
  }
  if (n % 2 != 0) second = magnitude(u[n - 1]) > second ? magnitude(u[n - 1]) : second;
  return second > first ? second : first;
}

// ReflectionKernels::make and reflection_scale.  Where there is no reflection, the divisors are replaced.
[[gnu::always_inline]] inline Reflection make(double& pivot, Index n, const double* u) {
  const double largest = largest_magnitude(pivot, n, u);
  const bool tiny = largest < kNoReflection;
  const double c = tiny ? 1.0 : largest;
  const double inverse = 1.0 / c;
  double sum = (pivot * inverse) * (pivot * inverse);
  for (Index i = 0; i < n; ++i) sum += (u[i] * inverse) * (u[i] * inverse);
  const double s = (pivot > 0.0 ? -c : c) * std::sqrt(sum);
  const double up = pivot - s;
  const double product = tiny ? 0.0 : s * up;
  pivot = tiny ? pivot : s;
  const Lanes scale = splat(1.0 / (kNoReflection > -product ? -1.0 : product));
  return {splat(up), scale, (kNoReflection > -splat(product)) | (scale == 0.0)};
}

// Applies h to n rows of a vector, `step` apart, of which row 0 holds the pivots; u[0] is not used.
[[gnu::always_inline]] inline void reflect(const Reflection& h, Index n, const double* u, Lanes* w,
                                           Index step) {
  Lanes sum = w[0] * h.up;
  for (Index i = 1; i < n; ++i) sum += w[i * step] * splat(u[i]);
  const Lanes factor = sum * h.scale;
  const Mask stays = (sum == 0.0) | h.identity;
  w[0] += select(stays, splat(-0.0), factor * h.up);
  for (Index i = 1; i < n; ++i) w[i * step] += select(stays, splat(-0.0), factor * splat(u[i]));
}

// The same for one column.
[[gnu::always_inline]] inline void reflect(const Reflection& h, Index n, const double* u, double* w) {
  double sum = w[0] * h.up[0];
  for (Index i = 1; i < n; ++i) sum += w[i] * u[i];
  const double factor = sum * h.scale[0];
  const bool stays = (sum == 0.0) | (h.identity[0] != 0);
  w[0] += stays ? -0.0 : factor * h.up[0];
  for (Index i = 1; i < n; ++i) w[i] += stays ? -0.0 : factor * u[i];
}

// TriangularKernels::back_substitute for a vector of n rows; upper(i, j) is R(i, j), i < j.
//
// A sum of several terms takes its +0.0 with the second one.  That term does not wait for the row below,
// and the sum is the same: wherever 0 + t is not t, both ways end in +0.0 or in the other term.
template <class Upper>
[[gnu::always_inline]] inline void back_substitute(Index n, const Upper& upper, const double* diagonal,
                                                   Lanes* w, Index step) {
  for (Index i = n - 1; i >= 0; --i) {
    Lanes sum{};
    if (i + 2 < n) sum += splat(upper(i, i + 2)) * w[(i + 2) * step];
    if (i + 1 < n) sum = splat(upper(i, i + 1)) * w[(i + 1) * step] + sum;
    for (Index l = i + 3; l < n; ++l) sum += splat(upper(i, l)) * w[l * step];
    w[i * step] = (w[i * step] - sum) / splat(diagonal[i]);
  }
}

// A system of 2 <= n <= Most unknowns, with kApart columns apart and room for kBeside right sides.
// Everything is inlined, so that a constant n is one in all loops.
template <Index Most, Index kApart, Index kBeside>
class System {
  static constexpr Index kVectors = vectors_for(Most - kApart + kBeside);  // the steps of the rows

 public:
  // The right sides that there is room for.
  [[gnu::always_inline]] static constexpr Index most_right(Index n) {
    return kVectors * kLanes - (n - kApart);
  }

  // p <= most_right(n).
  [[gnu::always_inline]] System(Index n, const double* a, Index p, const double* b, Index ldb)
      : n_vectors_(Most <= kUnrolled ? kVectors : vectors_for(n - kApart + p)),
        n_right_(n_vectors_ * kLanes - (n - kApart)) {
    for (Index j = 0; j < kApart; ++j) {
      for (Index i = 0; i < n; ++i) u_[j][i] = a[j * n + i];
    }
    const double* columns[kVectors * kLanes];
    for (Index j = kApart; j < n; ++j) columns[j - kApart] = a + j * n;
    const double* right = p > 0 ? b : a;
    for (Index c = 0; c < n_right_; ++c) {  // the last one again, where there are fewer
      if (c > 0) right += c < p ? ldb : 0;
      columns[n - kApart + c] = right;
    }
    for (Index i = 0; i < n; ++i) {
      for (Index v = 0; v < n_vectors_; ++v) {
        Lanes lanes{};
        for (Index l = 0; l < kLanes; ++l) lanes[l] = columns[v * kLanes + l][i];
        row_[i * kVectors + v] = lanes;
      }
    }
  }

  // A = Q R and Q' B; the verdict on R.
  [[gnu::always_inline]] bool factor(Index n, double* diagonal) {
    FullRank rank;
    make_next(n, 0);
    if constexpr (Most <= kUnrolled) {
      unrolled_steps<0>(diagonal, rank);
    } else {
      for (Index k = 0; k + 1 < n; ++k) step(n, k, diagonal, rank);
    }
    diagonal_[n - 1] = u_[n - 1][n - 1];
    keep(n - 1, diagonal, rank);
    return rank.verdict();
  }

  // The p > 0 solutions.
  [[gnu::always_inline]] void solve(Index n, Index p, double* x) {
    const auto r = [this](Index i, Index j) { return upper(i, j); };
    // The first of these vectors may hold columns of R, which it loses: it comes last.
    for (Index v = n_vectors_ - 1; v >= (n - kApart) / kLanes; --v) {
      back_substitute(n, r, diagonal_, row_ + v, kVectors);
    }
    for (Index c = 0; c < n_right_; ++c) {  // the last one again: a branch would end the shadow
      if (c > 0) x += c < p ? n : 0;
      const Index place = n - kApart + c;
      for (Index i = 0; i < n; ++i) x[i] = row_[i * kVectors + place / kLanes][place % kLanes];
    }
  }

 private:
  [[gnu::always_inline]] double upper(Index i, Index j) const {
    if (j < kApart) return u_[j][i];
    return row_[i * kVectors + (j - kApart) / kLanes][(j - kApart) % kLanes];
  }

  template <Index K>
  [[gnu::always_inline]] void unrolled_steps(double* diagonal, FullRank& rank) {
    if constexpr (K + 1 < Most) {
      step(Most, K, diagonal, rank);
      unrolled_steps<K + 1>(diagonal, rank);
    }
  }

  // Applies reflection k, and makes the next one on the way.
  [[gnu::always_inline]] void step(Index n, Index k, double* diagonal, FullRank& rank) {
    keep(k, diagonal, rank);
    const Index next = k + 1;
    Index v = 0;
    if (next < kApart) {
      reflect(h_[k], n - k, u_[k] + k, u_[next] + k);
    } else {
      v = (next - kApart) / kLanes;
      reflect_vector(n, k, v);
      for (Index i = next; i < n; ++i) u_[next][i] = row_[i * kVectors + v][(next - kApart) % kLanes];
      ++v;
    }
    if (next + 1 < n) make_next(n, next);
    for (; v < n_vectors_; ++v) reflect_vector(n, k, v);
  }

  [[gnu::always_inline]] void reflect_vector(Index n, Index k, Index v) {
    reflect(h_[k], n - k, u_[k] + k, row_ + k * kVectors + v, kVectors);
  }

  [[gnu::always_inline]] void make_next(Index n, Index k) {
    diagonal_[k] = u_[k][k];
    h_[k] = make(diagonal_[k], n - k - 1, u_[k] + k + 1);
  }

  [[gnu::always_inline]] void keep(Index k, double* diagonal, FullRank& rank) {
    diagonal[k] = diagonal_[k];
    rank.take(diagonal_[k]);
  }

  Lanes row_[Most * kVectors];
  Reflection h_[Most];
  double u_[Most][Most];  // u_[k][i], i > k: reflection k
  double diagonal_[Most];
  const Index n_vectors_;  // in use
  const Index n_right_;
};

template <class Chosen>
[[gnu::always_inline]] inline bool solve_by(Index n, const double* a, Index p, const double* b, Index ldb,
                                            double* x, double* diagonal) {
  Chosen system(n, a, p, b, ldb);
  if (!system.factor(n, diagonal)) return false;
  if (p > 0) system.solve(n, p, x);
  return true;
}

// More right sides than there is room for are few and far between: A is factored once more for them.
bool solve_any(Index n, const double* a, Index p, const double* b, Index ldb, double* x, double* diagonal) {
  using Any = System<kLargestSmall, 2, kLargestSmall>;
  if (n < 2) __builtin_unreachable();  // known to the callers, not to the compiler
  const Index room = Any::most_right(n);
  for (;;) {
    const Index taken = smaller(p, room);
    if (!solve_by<Any>(n, a, taken, b, ldb, x, diagonal)) return false;
    p -= taken;
    if (p == 0) return true;
    b += taken * ldb;
    x += taken * n;
  }
}

// Column 1 is apart where it would need a vector for itself.
template <Index N, Index kBeside>
using Unrolled = System<N, (N - 1 + kBeside) % kLanes == 1 ? 2 : 1, kBeside>;

template <Index N>
bool solve_unrolled(Index n, const double* a, Index p, const double* b, Index ldb, double* x,
                    double* diagonal) {
  if (p <= Unrolled<N, 2>::most_right(N)) return solve_by<Unrolled<N, 2>>(N, a, p, b, ldb, x, diagonal);
  if constexpr (N <= kUnrolledSquare) {
    if (p <= Unrolled<N, N>::most_right(N)) return solve_by<Unrolled<N, N>>(N, a, p, b, ldb, x, diagonal);
  }
  return solve_any(n, a, p, b, ldb, x, diagonal);
}

bool solve_single(Index, const double* a, Index p, const double* b, Index ldb, double* x,
                  double* diagonal) {
  FullRank rank;
  diagonal[0] = a[0];
  rank.take(diagonal[0]);
  if (!rank.verdict()) return false;
  for (Index c = 0; c < p; ++c) x[c] = b[c * ldb] / diagonal[0];
  return true;
}

template <Index N>
constexpr SmallQrKernels::Solve solver() {
  if constexpr (N > kUnrolled) {
    return solve_any;
  } else {
    return solve_unrolled<N>;
  }
}

}  // namespace

SmallQrKernels small_qr_kernels() {
  return {{solve_single, solver<2>(), solver<3>(), solver<4>(), solver<5>(), solver<6>(), solver<7>(),
           solver<8>(), solver<9>(), solver<10>(), solver<11>(), solver<12>()}};
}

}  // namespace tnla_kernels::TNLA_SET
