// SPDX-License-Identifier: MIT

#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <vector>

#include "reference/jacobi_reference.h"
#include "support/bits.h"
#include "support/guarded.h"
#include "support/kernel_sets.h"
#include "support/values.h"

namespace {

using reference::Jacobi;
using reference::JacobiRule;
using reference::Matrix;
using tnla_kernels::Index;
using tnla_kernels::JacobiKernels;

using Values = std::vector<double>;

constexpr JacobiRule kUnsorted = {50, 3, 4, false};

// Room for `n_bytes`, which is all that is there: a sanitizer sees what goes beyond.
std::vector<std::byte> scratch_of(const JacobiKernels& kernels, Index n) {
  return std::vector<std::byte>(static_cast<std::size_t>(kernels.scratch_bytes(n)), std::byte{0xff});
}

// `n_more` rows below the matrix, which are not its own.
void expect_diagonalizes(const JacobiKernels& kernels, const Matrix& A, std::size_t n_more = 0) {
  const std::size_t n = A.n;
  SCOPED_TRACE(testing::Message() << n << " rows of " << n + n_more);
  const Jacobi expected(A, kUnsorted);
  const std::size_t lda = n + n_more;
  Values elements(lda * n, 0.25);
  for (std::size_t j = 0; j < n; ++j) {
    for (std::size_t i = 0; i < n; ++i) elements[j * lda + i] = A(i, j);
  }
  Guarded a(elements);
  Guarded d(Values(n, 7.0));
  Guarded v(reference::identity(n).a);
  Guarded b(Values(n, kNaN));
  Guarded z(Values(n, kNaN));
  const auto size = static_cast<Index>(n);
  std::vector<std::byte> scratch = scratch_of(kernels, size);
  const bool converged = kernels.diagonalize(size, a.data(), static_cast<Index>(lda), d.data(), v.data(),
                                             b.data(), z.data(), scratch.data());
  EXPECT_EQ(converged, expected.converged);
  for (std::size_t j = 0; j < n; ++j) {
    for (std::size_t i = 0; i < n; ++i) elements[j * lda + i] = expected.a(i, j);
  }
  EXPECT_SAME_ARRAY(elements.size(), a.data(), elements.data());
  EXPECT_SAME_ARRAY(n, d.data(), expected.d.data());
  EXPECT_SAME_ARRAY(n * n, v.data(), expected.V.a.data());
  for (const Guarded* array : {&a, &d, &v, &b, &z}) EXPECT_TRUE(array->is_intact());
}

void expect_diagonalizes_in_every_set(const Matrix& A, std::size_t n_more = 0) {
  for_every_kernel_set(
      [&](const tnla_kernels::KernelSet& set) { expect_diagonalizes(set.jacobi, A, n_more); });
}

Matrix random_matrix(Random& random, std::size_t n) { return {n, n, random.vector(n * n)}; }

// Random elements up to `width` places from the diagonal, and 0 beyond.
Matrix random_band(Random& random, std::size_t n, std::size_t width) {
  Matrix A = random_matrix(random, n);
  for (std::size_t j = 0; j < n; ++j) {
    for (std::size_t i = 0; i + width < j; ++i) A(i, j) = 0.0;
  }
  return A;
}

// Far from each other on the diagonal, and `weak` beside it.
Matrix random_nearly_diagonal(Random& random, std::size_t n, double weak) {
  Matrix A = random_matrix(random, n);
  for (double& element : A.a) element *= weak;
  for (std::size_t i = 0; i < n; ++i) A(i, i) = static_cast<double>(i);
  return A;
}

TEST(JacobiKernels, DiagonalizeEverySize) {
  Random random(1);
  for (std::size_t n = 0; n <= 60; ++n) expect_diagonalizes_in_every_set(random_matrix(random, n));
  for (const std::size_t n : {95u, 96u, 97u, 121u}) {
    expect_diagonalizes_in_every_set(random_matrix(random, n));
  }
}

TEST(JacobiKernels, KeepToTheirRows) {
  Random random(2);
  for (const std::size_t n : {1u, 2u, 7u, 16u, 17u, 31u, 50u}) {
    for (const std::size_t n_more : {1u, 2u, 5u}) {
      expect_diagonalizes_in_every_set(random_matrix(random, n), n_more);
    }
  }
}

// Few rotations, and many that become few.
TEST(JacobiKernels, DiagonalizeBands) {
  Random random(3);
  for (std::size_t n = 14; n <= 44; n += 3) {
    for (const std::size_t width : {0u, 1u, 2u, 4u, 9u}) {
      expect_diagonalizes_in_every_set(random_band(random, n, width));
    }
  }
}

TEST(JacobiKernels, DiagonalizeNearlyDiagonalMatrices) {
  Random random(4);
  for (std::size_t n = 15; n <= 40; n += 5) {
    for (const double weak : {1e-3, 1e-9, 1e-15, 1e-17, 1e-30, 1e-200}) {
      expect_diagonalizes_in_every_set(random_nearly_diagonal(random, n, weak));
    }
  }
}

TEST(JacobiKernels, DiagonalizeGradedMatrices) {
  Random random(5);
  for (const std::size_t n : {16u, 21u, 34u}) {
    for (const double ratio : {0.5, 0.1, 1e-3, 10.0}) {
      Matrix A = random_matrix(random, n);
      for (std::size_t j = 0; j < n; ++j) {
        for (std::size_t i = 0; i < n; ++i) A(i, j) *= std::pow(ratio, static_cast<double>(i + j));
      }
      expect_diagonalizes_in_every_set(A);
    }
  }
}

// Equal eigenvalues, equal diagonal elements, and columns that are equal.
TEST(JacobiKernels, DiagonalizeWhatIsEqual) {
  Random random(6);
  for (std::size_t n = 15; n <= 33; n += 6) {
    expect_diagonalizes_in_every_set({n, n, Values(n * n, 1.0)});
    expect_diagonalizes_in_every_set(reference::diagonal(Values(n, 2.0)));
    Matrix A = random_matrix(random, n);
    for (std::size_t i = 0; i < n; ++i) A(i, i) = 0.5;
    expect_diagonalizes_in_every_set(A);
    for (double& element : A.a) element = std::round(2.0 * element);
    expect_diagonalizes_in_every_set(A);
  }
}

// Up to where squares and sums overflow, and down to where elements have a bit or two.
TEST(JacobiKernels, DiagonalizeAtEveryScale) {
  Random random(7);
  for (const std::size_t n : {16u, 23u, 40u}) {
    for (const int e :
         {-1074, -1072, -1070, -1060, -1022, -540, -100, 100, 498, 499, 500, 800, 1020, 1023}) {
      Matrix A = random_matrix(random, n);
      for (double& element : A.a) element = std::ldexp(element, e);
      expect_diagonalizes_in_every_set(A);
    }
  }
}

// One element takes a special value: with -0.0, what is not finite, and what is too large, a rotation by
// zero is not the same as none.
TEST(JacobiKernels, DiagonalizeSpecialValues) {
  Random random(8);
  for (const std::size_t n : {5u, 12u, 16u, 27u}) {
    const Matrix A = random_band(random, n, n / 2);
    for (const double special : special_values()) {
      for (int trial = 0; trial < 6; ++trial) {
        Matrix changed = A;
        const std::size_t q = random.below(n);
        changed(trial == 0 ? q : random.below(q + 1), q) = special;
        expect_diagonalizes_in_every_set(changed);
      }
    }
  }
}

TEST(JacobiKernels, KeepTheSignOfAZero) {
  Random random(9);
  for (const std::size_t n : {16u, 20u, 33u}) {
    for (int trial = 0; trial < 10; ++trial) {
      Matrix A = random_matrix(random, n);
      for (double& element : A.a) {
        if (random.below(3) == 0) element = random.below(2) == 0 ? 0.0 : -0.0;
      }
      expect_diagonalizes_in_every_set(A);
      for (std::size_t i = 0; i < n; ++i) A(i, i) = -0.0;
      expect_diagonalizes_in_every_set(A);
    }
  }
}

// Two rows that are coupled with none: what is between them stays if there are few sweeps, none of which
// zeroes what is negligible.  So the products of elements are about to underflow.
TEST(JacobiKernels, LeaveAZeroBesideRotations) {
  Random random(13);
  for (std::size_t n = 8; n <= 40; n += 4) {
    for (const double zero : {0.0, -0.0}) {
      Matrix A = random_nearly_diagonal(random, n, 1e-120);
      for (std::size_t j = n - 2; j < n; ++j) {
        for (std::size_t i = 0; i < j; ++i) A(i, j) = zero;
      }
      const Jacobi expected(A, kUnsorted);
      ASSERT_LE(expected.n_sweeps, 4);
      EXPECT_SAME(expected.a(n - 2, n - 1), zero);
      expect_diagonalizes_in_every_set(A);
    }
  }
}

TEST(JacobiKernels, DiagonalizeAnyMatrix) {
  Random random(10);
  for (std::size_t n = 1; n <= 30; ++n) {
    for (int trial = 0; trial < 3; ++trial) {
      expect_diagonalizes_in_every_set({n, n, random.any_vector(n * n)});
    }
  }
}

// All rotations are by 45 degrees and leave the diagonal as it is, for many sweeps: elements are lost
// beside it, and a hundred times an element are not.
TEST(JacobiKernels, ConvergeSlowly) {
  Random random(11);
  int most_sweeps = 0;
  for (std::size_t n = 15; n <= 30; ++n) {
    Matrix A = random_matrix(random, n);
    for (double& element : A.a) element *= 5e-17;
    for (std::size_t i = 0; i < n; ++i) A(i, i) = 1.5;
    const int n_sweeps = Jacobi(A, kUnsorted).n_sweeps;
    if (n_sweeps > most_sweeps) most_sweeps = n_sweeps;
    expect_diagonalizes_in_every_set(A);
  }
  EXPECT_GT(most_sweeps, 15);
}

// A hundred times the element is half a unit in the last place of the difference on the diagonal, which is
// just lost beside it, or a little more, which is not.
TEST(JacobiKernels, TurnWhereAHundredfoldIsJustLost) {
  const double half_unit = 0x1p-53;
  const double lost = half_unit / 100;
  const double not_lost = ulp_above(ulp_above(lost));
  ASSERT_EQ(100 * lost, half_unit);
  ASSERT_GT(100 * not_lost, half_unit);
  for (int k = 0; k < 40; ++k) {
    for (const double element : {lost, not_lost}) {
      expect_diagonalizes_in_every_set({2, 2, {0.0, 0.0, element, 1.0 + 4 * k * half_unit}});
    }
  }
}

// The last three rows hold some units in the last place of zero, where rounding undoes what a rotation
// does, for ever.
TEST(JacobiKernels, EndAfterFiftySweeps) {
  Random random(12);
  for (std::size_t n = 3; n <= 40; ++n) {
    Matrix A = random_matrix(random, n);
    for (std::size_t j = n - 3; j < n; ++j) {
      for (std::size_t i = 0; i <= j; ++i) A(i, j) = 0.0;
    }
    A(n - 3, n - 3) = kTiny;
    A(n - 3, n - 1) = -kTiny;
    A(n - 2, n - 1) = -kTiny;
    A(n - 1, n - 1) = 2 * kTiny;
    EXPECT_FALSE(Jacobi(A, kUnsorted).converged);
    expect_diagonalizes_in_every_set(A);
  }
}

}  // namespace
