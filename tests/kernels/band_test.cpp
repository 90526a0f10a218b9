// SPDX-License-Identifier: MIT

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <optional>
#include <ostream>
#include <vector>

#include "reference/decomposition_reference.h"
#include "reference/reflection_reference.h"
#include "support/bits.h"
#include "support/kernel_sets.h"
#include "support/values.h"

namespace {

using reference::Matrix;
using tnla_kernels::BandKernels;
using tnla_kernels::Index;
using Values = std::vector<double>;

constexpr double kMark = 77.25;  // where nothing is to be written

std::size_t size(Index n) { return static_cast<std::size_t>(n); }
double& at(Matrix& A, Index i, Index j) { return A(size(i), size(j)); }
int to_int(Index n) { return static_cast<int>(n); }

Matrix random_matrix(Random& random, Index m, Index n) {
  return {size(m), size(n), random.vector(size(m * n))};
}

template <class F>
void for_every_band_kernels(const F& f) {
  for_every_kernel_set([&f](const tnla_kernels::KernelSet& set) { f(set.band); });
}

// --- Copies ---------------------------------------------------------------------------------------------

struct Shape {
  Index n_rows;
  Index bandwidth;
  Index n_rhs;
};

std::ostream& operator<<(std::ostream& out, const Shape& s) {
  return out << s.n_rows << " rows, NB " << s.bandwidth << ", R " << s.n_rhs;
}

template <class F>
void for_all_copies(const F& f) {
  for (Index n_rows = 0; n_rows <= 11; ++n_rows) {
    for (const Index bandwidth : {0, 1, 2, 3, 4, 5, 7, 8, 9}) {
      for (Index n_rhs = 0; n_rhs <= 5; ++n_rhs) f(Shape{n_rows, bandwidth, n_rhs});
    }
  }
}

TEST(BandKernels, GatherMovesTheCoefficientsAndFillsUpWithZeros) {
  Random random(1);
  for_every_band_kernels([&random](const BandKernels& kernels) {
    for_all_copies([&](const Shape& s) {
      for (Index shift = 0; shift <= s.bandwidth; ++shift) {
        SCOPED_TRACE(testing::Message() << s << ", shift " << shift);
        const Index n_cols = s.bandwidth + s.n_rhs;
        const Index stride = tnla_kernels::padded_band(n_cols);
        Matrix from{size(s.n_rows), size(n_cols), random.any_vector(size(s.n_rows * n_cols))};
        Values rows(size(s.n_rows * stride + 5), kMark);
        Values expected = rows;
        for (Index i = 0; i < s.n_rows; ++i) {
          for (Index c = 0; c < stride; ++c) {
            const bool is_rhs = s.bandwidth <= c && c < n_cols;
            const Index moved = is_rhs ? c : c + shift;
            const bool given = is_rhs || moved < s.bandwidth;
            expected[size(i * stride + c)] = given ? at(from, i, moved) : 0.0;
          }
        }
        kernels.gather(s.n_rows, shift, s.bandwidth, s.n_rhs, from.a.data(), s.n_rows, rows.data(), stride);
        EXPECT_SAME_ARRAY(rows.size(), rows.data(), expected.data());
      }
    });
  });
}

TEST(BandKernels, ScatterZeroesBelowTheDiagonalAndWritesNoOtherRow) {
  Random random(2);
  for_every_band_kernels([&random](const BandKernels& kernels) {
    for_all_copies([&](const Shape& s) {
      for (const Index n_zeroed : {Index{0}, s.bandwidth}) {
        SCOPED_TRACE(testing::Message() << s << ", zeroed " << n_zeroed);
        const Index n_cols = s.bandwidth + s.n_rhs;
        const Index stride = tnla_kernels::padded_band(n_cols);
        const Index ld = s.n_rows + 3;
        const Values rows = random.any_vector(size(s.n_rows * stride));
        Matrix to{size(ld), size(n_cols), Values(size(ld * n_cols), kMark)};
        Matrix expected = to;
        for (Index i = 0; i < s.n_rows; ++i) {
          for (Index c = 0; c < n_cols; ++c) {
            at(expected, i + 1, c) = c < n_zeroed && i > c ? 0.0 : rows[size(i * stride + c)];
          }
        }
        kernels.scatter(s.n_rows, n_cols, n_zeroed, rows.data(), stride, to.a.data() + 1, ld);
        EXPECT_SAME_ARRAY(to.a.size(), to.a.data(), expected.a.data());
      }
    });
  });
}

// --- Fold -----------------------------------------------------------------------------------------------

// A triangle of n_old rows, then new ones.
struct Equations {
  Index n_old;
  Index bandwidth;
  Matrix rows;
};

std::ostream& operator<<(std::ostream& out, const Equations& e) {
  return out << e.n_old << " old rows of " << e.rows.m << ", NB " << e.bandwidth << ", " << e.rows.n
             << " columns";
}

Equations random_equations(Random& random, Index n_old, Index count, Index bandwidth, Index n_rhs) {
  Equations e{n_old, bandwidth, random_matrix(random, n_old + count, bandwidth + n_rhs)};
  for (Index i = 0; i < n_old; ++i) {
    for (Index c = 0; c < i; ++c) at(e.rows, i, c) = 0.0;
  }
  return e;
}

Matrix plainly_folded(const Equations& e) {
  Matrix A = e.rows;
  const int m = to_int(static_cast<Index>(A.m));
  for (int i = 0; i < to_int(e.bandwidth) && i < m - 1; ++i) {
    const reference::Reflection h(i, i + 1, m, A.column(size(i)), 1);
    for (std::size_t c = size(i) + 1; c < A.n; ++c) h.apply(A.column(c), 1);
  }
  return A;
}

// Nothing if the kernel gives up.
std::optional<Matrix> folded(const BandKernels& kernels, const Equations& e) {
  const auto n_rows = static_cast<Index>(e.rows.m);
  const auto n_cols = static_cast<Index>(e.rows.n);
  const Index stride = tnla_kernels::padded_band(n_cols);
  const Index room = n_rows + tnla_kernels::kBandExtra;
  Values rows(size(room * stride + 4), kMark);
  Values scratch(size(2 * room + 1), kMark);
  kernels.gather(n_rows, 0, e.bandwidth, n_cols - e.bandwidth, e.rows.a.data(), n_rows, rows.data(),
                 stride);
  const bool done = kernels.fold(e.n_old, n_rows, e.bandwidth, rows.data(), stride, scratch.data());
  for (std::size_t i = size(room * stride); i < rows.size(); ++i) EXPECT_SAME(rows[i], kMark);
  EXPECT_SAME(scratch.back(), kMark);
  if (!done) return std::nullopt;
  Matrix result = e.rows;
  kernels.scatter(n_rows, n_cols, e.bandwidth, rows.data(), stride, result.a.data(), n_rows);
  return result;
}

// Whether it folds; if it does, then right.
bool folds(const BandKernels& kernels, const Equations& e) {
  const std::optional<Matrix> actual = folded(kernels, e);
  if (!actual.has_value()) return false;
  SCOPED_TRACE(testing::Message() << e);
  const Matrix expected = plainly_folded(e);
  EXPECT_SAME_ARRAY(expected.a.size(), actual->a.data(), expected.a.data());
  return true;
}

template <class F>
void for_all_folds(Random& random, const F& f) {
  for (const Index bandwidth : {1, 2, 3, 4, 5, 6, 7, 8, 9, 15, 16, 17, 33}) {
    for (const Index n_old : {Index{0}, Index{1}, bandwidth / 2, bandwidth - 1, bandwidth}) {
      for (const Index count : {0, 1, 2, 3, 4, 5, 6, 16, 17, 40}) {
        for (const Index n_rhs : {0, 1, 2, 5}) f(random_equations(random, n_old, count, bandwidth, n_rhs));
      }
    }
  }
}

TEST(BandKernels, FoldFollowsItsDefinition) {
  for_every_band_kernels([](const BandKernels& kernels) {
    Random random(3);
    for_all_folds(random, [&](const Equations& e) { EXPECT_TRUE(folds(kernels, e)) << e; });
  });
}

TEST(BandKernels, FoldFollowsItsDefinitionForWideBandsAndLargeBlocks) {
  for_every_band_kernels([](const BandKernels& kernels) {
    Random random(4);
    EXPECT_TRUE(folds(kernels, random_equations(random, 64, 4, 64, 3)));
    EXPECT_TRUE(folds(kernels, random_equations(random, 90, 3, 91, 9)));
    EXPECT_TRUE(folds(kernels, random_equations(random, 4, 1000, 4, 2)));
  });
}

// Zeros of both signs in the new rows, columns and products that are zero, columns that are alike.
TEST(BandKernels, FoldFollowsItsDefinitionForZeros) {
  for_every_band_kernels([](const BandKernels& kernels) {
    Random random(5);
    for_all_folds(random, [&](Equations e) {
      const auto m = static_cast<Index>(e.rows.m);
      const auto n = static_cast<Index>(e.rows.n);
      const std::size_t kind = random.below(4);
      for (Index i = e.n_old; i < m; ++i) {
        for (Index c = 0; c < n; ++c) {
          if (kind < 2 && random.below(4) != 0) {
            at(e.rows, i, c) = kind == 0 && random.below(2) == 0 ? -0.0 : 0.0;
          }
          if (kind == 2 && c % 3 == 1) at(e.rows, i, c) = at(e.rows, i, c - 1);
          if (kind == 3) at(e.rows, i, c) = c % 2 == 0 ? 0.0 : -0.0;
        }
      }
      EXPECT_TRUE(folds(kernels, e)) << e;
    });
  });
}

// Columns that are the identity's, lengths near the thresholds, numbers that round to zero.
TEST(BandKernels, FoldFollowsItsDefinitionForSmallNumbers) {
  for_every_band_kernels([](const BandKernels& kernels) {
    for (const double unit : {1e-9, 1e-10, 1e-11, 1e-20, 1e-21, 1e-160, 1e-308, 5e-324}) {
      Random random(6);
      for_all_folds(random, [&](Equations e) {
        for (double& x : e.rows.a) x *= random.below(8) == 0 ? 1.0 : unit;
        for (double& x : e.rows.a) x += 0.0;  // of the old rows, none is -0.0
        EXPECT_TRUE(folds(kernels, e)) << e << ", unit " << unit;
      });
    }
  });
}

// Where it does not give up it is right.
TEST(BandKernels, FoldFollowsItsDefinitionForSpecialValuesOrGivesUp) {
  for_every_band_kernels([](const BandKernels& kernels) {
    int n_done = 0;
    int n_given_up = 0;
    Random random(7);
    for_all_folds(random, [&](Equations e) {
      for (double& x : e.rows.a) {
        if (random.below(16) == 0) x = random.any();
      }
      ++(folds(kernels, e) ? n_done : n_given_up);
    });
    EXPECT_GT(n_done, 500);  // of 2600
    EXPECT_GT(n_given_up, 500);
  });
}

// Each of what the short reflections need, alone.
TEST(BandKernels, FoldGivesUpWhereTheZerosOfTheTriangleCount) {
  for_every_band_kernels([](const BandKernels& kernels) {
    for (const Index count : {2, 7}) {
      for (const Index bandwidth : {3, 6}) {
        Random random(8);
        const Equations plain = random_equations(random, bandwidth, count, bandwidth, 2);
        const auto expect_gives_up = [&](Index i, Index c, double value) {
          Equations e = plain;
          at(e.rows, i, c) = value;
          EXPECT_FALSE(folds(kernels, e)) << value << " at " << i << ", " << c << ": " << e;
        };
        ASSERT_TRUE(folds(kernels, plain));
        for (Index i = 1; i < bandwidth; ++i) {
          for (Index c = 0; c < bandwidth + 2; ++c) {
            for (const double value : {-0.0, kInf, -kInf, kNaN}) expect_gives_up(i, c, value);
            if (c < i) expect_gives_up(i, c, kTiny);
          }
        }
        for (Index i = bandwidth; i < bandwidth + count; ++i) {
          for (const double value : {kInf, -kInf, kNaN}) {
            expect_gives_up(i, 0, value);              // every factor
            expect_gives_up(i, bandwidth + 1, value);  // the factor of one right-hand side
          }
          Equations e = plain;  // a sum of finite products that is not
          at(e.rows, i, 0) = 1e10;
          at(e.rows, i, bandwidth) = kHuge;
          EXPECT_FALSE(folds(kernels, e)) << e;
        }
      }
    }
  });
}

// --- Reflections ----------------------------------------------------------------------------------------

TEST(BandKernels, EliminateReflectsEveryColumnOfTheRows) {
  for_every_band_kernels([](const BandKernels& kernels) {
    Random random(9);
    for (const Index stride : {4, 8, 12, 16, 20, 44}) {
      for (const Index n : {1, 2, 3, 5, 20}) {
        for (Index column = 0; column < stride; ++column) {
          for (const bool is_special : {false, true}) {
            SCOPED_TRACE(testing::Message() << n << " rows of " << stride << ", column " << column);
            Values rows = is_special ? random.any_vector(size((n + 1) * stride))
                                     : random.vector(size((n + 1) * stride));
            Values expected = rows;
            const reference::Reflection h(0, 1, to_int(n + 1), expected.data() + column, to_int(stride));
            for (Index c = 0; c < stride; ++c) {
              if (c != column) h.apply(expected.data() + c, to_int(stride));
            }
            Values u(size(n + 1), kMark);
            kernels.eliminate(column, n, rows.data(), rows.data() + stride, stride, u.data());
            EXPECT_SAME_ARRAY(rows.size(), rows.data(), expected.data());
            EXPECT_SAME(u.back(), kMark);
          }
        }
      }
    }
  });
}

TEST(BandKernels, ReflectColumnsFollowsItsDefinition) {
  for_every_band_kernels([](const BandKernels& kernels) {
    Random random(10);
    for (const Index n : {0, 1, 2, 3, 4, 5, 8, 9, 30}) {
      for (Index n_cols = 0; n_cols <= 14; ++n_cols) {
        for (const bool is_special : {false, true}) {
          const Index stride = n + 2;
          const auto numbers = [&](Index many) {
            return is_special ? random.any_vector(size(many)) : random.vector(size(many));
          };
          Values w = numbers(stride * n_cols);
          Values u = numbers(n + 1);
          if (n_cols > 1) std::fill_n(w.begin() + stride, n + 1, -0.0);  // its sum is 0
          Values expected = w;
          reference::Reflection h(0, 1, to_int(n + 1), Values(u).data(), 1);
          h.u = u;
          h.scale = -0.75;
          if (n > 0) {
            for (Index c = 0; c < n_cols; ++c) h.apply(expected.data() + c * stride, 1);
            kernels.reflect_columns(u[0], u.data() + 1, n, h.scale, w.data(), stride, n_cols);
          }
          SCOPED_TRACE(testing::Message() << n << " rows, " << n_cols << " columns");
          EXPECT_SAME_ARRAY(w.size(), w.data(), expected.data());
        }
      }
    }
  });
}

// --- Substitution ---------------------------------------------------------------------------------------

struct Triangle {
  Index n;
  Index bandwidth;
  Index n_rhs;
  Index n_coupled;
  Values rows;
  Values coupling;
  Values x_coupled;
  Values x;

  Index stride() const { return tnla_kernels::padded_band(bandwidth + n_rhs); }
  Index x_stride() const { return tnla_kernels::padded_band(n_rhs); }
};

Triangle random_triangle(Random& random, Index n, Index bandwidth, Index n_rhs, Index n_coupled) {
  Triangle t{n, bandwidth, n_rhs, n_coupled, {}, {}, {}, {}};
  t.rows = random.vector(size(n * t.stride() + t.x_stride()));
  t.coupling = random.vector(size(n * n_coupled));
  t.x_coupled = random.vector(size(n_coupled * t.x_stride()));
  t.x = random.vector(size((n + bandwidth - 1) * t.x_stride()));
  return t;
}

// Solves, and tells how many rows are left.
Index plainly_substituted(Triangle& t) {
  for (Index i = t.n - 1; i >= 0; --i) {
    const double* const row = t.rows.data() + i * t.stride();
    if (std::fabs(row[0]) < 1e-10) return i + 1;
    for (Index k = 0; k < t.n_rhs; ++k) {
      double in_band = 0.0;
      for (Index j = 1; j < t.bandwidth; ++j) in_band += t.x[size((i + j) * t.x_stride() + k)] * row[j];
      double coupled = 0.0;
      for (Index c = 0; c < t.n_coupled; ++c) {
        coupled += t.coupling[size(i * t.n_coupled + c)] * t.x_coupled[size(c * t.x_stride() + k)];
      }
      t.x[size(i * t.x_stride() + k)] = (row[t.bandwidth + k] - in_band - coupled) / row[0];
    }
  }
  return 0;
}

void expect_substitutes(const BandKernels& kernels, Triangle t) {
  Triangle expected = t;
  const Index n_left = plainly_substituted(expected);
  EXPECT_EQ(kernels.substitute(t.n, t.bandwidth, t.n_rhs, 1e-10, t.rows.data(), t.stride(), t.n_coupled,
                               t.coupling.data(), t.x_coupled.data(), t.x.data(), t.x_stride()),
            n_left);
  for (Index i = n_left; i < t.n + t.bandwidth - 1; ++i) {
    EXPECT_SAME_ARRAY(t.n_rhs, t.x.data() + i * t.x_stride(), expected.x.data() + i * t.x_stride())
        << "row " << i;
  }
}

template <class F>
void for_all_triangles(const F& f) {
  Random random(11);
  for (const Index n : {0, 1, 2, 7}) {
    for (const Index bandwidth : {1, 2, 3, 4, 5, 8, 9}) {
      for (const Index n_rhs : {0, 1, 2, 3, 4, 5, 9}) {
        for (const Index n_coupled : {Index{0}, bandwidth}) {
          SCOPED_TRACE(testing::Message() << n << " rows, NB " << bandwidth << ", R " << n_rhs);
          f(random, random_triangle(random, n, bandwidth, n_rhs, n_coupled));
        }
      }
    }
  }
}

TEST(BandKernels, SubstituteFollowsItsDefinition) {
  for_every_band_kernels([](const BandKernels& kernels) {
    for_all_triangles([&](Random& random, Triangle t) {
      expect_substitutes(kernels, t);
      for (Values* const values : {&t.rows, &t.coupling, &t.x_coupled, &t.x}) {
        for (double& x : *values) x = random.below(3) == 0 ? random.any() : x;
      }
      expect_substitutes(kernels, t);
    });
  });
}

TEST(BandKernels, SubstituteEndsBeforeADiagonalElementThatIsTooSmall) {
  for_every_band_kernels([](const BandKernels& kernels) {
    for_all_triangles([&](Random&, Triangle t) {
      for (Index i = 0; i < t.n; ++i) {
        double& diagonal = t.rows[size(i * t.stride())];
        const double before = diagonal;
        for (const double value : {0.0, -0.0, ulp_below(1e-10), -1e-10, 1e-10, kNaN}) {
          diagonal = value;
          expect_substitutes(kernels, t);
        }
        diagonal = before;
      }
    });
  });
}

}  // namespace
