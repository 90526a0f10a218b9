// SPDX-License-Identifier: MIT

// The order of calls, the solution as an array, and what is asserted.

#include <gtest/gtest.h>

#include <cstddef>
#include <limits>
#include <type_traits>
#include <vector>

#include "support/cholesky_objects.h"
#include "support/expect_asserts.h"
#include "support/values.h"
#include "support/virtual_table.h"
#include "tnlacholesky_i.h"

namespace {

using reference::cholesky_solution;

constexpr char kSource[] = "src/tnlacholesky.cpp";

static_assert(std::has_virtual_destructor_v<TnLaCholesky>);
static_assert(!std::is_copy_constructible_v<TnLaCholesky>);
static_assert(!std::is_copy_assignable_v<TnLaCholesky>);
static_assert(!std::is_convertible_v<int, TnLaCholesky>);

// --- The class ------------------------------------------------------------------------------------------

#if defined(HAS_TABLE_PLACE)
struct Derived : TnLaCholesky {
  using TnLaCholesky::TnLaCholesky;
  virtual void own() {}
};

TEST(CholeskyClass, TheDestructorIsItsOnlyVirtualOperation) { EXPECT_EQ(table_place(&Derived::own), 2u); }
#endif

TEST(CholeskyClass, IsDestroyedThroughItsBase) {
  struct Noted : Loaded {
    explicit Noted(bool& gone) : gone_(gone) {}
    ~Noted() override { gone_ = true; }
    bool& gone_;
  };
  bool gone = false;
  const std::size_t alive = allocation::alive();
  TnLaCholesky* const cholesky = new Noted(gone);
  cholesky->x();
  EXPECT_GT(allocation::alive(), alive + 6);
  delete cholesky;
  EXPECT_TRUE(gone);
  EXPECT_EQ(allocation::alive(), alive);
}

// --- The order of calls ---------------------------------------------------------------------------------

TEST(CholeskyCalls, AComesBeforeOrAfterB) {
  TnLaCholesky cholesky(3);
  cholesky.b(array(kLoad));
  cholesky.a(array(kDefinite));
  expect_solution(cholesky.x(), kDefinite, kLoad);
}

TEST(CholeskyCalls, TheLastMatrixAndRightSideCount) {
  Loaded cholesky(kIndefinite, kNextLoad);
  cholesky.b(array(kLoad));
  cholesky.a(array(kDefinite));
  expect_solution(cholesky.x(), kDefinite, kLoad);
}

TEST(CholeskyCalls, TheArgumentsAreCopied) {
  TnLaCholesky cholesky(3);
  {
    Array a = array(kDefinite);
    Array b = array(kLoad);
    cholesky.a(a);
    cholesky.b(b);
    for (std::size_t i = 0; i < a.size(); ++i) a[i] = kNaN;
    for (std::size_t i = 0; i < b.size(); ++i) b[i] = kNaN;
  }
  expect_solution(cholesky.x(), kDefinite, kLoad);
}

// From every kind of matrix to every other, with a solution before and a second right side.
TEST(CholeskyCalls, ANewMatrixStartsAgain) {
  for (const Matrix& first : {kDefinite, kIndefinite, kSingular}) {
    for (const Matrix& second : {kNextDefinite, kIndefinite, kSingular}) {
      Loaded cholesky(first);
      expect_solution(cholesky.x(), first, kLoad);
      cholesky.a(array(second));
      expect_solution(cholesky.x(), second, kLoad);
      cholesky.b(array(kNextLoad));
      expect_solution(cholesky.x(), second, kNextLoad);
      expect_solution(cholesky.x(), second, kNextLoad);
    }
  }
}

TEST(CholeskyCalls, ANewRightSideMayBeTheSolution) {
  for (const Matrix& A : {kDefinite, kIndefinite}) {
    Loaded cholesky(A);
    std::vector<double> b = kLoad;
    for (int i = 0; i < 4; ++i) {
      b = cholesky_solution(A, b);
      cholesky.b(cholesky.x());
    }
    expect_solution(cholesky.x(), A, b);
  }
}

TEST(CholeskyCalls, ANewMatrixMayBeTheSolution) {
  Loaded cholesky({1, 1, {4}}, {2});
  cholesky.a(cholesky.x());
  expect_elements(cholesky.x(), cholesky_solution({1, 1, {0.5}}, {2}));
}

// --- The solution ---------------------------------------------------------------------------------------

TEST(CholeskySolution, IsAlwaysTheSameArray) {
  Loaded cholesky;
  const Array& x = cholesky.x();
  cholesky.a(array(kIndefinite));
  EXPECT_EQ(&cholesky.x(), &x);
  cholesky.a(zeros(2));
  EXPECT_EQ(&cholesky.x(), &x);
}

TEST(CholeskySolution, StaysUntilTheNextOne) {
  Loaded cholesky;
  const Array& x = cholesky.x();
  const double* const data = x.data();
  cholesky.b(array(kNextLoad));
  cholesky.a(array(kNextDefinite));
  cholesky.a(zeros(2));
  cholesky.b(zeros(2));
  EXPECT_EQ(x.data(), data);
  expect_solution(x, kDefinite, kLoad);
}

TEST(CholeskySolution, IsComputedAtEveryCall) {
  for (const Matrix& A : {kDefinite, kIndefinite, kSingular}) {
    Loaded cholesky(A);
    Array& x = const_cast<Array&>(cholesky.x());
    for (std::size_t i = 0; i < x.size(); ++i) x[i] = kNaN;
    expect_solution(cholesky.x(), A, kLoad);
  }
}

TEST(CholeskySolution, HasRoomForExactlyItsElements) {
  Loaded cholesky(kIndefinite);
  cholesky.x();
  cholesky.a(array(kDefinite));
  EXPECT_EQ(cholesky.x().capacity(), 3u);
  cholesky.b(array(kNextLoad));
  EXPECT_EQ(cholesky.x().capacity(), 3u);
}

// --- Asserted -------------------------------------------------------------------------------------------

TEST(CholeskyAssertion, AMatrixOfTheWrongLengthIsDropped) {
  for (const std::size_t length : {0u, 1u, 3u, 6u, 8u, 10u, 16u}) {
    SCOPED_TRACE(length);
    expect_asserts({kSource, kSource}, [length] {
      Loaded cholesky;
      cholesky.x();
      cholesky.a(zeros(length));
      expect_emptied(cholesky.x());
      cholesky.a(array(kNextDefinite));
      expect_solution(cholesky.x(), kNextDefinite, kLoad);
    });
  }
}

TEST(CholeskyAssertion, ARightSideOfTheWrongLengthIsDropped) {
  for (const std::size_t length : {0u, 1u, 2u, 4u, 9u}) {
    SCOPED_TRACE(length);
    expect_asserts({kSource, kSource}, [length] {
      Loaded cholesky;
      cholesky.x();
      cholesky.b(zeros(length));
      expect_emptied(cholesky.x());
      const Array b = array(kNextLoad);
      EXPECT_EQ(allocations([&] { cholesky.b(b); }), 1u);
      EXPECT_EQ(allocations([&] { cholesky.x(); }), 2u);  // the factor was kept
      expect_solution(cholesky.x(), kDefinite, kNextLoad);
    });
  }
}

TEST(CholeskyAssertion, TheOtherArgumentStays) {
  expect_asserts({kSource, kSource}, [] {
    TnLaCholesky cholesky(3);
    cholesky.a(zeros(1));
    cholesky.b(array(kLoad));
    cholesky.a(array(kDefinite));
    expect_solution(cholesky.x(), kDefinite, kLoad);
    cholesky.b(zeros(9));
    cholesky.a(array(kIndefinite));
    cholesky.b(array(kNextLoad));
    expect_solution(cholesky.x(), kIndefinite, kNextLoad);
  });
}

TEST(CholeskyAssertion, OneCallSaysWhatIsMissing) {
  const auto expect_asserts_once = [](const Matrix& A, bool has_matrix, bool has_right_side) {
    expect_asserts({kSource}, [&A, has_matrix, has_right_side] {
      TnLaCholesky cholesky(static_cast<int>(A.n));
      if (has_matrix) cholesky.a(array(A));
      if (has_right_side) cholesky.b(zeros(A.n));
      expect_emptied(cholesky.x());
    });
  };
  for (const Matrix& A : {kDefinite, kIndefinite, Matrix(0, 0)}) {
    expect_asserts_once(A, false, false);
    expect_asserts_once(A, true, false);
    expect_asserts_once(A, false, true);
  }
}

TEST(CholeskyAssertion, EveryCallAsserts) {
  expect_asserts({kSource, kSource, kSource, kSource}, [] {
    TnLaCholesky cholesky(3);
    cholesky.a(zeros(1));
    cholesky.a(zeros(1));
    expect_emptied(cholesky.x());
    expect_emptied(cholesky.x());
  });
}

TEST(CholeskyAssertion, NothingIsAssertedWhereNothingIsWrong) {
  expect_asserts({}, [] {
    for (const Matrix& A : {kDefinite, kIndefinite, kSingular}) Loaded(A).x();
  });
}

// --- Sizes ----------------------------------------------------------------------------------------------

TEST(CholeskySize, ZeroIsSolvedByNothing) {
  expect_asserts({}, [] {
    Loaded cholesky(Matrix(0, 0), {});
    EXPECT_EQ(cholesky.x().size(), 0u);
    cholesky.b(zeros(0));
    EXPECT_EQ(cholesky.x().size(), 0u);
    cholesky.a(zeros(0));
    EXPECT_EQ(cholesky.x().size(), 0u);
  });
}

TEST(CholeskySize, ZeroAssertsLikeAnyOther) {
  expect_asserts({kSource, kSource, kSource, kSource}, [] {
    TnLaCholesky cholesky(0);
    expect_emptied(cholesky.x());
    cholesky.a(zeros(1));
    cholesky.b(zeros(1));
    expect_emptied(cholesky.x());
  });
}

// The square of n may fit a matrix; no right side has a negative length.
TEST(CholeskySize, ANegativeOneHasNoRightSide) {
  const auto expect_no_right_side = [](int n, std::size_t square) {
    expect_asserts({kSource, kSource, kSource}, [n, square] {
      TnLaCholesky cholesky(n);
      cholesky.a(zeros(square));
      cholesky.b(zeros(0));
      cholesky.b(zeros(2));
      expect_emptied(cholesky.x());
    });
  };
  expect_no_right_side(-1, 1);
  expect_no_right_side(-2, 4);
  expect_no_right_side(-3, 9);
}

TEST(CholeskySize, TheMostNegativeOneHasNoMatrixEither) {
  expect_asserts({kSource, kSource, kSource}, [] {
    TnLaCholesky cholesky(std::numeric_limits<int>::min());
    cholesky.a(zeros(0));
    cholesky.b(zeros(0));
    expect_emptied(cholesky.x());
  });
}

// 65536 * 65536 is 0 in 32 bits, 65537 * 65537 is 131073.
TEST(CholeskySize, TheSquareOfALargeOneIsNotCutOff) {
  expect_asserts({kSource, kSource}, [] {
    TnLaCholesky(65536).a(zeros(0));
    TnLaCholesky(65537).a(zeros(131073));
  });
}

}  // namespace
