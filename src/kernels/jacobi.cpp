#include "jacobi.h"

#include <cmath>

#include "simd.h"

namespace tnla_kernels::TNLA_SET {

namespace {

constexpr int kMostSweeps = 50;
constexpr int kThresholdSweeps = 3;     // the first ones, which leave small elements alone
constexpr int kLastCarefulSweep = 3;    // from the next one on, negligible elements are zeroed at once
constexpr double kThresholdPart = 0.2;  // of the mean magnitude
constexpr double kNegligible = 100.0;   // times an element: lost beside the diagonal even so

// Adding g to x does not change x.
bool is_lost(double g, double x) { return x + g == x; }

struct Rotation {
  double s;
  double tau;

  // n pairs (x, y), `incr_x` and `incr_y` apart.
  void apply(Index n, double* x, Index incr_x, double* y, Index incr_y) const {
    for (Index i = 0; i < n; ++i) {
      const double old_x = x[i * incr_x];
      const double old_y = y[i * incr_y];
      x[i * incr_x] = old_x - s * (old_y + old_x * tau);
      y[i * incr_y] = old_y + s * (old_x - old_y * tau);
    }
  }
};

double tangent(double element, double g, double h) {
  if (is_lost(g, std::fabs(h))) return element / h;
  const double theta = 0.5 * h / element;
  const double t = 1.0 / (std::fabs(theta) + std::sqrt(theta * theta + 1.0));
  return theta < 0.0 ? -t : t;
}

class Iteration {
 public:
  Iteration(Index n, double* a, Index lda, double* d, double* v, double* b, double* z)
      : n_(n), a_(a), lda_(lda), d_(d), v_(v), b_(b), z_(z) {
    for (Index i = 0; i < n; ++i) {
      b_[i] = d_[i] = a_[i * lda_ + i];
      z_[i] = 0.0;
    }
  }

  bool run() {
    for (int sweep = 0; sweep < kMostSweeps; ++sweep) {
      const double sum = sum_of_magnitudes();
      if (sum == 0.0) return true;
      const double threshold =
          sweep < kThresholdSweeps ? sum * kThresholdPart / static_cast<double>(n_ * n_) : 0.0;
      run_sweep(threshold, sweep > kLastCarefulSweep);
      correct_diagonal();
    }
    return false;
  }

 private:
  double& element(Index i, Index j) { return a_[j * lda_ + i]; }

  double sum_of_magnitudes() {
    double sum = 0.0;
    for (Index p = 0; p < n_; ++p) {
      for (Index q = p + 1; q < n_; ++q) sum += std::fabs(element(p, q));
    }
    return sum;
  }

  void run_sweep(double threshold, bool zeroes_negligible) {
    for (Index p = 0; p < n_; ++p) {
      for (Index q = p + 1; q < n_; ++q) {
        const double magnitude = std::fabs(element(p, q));
        const double g = kNegligible * magnitude;
        if (zeroes_negligible && is_lost(g, std::fabs(d_[p])) && is_lost(g, std::fabs(d_[q]))) {
          element(p, q) = 0.0;
        } else if (magnitude > threshold) {
          rotate(p, q, g);
        }
      }
    }
  }

  void rotate(Index p, Index q, double g) {
    const double t = tangent(element(p, q), g, d_[q] - d_[p]);
    const double c = 1.0 / std::sqrt(t * t + 1.0);
    const double s = t * c;
    const double h = t * element(p, q);
    z_[p] -= h;
    z_[q] += h;
    d_[p] -= h;
    d_[q] += h;
    element(p, q) = 0.0;
    turn({s, s / (1.0 + c)}, p, q);
  }

  //            p       q
  //        [   |       |   ]     the two columns above p,
  //     p  [   d - - - 0 - ]     row p and column q between,
  //        [       d   |   ]     the two rows behind q
  //     q  [           d - ]
  void turn(const Rotation& rotation, Index p, Index q) {
    rotation.apply(p, &element(0, p), 1, &element(0, q), 1);
    rotation.apply(q - p - 1, &element(p, p) + lda_, lda_, &element(p, q) + 1, 1);
    rotation.apply(n_ - q - 1, &element(p, q) + lda_, lda_, &element(q, q) + lda_, lda_);
    rotation.apply(n_, v_ + p * n_, 1, v_ + q * n_, 1);
  }

  void correct_diagonal() {
    for (Index i = 0; i < n_; ++i) {
      b_[i] += z_[i];
      d_[i] = b_[i];
      z_[i] = 0.0;
    }
  }

  Index n_;
  double* a_;
  Index lda_;
  double* d_;
  double* v_;
  double* b_;  // the diagonal at the start of the sweep: adding up z keeps its corrections exact for longer
  double* z_;  // what the sweep adds to it
};

bool jacobi(Index n, double* a, Index lda, double* d, double* v, double* b, double* z) {
  return Iteration(n, a, lda, d, v, b, z).run();
}

}  // namespace

JacobiKernels jacobi_kernels() { return {jacobi}; }

}  // namespace tnla_kernels::TNLA_SET
