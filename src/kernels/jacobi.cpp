#include "jacobi.h"

#include <cmath>

#include "jacobi_turns.h"
#include "jacobi_wavefront.h"
#include "simd.h"

namespace tnla_kernels::TNLA_SET {

namespace {

constexpr int kMostSweeps = 50;
constexpr int kThresholdSweeps = 3;     // the first ones, which leave small elements alone
constexpr int kLastCarefulSweep = 3;    // from the next one on, negligible elements are zeroed at once
constexpr double kThresholdPart = 0.2;  // of the mean magnitude

// Below it, turning a and v pair by pair takes less than writing the rotations down.
constexpr Index kSmallestDeferred = 16;

// The magnitude up to which nothing overflows in a rotation.
constexpr double kLargestElement = 1e150;

bool is_deferred(Index n) { return n >= kSmallestDeferred; }

// Pairs (x, y), `incr_x` and `incr_y` apart.
void turn_pairs(const Rotation& rotation, Index n, double* x, Index incr_x, double* y, Index incr_y) {
  for (Index i = 0; i < n; ++i) turn(rotation.s, rotation.tau, x[i * incr_x], y[i * incr_y]);
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
    turn_pairs(rotation, p, &element(0, p), 1, &element(0, q), 1);
    turn_pairs(rotation, q - p - 1, &element(p, p) + lda, lda, &element(p, q) + 1, 1);
    turn_pairs(rotation, n - q - 1, &element(p, q) + lda, lda, &element(q, q) + lda, lda);
  }
};

// What the iteration needs beside its results, in one block.
class Deferred {
 public:
  static Index scratch_bytes(Index n) {
    const Index n_turns = n * (n - 1) / 2;
    return static_cast<Index>(sizeof(Turn)) * n_turns + static_cast<Index>(sizeof(Index)) * n +
           static_cast<Index>(sizeof(double)) * (n_blocks(n) * n * kBlockRows + Wavefront::scratch_size(n));
  }

  Deferred(Index n, std::byte* scratch)
      : n_(n),
        turns_{reinterpret_cast<Turn*>(scratch), reinterpret_cast<Index*>(scratch + sizeof(Turn) * static_cast<std::size_t>(n * (n - 1) / 2))},
        blocks_(reinterpret_cast<double*>(turns_.first + n)),
        wavefront_(n, blocks_ + n_blocks(n) * n * kBlockRows) {
    for (Index i = 0; i < n_blocks(n) * n * kBlockRows; ++i) blocks_[i] = 0.0;
    for (Index i = 0; i < n; ++i) at(i, i) = 1.0;
  }

  void sweep(const SweepRule& rule, const PlainSweep& plain, bool by_wavefront) {
    if (by_wavefront) {
      wavefront_.sweep(rule, plain.a, plain.lda, plain.d, plain.z, turns_);
    } else {
      Index n_turns = 0;
      Index stage = 0;
      turns_.first[0] = 0;
      plain.run(rule, [&](Index p, Index q, const Rotation& rotation) {
        while (stage < p) turns_.first[++stage] = n_turns;
        turns_.list[n_turns++] = {rotation.s, rotation.tau, q};
      });
      while (stage < n_ - 1) turns_.first[++stage] = n_turns;
    }
    for (Index k = 0; k < n_blocks(n_); ++k) turn_block(n_, turns_, blocks_ + k * n_ * kBlockRows);
  }

  void store_vectors(double* v) {
    for (Index j = 0; j < n_; ++j) {
      for (Index i = 0; i < n_; ++i) v[j * n_ + i] = at(i, j);
    }
  }

 private:
  static Index n_blocks(Index n) { return (n + kBlockRows - 1) / kBlockRows; }
  double& at(Index i, Index j) {
    return blocks_[(i / kBlockRows * n_ + j) * kBlockRows + i % kBlockRows];
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

  // `sweep(rule)` runs one.
  template <class Sweep>
  bool run(const Sweep& sweep) {
    const double n_squared = static_cast<double>(plain_.n * plain_.n);
    for (int k = 0; k < kMostSweeps; ++k) {
      const double sum = sum_of_magnitudes();
      if (sum == 0.0) return true;
      const double threshold = k < kThresholdSweeps ? sum * kThresholdPart / n_squared : 0.0;
      sweep(SweepRule{threshold, k > kLastCarefulSweep});
      correct_diagonal();
    }
    return false;
  }

  bool run_plain() {
    const Index n = plain_.n;
    return run([this, n](const SweepRule& rule) {
      plain_.run(rule, [this, n](Index p, Index q, const Rotation& rotation) {
        turn_pairs(rotation, n, v_ + p * n, 1, v_ + q * n, 1);
      });
    });
  }

  bool run_deferred(std::byte* scratch) {
    Deferred deferred(plain_.n, scratch);
    const bool tame = is_tame();
    const bool converged = run([&](const SweepRule& rule) {
      deferred.sweep(rule, plain_, tame && has_many_rotations(rule));
    });
    deferred.store_vectors(v_);
    return converged;
  }

 private:
  double sum_of_magnitudes() const {
    double sum = 0.0;
    for (Index p = 0; p < plain_.n; ++p) {
      for (Index q = p + 1; q < plain_.n; ++q) sum += std::fabs(plain_.element(p, q));
    }
    return sum;
  }

  // Nothing that a rotation by zero would change, now or later: rotations of finite numbers that are not
  // too large give finite numbers, and -0.0 only where there has been one.
  bool is_tame() const {
    for (Index q = 0; q < plain_.n; ++q) {
      for (Index p = 0; p <= q; ++p) {
        const double x = plain_.element(p, q);
        if (!(std::fabs(x) <= kLargestElement)) return false;
        if (p < q && x == 0.0 && std::signbit(x)) return false;
      }
    }
    return true;
  }

  // As far as the elements and the diagonal at the start of a sweep can tell.
  bool has_many_rotations(const SweepRule& rule) const {
    (void)rule;
    return true;
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
};

bool jacobi(Index n, double* a, Index lda, double* d, double* v, double* b, double* z, std::byte* scratch) {
  Iteration iteration(n, a, lda, d, v, b, z);
  return is_deferred(n) ? iteration.run_deferred(scratch) : iteration.run_plain();
}

Index scratch_bytes(Index n) { return is_deferred(n) ? Deferred::scratch_bytes(n) : 0; }

}  // namespace

JacobiKernels jacobi_kernels() { return {scratch_bytes, jacobi}; }

}  // namespace tnla_kernels::TNLA_SET
