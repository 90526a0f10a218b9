// SPDX-License-Identifier: MIT

#include "jacobi.h"

#include <cmath>
#include <optional>

#include "jacobi_turns.h"
#include "jacobi_wavefront.h"
#include "simd.h"

namespace tnla_kernels::TNLA_SET {

namespace {

constexpr int kMostSweeps = 50;
constexpr int kThresholdSweeps = 3;     // the first ones, which leave small elements alone
constexpr int kLastCarefulSweep = 3;    // from the next one on, negligible elements are zeroed at once
constexpr double kThresholdPart = 0.2;  // of the sum of magnitudes over n * n

// Below it, turning a and v pair by pair takes less than writing the rotations down: bench/eigenvectors,
// AVX2, n = 8 22% less, n = 10 the same, n = 12 13% more.
constexpr Index kSmallestDeferred = 12;

// The magnitude up to which nothing overflows, however many rotations there are.
constexpr double kLargestElement = 1e150;

// Of n^2: from there on a sweep does them side by side, which costs the same however few they are.
// For a tridiagonal matrix 1/3 is 6% slower than 1/8; 1/5 to 1/32 are within 2%.
constexpr Index kManyRotations = 8;

bool is_deferred(Index n) { return n >= kSmallestDeferred; }

// Pairs (x, y), `incr_x` and `incr_y` apart.  Not inlined: a sweep is there twice.
[[gnu::noinline]] void turn_pairs(const Rotation& rotation, Index n, double* x, Index incr_x, double* y,
                                  Index incr_y) {
  for (Index i = 0; i < n; ++i) turn(rotation.s, rotation.tau, x[i * incr_x], y[i * incr_y]);
}

// Pairs of neighbours.
[[gnu::noinline]] void turn_columns(const Rotation& rotation, Index n, double* x, double* y) {
  for (Index i = 0; i < n; ++i) turn(rotation.s, rotation.tau, x[i], y[i]);
}

// A sweep pair by pair.  `rotated(p, q, rotation)` hears of each rotation.
struct PlainSweep {
  Index n;
  double* a;
  Index lda;
  double* d;
  double* z;

  double& element(Index i, Index j) const { return a[j * lda + i]; }

  template <class Rotated>
  void run(const SweepRule& rule, const Rotated& rotated) const {
    for (Index p = 0; p < n; ++p) {
      for (Index q = p + 1; q < n; ++q) {
        const double magnitude = std::fabs(element(p, q));
        const double g = kNegligible * magnitude;
        if (rule.zeroes_negligible && is_lost(g, std::fabs(d[p])) && is_lost(g, std::fabs(d[q]))) {
          element(p, q) = 0.0;
        } else if (magnitude > rule.threshold) {
          const Rotation rotation = turn_diagonal(p, q, g);
          turn_triangle(rotation, p, q);
          rotated(p, q, rotation);
        }
      }
    }
  }

  Rotation turn_diagonal(Index p, Index q, double g) const {
    const double t = tangent(element(p, q), g, d[q] - d[p]);
    const double c = 1.0 / std::sqrt(t * t + 1.0);
    const double s = t * c;
    const double h = t * element(p, q);
    z[p] -= h;
    z[q] += h;
    d[p] -= h;
    d[q] += h;
    element(p, q) = 0.0;
    return {s, s / (1.0 + c)};
  }

  //            p       q
  //        [   |       |   ]     the two columns above p,
  //     p  [   d - - - 0 - ]     row p and column q between,
  //        [       d   |   ]     the two rows behind q
  //     q  [           d - ]
  void turn_triangle(const Rotation& rotation, Index p, Index q) const {
    turn_columns(rotation, p, &element(0, p), &element(0, q));
    turn_pairs(rotation, q - p - 1, &element(p, p) + lda, lda, &element(p, q) + 1, 1);
    turn_pairs(rotation, n - q - 1, &element(p, q) + lda, lda, &element(q, q) + lda, lda);
  }
};

// v in blocks, which take the rotations of a sweep when it is over.
class Deferred {
 public:
  static Index scratch_bytes(Index n) {
    const Index n_doubles = n_blocks(n) * block_size(n) + Wavefront::scratch_size(n);
    return kTurnBytes * n_pairs(n) + kIndexBytes * n + kDoubleBytes * n_doubles;
  }

  Deferred(Index n, const double* v, std::byte* scratch)
      : n_(n),
        turns_{reinterpret_cast<Turn*>(scratch),
               reinterpret_cast<Index*>(scratch + kTurnBytes * n_pairs(n))},
        blocks_(reinterpret_cast<double*>(turns_.first + n)),
        wavefront_(n, blocks_ + n_blocks(n) * block_size(n)) {
    for (Index i = 0; i < n_blocks(n) * block_size(n); ++i) blocks_[i] = 0.0;
    for_every_piece([v](Index j_v, Index n_rows, double* piece) {
      for (Index r = 0; r < n_rows; ++r) piece[r] = v[j_v + r];
    });
  }

  void sweep_by_wavefront(const SweepRule& rule, const PlainSweep& plain) {
    wavefront_.sweep(rule, plain.a, plain.lda, plain.d, plain.z, turns_);
    turn_blocks();
  }

  void sweep(const SweepRule& rule, const PlainSweep& plain) {
    Index n_turns = 0;
    Index stage = 0;
    turns_.first[0] = 0;
    plain.run(rule, [&](Index p, Index q, const Rotation& rotation) {
      while (stage < p) turns_.first[++stage] = n_turns;
      turns_.list[n_turns++] = {rotation.s, rotation.tau, q};
    });
    while (stage < n_ - 1) turns_.first[++stage] = n_turns;
    turn_blocks();
  }

  void store_vectors(double* v) const {
    for_every_piece([v](Index j_v, Index n_rows, const double* piece) {
      for (Index r = 0; r < n_rows; ++r) v[j_v + r] = piece[r];
    });
  }

 private:
  static constexpr Index kTurnBytes = sizeof(Turn);
  static constexpr Index kIndexBytes = sizeof(Index);
  static constexpr Index kDoubleBytes = sizeof(double);

  static Index n_pairs(Index n) { return n * (n - 1) / 2; }
  static Index n_blocks(Index n) { return (n + kBlockRows - 1) / kBlockRows; }
  static Index block_size(Index n) { return n * kBlockRows; }

  // `f(place in v, number of rows, piece)` for each column of each block.
  template <class F>
  void for_every_piece(const F& f) const {
    for (Index k = 0; k < n_blocks(n_); ++k) {
      const Index first = k * kBlockRows;
      for (Index j = 0; j < n_; ++j) {
        f(j * n_ + first, smaller(kBlockRows, n_ - first), blocks_ + k * block_size(n_) + j * kBlockRows);
      }
    }
  }

  void turn_blocks() {
    for (Index k = 0; k < n_blocks(n_); ++k) turn_block(n_, turns_, blocks_ + k * block_size(n_));
  }

  Index n_;
  Turns turns_;
  double* blocks_;
  Wavefront wavefront_;
};

class Iteration {
 public:
  Iteration(Index n, double* a, Index lda, double* d, double* v, double* b, double* z)
      : plain_{n, a, lda, d, z}, v_(v), b_(b) {
    for (Index i = 0; i < n; ++i) {
      b_[i] = d[i] = a[i * lda + i];
      z[i] = 0.0;
    }
  }

  bool run(std::byte* scratch) {
    const double n_squared = static_cast<double>(plain_.n * plain_.n);
    std::optional<Deferred> deferred;
    bool converged = false;
    for (int k = 0; k < kMostSweeps; ++k) {
      const double sum = sum_of_magnitudes();
      converged = sum == 0.0;
      if (converged) break;
      const double threshold = k < kThresholdSweeps ? sum * kThresholdPart / n_squared : 0.0;
      sweep({threshold, k > kLastCarefulSweep}, deferred, scratch);
      correct_diagonal();
    }
    if (deferred) deferred->store_vectors(v_);
    return converged;
  }

 private:
  // Deferred from the first sweep on that promises many rotations.
  void sweep(const SweepRule& rule, std::optional<Deferred>& deferred, std::byte* scratch) {
    const bool many = is_deferred(plain_.n) && has_many_rotations(rule);
    if (many && !deferred) {
      deferred.emplace(plain_.n, v_, scratch);
      is_tame_ = is_tame();
    }
    if (!deferred) {
      sweep_plainly(rule);
    } else if (many && is_tame_) {
      deferred->sweep_by_wavefront(rule, plain_);
    } else {
      deferred->sweep(rule, plain_);
    }
  }

  double sum_of_magnitudes() const {
    double sum = 0.0;
    for (Index p = 0; p < plain_.n; ++p) {
      for (Index q = p + 1; q < plain_.n; ++q) sum += std::fabs(plain_.element(p, q));
    }
    return sum;
  }

  // A rotation by zero would change nothing, now or later: rotations of finite numbers that are not too
  // large give finite numbers, and -0.0 only where there has been one.
  bool is_tame() const {
    for (Index q = 0; q < plain_.n; ++q) {
      if (!(std::fabs(plain_.d[q]) <= kLargestElement)) return false;
      for (Index p = 0; p < q; ++p) {
        const double x = plain_.element(p, q);
        if (!(std::fabs(x) <= kLargestElement) || (x == 0.0 && __builtin_signbit(x))) return false;
      }
    }
    return true;
  }

  // As far as the elements and the diagonal at the start of a sweep can tell.
  bool has_many_rotations(const SweepRule& rule) const {
    const Index many = plain_.n * plain_.n / kManyRotations;
    Index n_rotations = 0;
    for (Index q = 1; q < plain_.n && n_rotations < many; ++q) {
      const double* const column = plain_.a + q * plain_.lda;
      for (Index p = 0; p < q; ++p) n_rotations += std::fabs(column[p]) > rule.threshold ? 1 : 0;
      if (!rule.zeroes_negligible) continue;
      for (Index p = 0; p < q; ++p) {
        const double g = kNegligible * std::fabs(column[p]);
        const bool zeroed =
            g > 0.0 && is_lost(g, std::fabs(plain_.d[p])) && is_lost(g, std::fabs(plain_.d[q]));
        n_rotations -= zeroed ? 1 : 0;
      }
    }
    return n_rotations >= many;
  }

  [[gnu::noinline]] void sweep_plainly(const SweepRule& rule) {
    const Index n = plain_.n;
    plain_.run(rule, [this, n](Index p, Index q, const Rotation& rotation) {
      turn_columns(rotation, n, v_ + p * n, v_ + q * n);
    });
  }

  void correct_diagonal() {
    for (Index i = 0; i < plain_.n; ++i) {
      b_[i] += plain_.z[i];
      plain_.d[i] = b_[i];
      plain_.z[i] = 0.0;
    }
  }

  PlainSweep plain_;
  double* v_;
  double* b_;  // the diagonal at the start of the sweep: adding up z keeps its corrections exact for longer
  bool is_tame_ = false;
};

bool jacobi(Index n, double* a, Index lda, double* d, double* v, double* b, double* z, std::byte* scratch) {
  return Iteration(n, a, lda, d, v, b, z).run(scratch);
}

Index scratch_bytes(Index n) { return is_deferred(n) ? Deferred::scratch_bytes(n) : 0; }

}  // namespace

JacobiKernels jacobi_kernels() { return {scratch_bytes, jacobi}; }

}  // namespace tnla_kernels::TNLA_SET
