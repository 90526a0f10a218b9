// SPDX-License-Identifier: MIT

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

#include "reference/least_squares_reference.h"
#include "support/band_problem.h"
#include "support/decomposition_types.h"
#include "support/values.h"
#include "tnlablkbndsolver_i.h"

// The block band solver's solutions are the least-squares solutions of all equations together, written out
// in full as one dense system.

namespace {

using reference::at;
using reference::LeastSquares;
using reference::WideMatrix;

// --- The equations in full ---------------------------------------------------------------------------

struct FullSystem {
  Matrix A;
  Matrix B;
};

FullSystem written_out(const BandProblem& p) {
  int n_rows = p.n_exceptional();
  for (const BandBlock& block : p.blocks) n_rows += static_cast<int>(block.rows.m);
  FullSystem full{reference::zeros(n_rows, p.n), reference::zeros(n_rows, p.n_rhs)};
  int row = 0;
  for (const BandBlock& block : p.blocks) {
    for (int i = 0; i < static_cast<int>(block.rows.m); ++i, ++row) {
      for (int c = 0; c < p.bandwidth; ++c) at(full.A, row, block.first_unknown + c) = at(block.rows, i, c);
      for (int k = 0; k < p.n_rhs; ++k) at(full.B, row, k) = at(block.rows, i, p.bandwidth + k);
    }
  }
  for (int e = 0; e < p.n_exceptional(); ++e, ++row) {
    for (int c = 0; c < p.bandwidth; ++c) {
      at(full.A, row, c) += at(p.first, e, c);
      at(full.A, row, p.n - p.bandwidth + c) += at(p.last, e, c);
    }
    for (int k = 0; k < p.n_rhs; ++k) at(full.B, row, k) = at(p.rhs, e, k);
  }
  return full;
}

// --- The tolerance -----------------------------------------------------------------------------------

// The part of the norms of A and b by which the system differs at the most that the computed x solves
// exactly, to first order in the unit roundoff u = 2^-53.
//
// One reflection of vectors of L entries: the scaled squares are summed with L + 4 roundings, which makes
// L/2 + 4 for s, L/2 + 5 for up = pivot - s (no cancellation) and L + 11 for the scale 1 / (s up).  Applied
// to w, the product u'w has L more, and f u, not longer than 2 |w|, has 3 L + 23 in all; with the last
// addition the result is off by (6 L + 47) u |w|.  Reflections one after the other add up (Higham, Accuracy
// and Stability of Numerical Algorithms, lemma 19.3 and theorem 20.3).
//
// Every block takes at most NB reflections, the exceptional equations N in all on either path; none is
// longer than the work matrix is high.  A row of the triangle has at most N + 2 NB terms in the
// substitution, with as many roundings (theorem 8.5).
//
// The data keep clear of lengths below 1e-10, to which no reflection is applied.
long double backward_error(const BandProblem& p) {
  const long double u = 0x1p-53L;
  const int n_reflections = static_cast<int>(p.blocks.size()) * p.bandwidth + p.n;
  const int length = p.n + p.most;
  return (static_cast<long double>(n_reflections) * (6 * length + 47) + p.n + 2 * p.bandwidth + 2) * u;
}

// How far the solution of a system moves, if A and b change by the part `eps` of their norms (Wedin;
// Higham, theorem 20.1).  Frobenius norms, which are not smaller than the spectral ones, and
// 1 / |A| <= |A+| simplify it:
//
//     |x - y|  <=  2 h / (1 - h) (|x| + |A+| |r|),    h = eps |A| |A+|,    r = b - A x
long double forward_bound(const LeastSquares& judge, long double eps, long double x, std::size_t k) {
  const long double inverse = judge.norm_of_pseudo_inverse();
  const long double h = eps * judge.norm() * inverse;
  EXPECT_LT(h, 0.1L);
  return 2 * h / (1 - h) * (x + inverse * judge.residual(k));
}

// Returns the largest distance from the solution that is allowed.
double expect_least_squares(const BandProblem& p) {
  SCOPED_TRACE(testing::Message() << p);
  const BandAnswer answer = answer_of(p);
  EXPECT_TRUE(answer.solved);
  EXPECT_EQ(answer.x.m, static_cast<std::size_t>(p.n));
  EXPECT_EQ(answer.x.n, static_cast<std::size_t>(p.n_rhs));
  if (testing::Test::HasFailure()) return 0.0;
  const FullSystem full = written_out(p);
  const LeastSquares judge(full.A, full.B);
  const WideMatrix x = judge.solution();
  WideMatrix difference(answer.x);
  for (std::size_t i = 0; i < x.a.size(); ++i) difference.a[i] -= x.a[i];
  long double largest = 0.0L;
  for (std::size_t k = 0; k < x.n; ++k) {
    const long double length = x.length(k, 0, x.m);
    const long double tolerance =
        forward_bound(judge, backward_error(p) + judge.backward_error(), length, k);
    EXPECT_LT(tolerance, 1e-6L * length);  // or it would say little
    EXPECT_LE(difference.length(k, 0, x.m), tolerance) << "right-hand side " << k;
    largest = std::max(largest, tolerance);
  }
  return static_cast<double>(largest);
}

// --- Random equations --------------------------------------------------------------------------------

// Every unknown has an equation of its own besides the random ones, which bounds the condition.
BandProblem well_determined(Random& random, BandShape shape, int count) {
  BandProblem p = random_band_problem(random, shape, BandValues::uniform, count);
  for (int first = 0; first < shape.n; ++first) {
    const int begin = std::min(first, shape.n - shape.bandwidth);
    BandBlock own{begin, band_matrix(random, 1, shape.bandwidth + shape.n_rhs, BandValues::uniform)};
    at(own.rows, 0, first - begin) += random.below(2) == 0 ? 3.0 : -3.0;
    p.blocks.push_back(std::move(own));
  }
  std::stable_sort(p.blocks.begin(), p.blocks.end(), [](const BandBlock& a, const BandBlock& b) {
    return a.first_unknown < b.first_unknown;
  });
  return p;
}

TEST(BlockBandSolution, IsThatOfAllEquationsTogether) {
  for (int bandwidth = 1; bandwidth <= 5; ++bandwidth) {
    for (const int n : {bandwidth, bandwidth + 1, 2 * bandwidth, 3 * bandwidth - 1, 3 * bandwidth,
                        3 * bandwidth + 1, 3 * bandwidth + 9}) {
      for (const int n_rhs : {1, 3}) {
        for (const int count : {0, 1, 2, 3, 7}) {
          Random random(static_cast<std::uint64_t>(1000 * n + 100 * bandwidth + 10 * n_rhs + count));
          expect_least_squares(well_determined(random, {n, bandwidth, n_rhs}, count));
        }
      }
    }
  }
}

TEST(BlockBandSolution, OfALongSystem) {
  Random random(1);
  for (const int count : {0, 1, 4}) expect_least_squares(well_determined(random, {60, 3, 2}, count));
}

// Where the ranges of `first` and `last` overlap, their coefficients add.
TEST(BlockBandSolution, AddsTheCoefficientsOfOneUnknown) {
  BandProblem p = diagonal_problem(2, 1, {1, 1, 1});
  p.exceptional = true;
  p.first = Matrix(1, 2, {0, 5});  // of x0 and x1
  p.last = Matrix(1, 2, {-3, 0});  // of x1 and x2
  p.rhs = Matrix(1, 1, {7});
  // x0 = x2 = 1, and x1 by 1 = x1 and 7 = 2 x1
  const double tolerance = expect_least_squares(p);
  EXPECT_LE(largest_difference(answer_of(p).x, Matrix(3, 1, {1, 3, 1})), tolerance);
}

// --- Closed chains -----------------------------------------------------------------------------------

// N = 5 is solved by the dense solve, N = 6 by elimination.
constexpr int kChains[] = {2, 3, 4, 5, 6, 7, 8, 20, 41};

TEST(BlockBandSolution, OfAClosedChain) {
  for (const int n : kChains) {
    Random random(static_cast<std::uint64_t>(n));
    expect_least_squares(closed_chain(n, 1.0, 1.0, random));
    expect_least_squares(closed_chain(n, 1.0, -0.5, random));
    expect_least_squares(closed_chain(n, 1.0, 0.0, random));
    expect_least_squares(closed_chain(n, 0.0, 1.0, random));
  }
}

// All neighbours differ by 1, and the ends add up to n - 1.
TEST(BlockBandSolution, OfAClosedChainIsTheNumbersFromZeroOn) {
  for (const int n : kChains) {
    Random random(1);
    BandProblem p = closed_chain(n, 1.0, 1.0, random);
    for (BandBlock& block : p.blocks) block.rows(0, 2) = 1.0;
    p.rhs(0, 0) = n - 1;
    const double tolerance = expect_least_squares(p);
    const BandAnswer answer = answer_of(p);
    for (int i = 0; i < n; ++i) EXPECT_NEAR(at(answer.x, i, 0), i, tolerance) << n;
  }
}

// It says nothing about where the chain is.
TEST(BlockBandSolution, AChainClosedByADifferenceHasNone) {
  for (const int n : kChains) {
    Random random(1);
    EXPECT_FALSE(answer_of(closed_chain(n, -1.0, 1.0, random)).solved) << n;
    EXPECT_FALSE(answer_of(open_chain(n, random)).solved) << n;
  }
}

// Two chains, one from the first unknown on and one up to the last: each exceptional equation places one of
// them.  An equation 0 = 0 takes the row of the missing link.
TEST(BlockBandSolution, OfAChainThatIsBrokenInTheMiddle) {
  for (const int n : kChains) {
    for (int at_link = 0; at_link + 1 < n; ++at_link) {
      Random random(static_cast<std::uint64_t>(n));
      BandProblem p = open_chain(n, random);
      p.most = 2;
      p.blocks[static_cast<std::size_t>(at_link)].rows = Matrix(1, 3);
      fill_exceptional(random, 2, BandValues::uniform, p);
      p.first = Matrix(2, 2, {2.0, 0.5, 0.0, 0.0});
      p.last = Matrix(2, 2, {0.0, 0.0, 0.5, -2.0});
      expect_least_squares(p);
    }
  }
}

// The first unknown appears in an exceptional equation only.
TEST(BlockBandSolution, OfAnUnknownThatOnlyAnExceptionalEquationHas) {
  for (const int n : {5, 6, 7, 20}) {
    BandProblem p = diagonal_problem(2, 1, std::vector<double>(static_cast<std::size_t>(n), 1.0));
    p.blocks[0] = equation(0, {0.0, 1.0, 4.0});
    p.exceptional = true;
    p.first = Matrix(1, 2, {2.0, 1.0});
    p.last = Matrix(1, 2, {0.5, 1.0});
    p.rhs = Matrix(1, 1, {3.0});
    expect_least_squares(p);
  }
}

// --- Closed cubic splines ----------------------------------------------------------------------------

// The four uniform cubic B-splines that are not zero on a span, at t in [0, 1].
std::vector<double> cubic_b_splines(double t) {
  const double s = 1.0 - t;
  return {s * s * s / 6, (3 * t * t * t - 6 * t * t + 4) / 6, (3 * s * s * s - 6 * s * s + 4) / 6,
          t * t * t / 6};
}

constexpr int kOrder = 4;

// An empty row for each point of the closed spline below.
BandProblem empty_closed_spline(int n, int points_per_span) {
  BandProblem p = band_problem({n, kOrder, 2}, 3 * points_per_span);
  for (int span = 0; span + kOrder <= n; ++span) {
    p.blocks.push_back({span, reference::zeros(points_per_span, kOrder + p.n_rhs)});
  }
  p.exceptional = true;
  p.first = p.last = reference::zeros(p.most, kOrder);
  p.rhs = reference::zeros(p.most, p.n_rhs);
  return p;
}

// Point i of a span whose control points are in one block.
void set_point(BandBlock& block, int i, const std::vector<double>& weights, const double* point) {
  for (int c = 0; c < kOrder; ++c) at(block.rows, i, c) = weights[static_cast<std::size_t>(c)];
  for (int k = 0; k < 2; ++k) at(block.rows, i, kOrder + k) = point[k];
}

// A point of a span whose control points begin at n - kOrder + 1 or later and go on at 0.
void set_closing_point(BandProblem& p, int e, int span, const std::vector<double>& weights,
                       const double* point) {
  const int begin_of_last = p.n - kOrder;
  for (int c = 0; c < kOrder; ++c) {
    const bool is_last = span + c < p.n;
    double& weight = is_last ? at(p.last, e, span + c - begin_of_last) : at(p.first, e, span + c - p.n);
    weight = weights[static_cast<std::size_t>(c)];
  }
  for (int k = 0; k < 2; ++k) at(p.rhs, e, k) = point[k];
}

// A closed curve with n control points through the neighbourhood of points around a circle: span i is
// determined by the control points i ... i+3, counted around.
BandProblem closed_spline(int n, int points_per_span, Random& random) {
  BandProblem p = empty_closed_spline(n, points_per_span);
  for (int span = 0; span < n; ++span) {
    for (int i = 0; i < points_per_span; ++i) {
      // Not in the middle of a span, where an even number of control points can alternate unseen.
      const double t = (i + 0.25) / points_per_span;
      const double angle = 6.28 * (span + t) / n;
      const double point[] = {std::cos(angle) + 0.1 * random.uniform(),
                              std::sin(angle) + 0.1 * random.uniform()};
      if (span + kOrder <= n) {
        set_point(p.blocks[static_cast<std::size_t>(span)], i, cubic_b_splines(t), point);
      } else {
        set_closing_point(p, (span + kOrder - n - 1) * points_per_span + i, span, cubic_b_splines(t),
                          point);
      }
    }
  }
  return p;
}

// N = 11 is solved by the dense solve, N = 12 by elimination.
TEST(BlockBandSolution, OfAClosedCubicSpline) {
  for (const int n : {8, 9, 11, 12, 13, 16, 30}) {
    for (const int points_per_span : {1, 2, 5}) {
      Random random(static_cast<std::uint64_t>(n));
      expect_least_squares(closed_spline(n, points_per_span, random));
    }
  }
}

}  // namespace
