// SPDX-License-Identifier: MIT

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <vector>

#include "reference/decomposition_reference.h"
#include "support/bits.h"
#include "support/decomposition_types.h"
#include "support/kernel_sets.h"
#include "support/values.h"

namespace {

using reference::RankRevealing;
using tnla_kernels::columns_scratch;
using tnla_kernels::Index;
using tnla_kernels::KernelSet;
using tnla_kernels::kTogether;
using tnla_kernels::Reflections;

constexpr double kUntouched = 12345.678;
constexpr std::size_t kMargin = 9;

// n numbers between margins that nobody may write to.
class Guarded {
 public:
  explicit Guarded(std::size_t n, std::size_t start = 0)
      : start_(start), v_(start + n + kMargin, kUntouched) {}
  explicit Guarded(Index n, std::size_t start = 0) : Guarded(static_cast<std::size_t>(n), start) {}

  double* data() { return v_.data() + start_; }
  bool intact() const {
    const auto untouched = [](double x) { return x == kUntouched; };
    return std::all_of(v_.begin(), v_.begin() + static_cast<Index>(start_), untouched) &&
           std::all_of(v_.end() - static_cast<Index>(kMargin), v_.end(), untouched);
  }

 private:
  std::size_t start_;
  std::vector<double> v_;
};

Index together(std::size_t n) { return std::min(static_cast<Index>(n), kTogether); }

// What a kernel set makes of A, with a separate place for the ranges of the right reflections.
struct Decomposed {
  Index m, n, d, k = 0;
  Guarded r, up, scale, right_ranges, right_up, right_scale;
  std::vector<int> perm;
  Reflections left, right;

  Decomposed(const KernelSet& set, const Matrix& A, double tol, std::size_t start)
      : m(static_cast<Index>(A.m)),
        n(static_cast<Index>(A.n)),
        d(std::min(m, n)),
        r(m * n),
        up(d),
        scale(d),
        right_ranges(d * n),
        right_up(d),
        right_scale(d),
        perm(static_cast<std::size_t>(d) + 1, -7),
        left{r.data() + 1, m + 1, up.data(), scale.data()},
        right{right_ranges.data(), 0, right_up.data(), right_scale.data()} {
    Guarded scratch(columns_scratch(m, n), start);
    set.rank_revealing.triangularize(m, n, A.a.data(), r.data(), left, perm.data(), scratch.data());
    EXPECT_TRUE(scratch.intact());
    while (k < d && !(tol > std::fabs(r.data()[k * m + k]))) ++k;
    right.ld = n - k;
    if (k == n) return;
    Guarded rows(columns_scratch(n - k, k), start);
    set.rank_revealing.compress(k, m, n, r.data(), right, rows.data());
    EXPECT_TRUE(rows.intact());
  }

  bool intact() const {
    return r.intact() && up.intact() && scale.intact() && right_ranges.intact() && right_up.intact() &&
           right_scale.intact() && perm.back() == -7;
  }
};

// Reflection i of `actual` is `expected`, whose range has n entries.
void expect_same_reflection(const Reflections& actual, std::size_t i,
                            const reference::Reflection& expected) {
  SCOPED_TRACE(testing::Message() << "reflection " << i);
  const auto zero = static_cast<std::size_t>(expected.j_zero);
  EXPECT_SAME(actual.up[i], expected.u[static_cast<std::size_t>(expected.j_pivot)]);
  EXPECT_SAME(actual.scale[i], expected.scale);
  EXPECT_SAME_ARRAY(expected.u.size() - zero, actual.u + static_cast<Index>(i) * actual.ld,
                    expected.u.data() + zero);
}

void expect_same_triangle(Decomposed& actual, const RankRevealing& expected) {
  const Matrix& A = expected.A;
  for (std::size_t j = 0; j < A.n; ++j) {
    for (std::size_t i = 0; i < std::min(j + 1, A.m); ++i) {
      if (i < expected.rank && j >= expected.rank) continue;  // unspecified once K is applied
      EXPECT_SAME(actual.r.data()[j * A.m + i], A(i, j)) << "r(" << i << ", " << j << ")";
    }
  }
}

void expect_decomposes(const KernelSet& set, const Matrix& A, double tol, const Matrix& B,
                       std::size_t start) {
  SCOPED_TRACE(testing::Message() << A.m << " x " << A.n << ", tol " << tol << ", " << B.n << " columns");
  const RankRevealing expected(A, tol);
  Decomposed actual(set, A, tol, start);
  EXPECT_TRUE(actual.intact());
  ASSERT_EQ(actual.k, static_cast<Index>(expected.rank));
  for (std::size_t j = 0; j < expected.perm.size(); ++j) {
    EXPECT_EQ(actual.perm[j], static_cast<int>(expected.perm[j])) << j;
  }
  expect_same_triangle(actual, expected);
  for (std::size_t i = 0; i < expected.left.size(); ++i) {
    expect_same_reflection(actual.left, i, expected.left[i]);
  }
  for (std::size_t i = 0; i < expected.right.size(); ++i) {
    expect_same_reflection(actual.right, i, expected.right[expected.rank - 1 - i]);
  }

  Matrix W = B;
  for (const reference::Reflection& h : expected.left) apply_to_columns(h, W, 0, W.n);
  W = resized(W, expected.rank, W.n);
  const Index p = static_cast<Index>(B.n);
  const Index ldx = actual.n + 2;
  Guarded x(ldx * p);
  Guarded scratch(columns_scratch(actual.m, together(B.n)), start);
  set.rank_revealing.apply_left(actual.k, actual.m, p, actual.left, B.a.data(), x.data(), ldx,
                                scratch.data());
  EXPECT_TRUE(scratch.intact());
  for (Index c = 0; c < p; ++c) {
    EXPECT_SAME_ARRAY(W.m, x.data() + c * ldx, W.column(static_cast<std::size_t>(c)));
    for (Index i = actual.k; i < ldx; ++i) EXPECT_EQ(x.data()[c * ldx + i], kUntouched);
  }
}

void expect_turns(const KernelSet& set, const Matrix& A, double tol, const Matrix& X, std::size_t start) {
  SCOPED_TRACE(testing::Message() << A.m << " x " << A.n << ", tol " << tol << ", turning " << X.n);
  const RankRevealing expected(A, tol);
  if (expected.rank == A.n) return;
  Decomposed actual(set, A, tol, start);
  ASSERT_EQ(actual.k, static_cast<Index>(expected.rank));
  Matrix turned = X;
  for (std::size_t i = expected.right.size(); i-- > 0;) apply_to_columns(expected.right[i], turned, 0, X.n);
  Guarded x(X.a.size());
  std::copy(X.a.begin(), X.a.end(), x.data());
  Guarded scratch(columns_scratch(actual.n, together(X.n)), start);
  set.rank_revealing.turn(actual.k, actual.n, static_cast<Index>(X.n), actual.right, x.data(),
                          scratch.data());
  EXPECT_TRUE(scratch.intact());
  EXPECT_TRUE(x.intact());
  EXPECT_SAME_ARRAY(turned.a.size(), x.data(), turned.a.data());
}

void expect_follows_twin(Random& random, const Matrix& A, double tol) {
  const std::size_t p = 1 + random.below(40);  // from one vector to past two groups of four
  const Matrix B = any_matrix(random, A.m, p);
  const Matrix X = any_matrix(random, A.n, p);
  const std::size_t start = random.below(8);
  for_every_kernel_set([&](const KernelSet& set) {
    expect_decomposes(set, A, tol, B, start);
    expect_turns(set, A, tol, X, start);
  });
}

// Around every vector width and group of vectors, and past two groups.
const std::vector<std::size_t> kSizes = {1,  2,  3,  4,  5,  7,  8,  9,  12, 15,
                                         16, 17, 23, 25, 28, 29, 33, 49, 57};

template <class Check>
void for_all_shapes(const Check& check) {
  for (const std::size_t m : kSizes) {
    for (const std::size_t n : kSizes) check(m, n);
  }
}

TEST(RankRevealingKernels, FollowTheirTwinForAllShapes) {
  Random random(1);
  for_all_shapes([&random](std::size_t m, std::size_t n) {
    expect_follows_twin(random, random_matrix(random, m, n), 1e-13);
  });
}

TEST(RankRevealingKernels, FollowTheirTwinForSpecialValues) {
  Random random(2);
  for_all_shapes([&random](std::size_t m, std::size_t n) {
    expect_follows_twin(random, any_matrix(random, m, n), 1e-3);
    Matrix A = random_matrix(random, m, n);  // one value that spreads, from anywhere
    A.a[random.below(A.a.size())] = special_values()[random.below(special_values().size())];
    expect_follows_twin(random, A, 0.1);
  });
}

TEST(RankRevealingKernels, FollowTheirTwinForLowRanks) {
  Random random(3);
  for_all_shapes([&random](std::size_t m, std::size_t n) {
    const std::size_t rank = random.below(std::min(m, n) + 1);
    expect_follows_twin(random, random_of_rank(random, m, n, rank), 1e-10);
  });
}

TEST(RankRevealingKernels, FollowTheirTwinForLargeMatrices) {
  Random random(4);
  expect_follows_twin(random, random_matrix(random, 150, 131), 1e-13);
  expect_follows_twin(random, random_of_rank(random, 128, 128, 96), 1e-10);
  expect_follows_twin(random, random_of_rank(random, 70, 160, 70), 1e-10);
  expect_follows_twin(random, random_matrix(random, 700, 9), 1e-13);
  expect_follows_twin(random, random_matrix(random, 9, 700), 1e-13);
}

// Small integers: sums that are 0, equal lengths, and lengths that cancel.
TEST(RankRevealingKernels, FollowTheirTwinWhereSumsVanish) {
  Random random(5);
  for_all_shapes([&random](std::size_t m, std::size_t n) {
    Matrix A(m, n);
    for (double& x : A.a) x = random.below(3) == 0 ? 1.0 : -0.0;
    expect_follows_twin(random, A, 1e-10);
    for (double& x : A.a) x = static_cast<double>(random.below(3)) - 1.0;
    expect_follows_twin(random, A, 1e-10);
    expect_follows_twin(random, random_of_rank(random, m, n, 1), 1e-10);
  });
}

// Columns of zeros, of equal numbers, and of numbers that no reflection is made of.
TEST(RankRevealingKernels, FollowTheirTwinForDegenerateColumns) {
  Random random(6);
  for_all_shapes([&random](std::size_t m, std::size_t n) {
    Matrix A = random_matrix(random, m, n);
    for (std::size_t j = 0; j < n; ++j) {
      const std::size_t kind = random.below(4);
      if (kind == 0) std::fill_n(A.column(j), m, random.below(2) == 0 ? 0.0 : -0.0);
      if (kind == 1) std::copy_n(A.column(0), m, A.column(j));
      if (kind == 2)
        std::transform(A.column(j), A.column(j) + m, A.column(j), [](double x) { return x * 1e-21; });
    }
    expect_follows_twin(random, A, 1e-25);
    expect_follows_twin(random, A, kNaN);
    expect_follows_twin(random, scaled(A, 1e-20), 1e-300);
  });
}

// The two shortest columns are orthogonal to the others, and left for the end: the last but one is at the
// bounds of what makes a reflection.
TEST(RankRevealingKernels, FollowTheirTwinAtTheThresholdsOfAReflection) {
  Random random(10);
  for (const std::size_t n : {2u, 6u, 19u}) {
    for (const auto& entries : reference::columns_at_the_thresholds()) {
      Matrix A(n + 1, n);
      for (std::size_t j = 0; j + 2 < n; ++j) A(j, j) = 1.0;
      std::copy(entries.begin(), entries.end(), A.column(n - 2) + n - 2);
      std::fill_n(A.column(n - 1) + n - 2, 3, entries[1] * 0.1);
      expect_follows_twin(random, A, 1e-30);
    }
  }
}

// Lengths that fall steeply are computed anew at nearly every step.
TEST(RankRevealingKernels, FollowTheirTwinWhereLengthsAreRecomputed) {
  Random random(7);
  int n_recomputed = 0;
  int n_trusted = 0;
  for_all_shapes([&](std::size_t m, std::size_t n) {
    for (const double ratio : {0.1, 1e-8}) {
      Matrix A = random_matrix(random, m, n);
      for (std::size_t j = 0; j < n; ++j) {
        const double size = std::pow(ratio, static_cast<double>((j * 7) % n));
        for (std::size_t i = 0; i < m; ++i) A(i, j) *= size;
      }
      n_recomputed += RankRevealing(A, 1e-30).n_recomputed;
      n_trusted += RankRevealing(A, 1e-30).n_trusted;
      expect_follows_twin(random, A, 1e-30);
    }
  });
  EXPECT_GT(n_recomputed, 1000);
  EXPECT_GT(n_trusted, 1000);
}

// Downdated, the columns 1 and 2 have lengths of k units in the last place of 1/2, beside a reference of 1:
// a thousandth of 1000 of them is lost, of 1001 is not.  Computed anew, column 2 is the longer one.
TEST(RankRevealingKernels, FollowTheirTwinWhereAThousandthIsJustLost) {
  Random random(11);
  for (const double k : {999.0, 1000.0, 1001.0}) {
    Matrix A(3, 3);
    A(0, 0) = 1.0;
    A(0, 1) = A(0, 2) = 0.75;
    A(1, 1) = std::sqrt(k * 0x1p-53);
    A(1, 2) = std::sqrt((k + 0.4) * 0x1p-53);
    EXPECT_EQ(RankRevealing(A, 1e-30).perm[1], k > 1000.0 ? 1u : 2u);
    expect_follows_twin(random, A, 1e-30);
  }
}

// Column `alone` is orthogonal to all others, whose reflections leave it alone in the midst of its vector:
// its entries of -0.0 stay, where adding 0 * u would make +0.0 of them.
TEST(RankRevealingKernels, ASumOfZeroInOneLaneLeavesItsColumnAlone) {
  Random random(8);
  for (std::size_t n = 2; n <= 30; ++n) {
    for (std::size_t alone = 0; alone < n; ++alone) {
      Matrix A = random_matrix(random, n + 3, n);
      const std::size_t row = n + 2;
      for (std::size_t j = 0; j < n; ++j) A(row, j) = 0.0;
      std::fill_n(A.column(alone), A.m, -0.0);
      A(row, alone) = 1e-9;  // taken last
      const RankRevealing expected(A, 1e-13);
      for (std::size_t i = 0; i + 1 < n; ++i) ASSERT_TRUE(std::signbit(expected.A(i, n - 1)));
      expect_follows_twin(random, A, 1e-13);
    }
  }
}

// The place of the right reflections in r is that of the columns that are turned.
TEST(RankRevealingKernels, TheRangesOfTheRightReflectionsFitWhereTheyComeFrom) {
  Random random(9);
  for_all_shapes([&random](std::size_t m, std::size_t n) {
    const std::size_t rank = 1 + random.below(std::min(m, n));
    if (rank == n) return;
    const Matrix A = random_of_rank(random, m, n, rank);
    for_every_kernel_set([&](const KernelSet& set) {
      Decomposed apart(set, A, 1e-10, 0);
      Decomposed inside(set, A, kInf, 0);  // of rank 0
      ASSERT_EQ(apart.k, static_cast<Index>(rank));
      ASSERT_EQ(inside.k, 0);
      inside.right = {inside.r.data() + apart.k * apart.m, apart.n - apart.k, inside.right_up.data(),
                      inside.right_scale.data()};
      Guarded rows(columns_scratch(apart.n - apart.k, apart.k));
      set.rank_revealing.compress(apart.k, apart.m, apart.n, inside.r.data(), inside.right, rows.data());
      EXPECT_TRUE(inside.intact());
      EXPECT_SAME_ARRAY(apart.k * (apart.n - apart.k), inside.right.u, apart.right.u);
      EXPECT_SAME_ARRAY(apart.k, inside.right.up, apart.right.up);
      EXPECT_SAME_ARRAY(apart.k * apart.m, inside.r.data(), apart.r.data());
    });
  });
}

}  // namespace
