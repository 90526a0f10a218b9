// SPDX-License-Identifier: MIT

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <limits>
#include <new>
#include <type_traits>
#include <utility>
#include <vector>

#include "reference/dense_model.h"
#include "support/assertions.h"
#include "support/bits.h"
#include "support/values.h"
#include "tnla_matrix_vector_i.h"

namespace {

using reference::counting;
using reference::Room;

constexpr char kMatrix[] = "src/tnla_matrix_vector.cpp";
constexpr char kElement[] = "interfaces/tnla_matrix_vector_i.h";
constexpr char kArray[] = "interfaces/tnarray_i.h";
constexpr std::size_t kTop = std::numeric_limits<std::size_t>::max();
constexpr std::size_t kHalf = std::size_t{1} << 32;  // kHalf * kHalf is 0 in a size_t

// The shape, the elements column by column, and zeros in the rest of the block.
void expect_is(const TnLaDblMat& A, std::size_t m, std::size_t n, const std::vector<double>& elements) {
  EXPECT_EQ(A.n_rows(), m);
  EXPECT_EQ(A.n_cols(), n);
  EXPECT_EQ(A.empty(), m == 0 || n == 0);
  ASSERT_EQ(A.array().size(), elements.size());
  EXPECT_SAME_ARRAY(elements.size(), A.array().data(), elements.data());
  EXPECT_LE(A.array().size(), A.array().capacity());
  EXPECT_TRUE(reference::rest_is_zero(A.array()));
}

TnLaDblMat counting(std::size_t m, std::size_t n) { return {counting(m * n).data(), m, n}; }

TnArray<double> array_of(const std::vector<double>& elements) {
  TnArray<double> a;
  a.set_size(elements.size(), false);
  for (std::size_t i = 0; i < elements.size(); ++i) a[i] = elements[i];
  return a;
}

TnLaDblVec vector_of(const std::vector<double>& elements) {
  return {elements.data(), static_cast<int>(elements.size())};
}

// The block grown to `room` and shrunk again, so that stale elements would show.
TnLaDblMat& make_room(TnLaDblMat& A, std::size_t room) {
  A = TnLaDblMat(room, 1, 0.0);
  A.initialize(kNaN);
  return A;
}

template <class Test>
void for_each_shape(Test test) {
  for (std::size_t m = 0; m <= 5; ++m) {
    for (std::size_t n = 0; n <= 5; ++n) {
      SCOPED_TRACE(testing::Message() << m << " x " << n);
      test(m, n);
    }
  }
}

// --- The interface -------------------------------------------------------------------------------------

using Const = const TnLaDblMat&;
static_assert(!std::is_polymorphic_v<TnLaDblMat>);
static_assert(std::is_same_v<decltype(std::declval<Const>().n_rows()), std::size_t>);
static_assert(std::is_same_v<decltype(std::declval<Const>().n_cols()), std::size_t>);
static_assert(std::is_same_v<decltype(std::declval<Const>().empty()), bool>);
static_assert(std::is_same_v<decltype(std::declval<Const>().array()), const TnArray<double>&>);
static_assert(std::is_same_v<decltype(std::declval<Const>()(0, 0)), const double&>);
static_assert(std::is_same_v<decltype(std::declval<TnLaDblMat&>()(0, 0)), double&>);
static_assert(std::is_same_v<decltype(std::declval<TnLaDblMat&>() = std::declval<Const>()), TnLaDblMat&>);

TEST(DenseMatrix, HoldsRowsThenColumnsThenTheArray) {
  const TnLaDblMat A(3, 2, 0.0);
  const char* const start = reinterpret_cast<const char*>(&A);
  std::size_t shape[2];
  std::memcpy(shape, start, sizeof shape);
  EXPECT_EQ(shape[0], 3u);
  EXPECT_EQ(shape[1], 2u);
  EXPECT_EQ(reinterpret_cast<const char*>(&A.array()), start + sizeof shape);
  EXPECT_EQ(sizeof A, sizeof shape + sizeof(TnArray<double>));
}

// --- Construction --------------------------------------------------------------------------------------

TEST(DenseMatrix, StartsWithoutRowsColumnsAndStorage) {
  const TnLaDblMat A;
  expect_is(A, 0, 0, {});
  EXPECT_EQ(A.array().capacity(), 0u);
  EXPECT_EQ(A.array().data(), nullptr);
}

TEST(DenseMatrix, ValueGoesToTheDiagonal) {
  for_each_shape([](std::size_t m, std::size_t n) {
    for (const double value : {1.0, -2.5, kNaN, kInf, kTiny, -kTiny}) {
      std::vector<double> expected(m * n, 0.0);
      for (std::size_t k = 0; k < m && k < n; ++k) expected[k * m + k] = value;
      expect_is(TnLaDblMat(m, n, value), m, n, expected);
    }
  });
}

// -0.0 is no value to write either.
TEST(DenseMatrix, ValueZeroGivesTheZeroMatrix) {
  for_each_shape([](std::size_t m, std::size_t n) {
    expect_is(TnLaDblMat(m, n, 0.0), m, n, std::vector<double>(m * n, 0.0));
    expect_is(TnLaDblMat(m, n, -0.0), m, n, std::vector<double>(m * n, 0.0));
  });
}

TEST(DenseMatrix, ValueByHand) {
  expect_is(TnLaDblMat(3, 2, 1.0), 3, 2, {1, 0, 0, 0, 1, 0});
  expect_is(TnLaDblMat(2, 3, 7.0), 2, 3, {7, 0, 0, 7, 0, 0});
}

TEST(DenseMatrix, IsReadFromPlainElementsColumnByColumn) {
  for_each_shape([](std::size_t m, std::size_t n) {
    const std::vector<double> p = Random(10 * m + n).any_vector(m * n);
    expect_is(TnLaDblMat(p.data(), m, n), m, n, p);
  });
  expect_is(TnLaDblMat(nullptr, 0, 7), 0, 7, {});
  expect_is(TnLaDblMat(nullptr, 7, 0), 7, 0, {});
}

TEST(DenseMatrix, TakesTheWholeColumnsOfAnArray) {
  for (std::size_t size = 0; size <= 13; ++size) {
    const std::vector<double> p = Random(size).any_vector(size);
    for (std::size_t m = 0; m <= 15; ++m) {
      SCOPED_TRACE(testing::Message() << size << " elements, " << m << " rows");
      const std::size_t n = m == 0 ? 0 : size / m;
      const TnLaDblMat A(array_of(p), m);
      expect_is(A, m, n, std::vector<double>(p.begin(), p.begin() + static_cast<std::ptrdiff_t>(m * n)));
      EXPECT_EQ(A.array().capacity(), reference::room_for(size));
    }
  }
  expect_is(TnLaDblMat(array_of(counting(7)), 3), 3, 2, {1, 2, 3, 4, 5, 6});
  expect_is(TnLaDblMat(array_of(counting(7)), kTop), kTop, 0, {});
}

TEST(DenseMatrix, ColumnsThatAnArrayDidNotFillAreZeroLater) {
  TnLaDblMat A(array_of(counting(7)), 3);
  A.resize(3, 3, true);
  expect_is(A, 3, 3, {1, 2, 3, 4, 5, 6, 0, 0, 0});
}

TEST(DenseMatrix, TakesAVectorAsRowOrColumn) {
  for (std::size_t n = 0; n <= 9; ++n) {
    const std::vector<double> p = Random(n).any_vector(n);
    expect_is(TnLaDblMat(vector_of(p), true), 1, n, p);
    expect_is(TnLaDblMat(vector_of(p), false), n, 1, p);
  }
}

TEST(DenseMatrix, ReservesByTheRuleOfGrowth) {
  for (const Room& room : reference::kFreshRooms) {
    SCOPED_TRACE(room.size);
    const std::vector<double> p(room.size, 2.0);
    const TnLaDblMat from_value(1, room.size, 1.0), from_elements(p.data(), room.size, 1);
    const TnLaDblMat from_array(array_of(p), 1), from_vector(vector_of(p), false),
        from_row(vector_of(p), true);
    const TnLaDblMat copy(from_elements);
    for (const TnLaDblMat* A : {&from_value, &from_elements, &from_array, &from_vector, &from_row, &copy}) {
      EXPECT_EQ(A->array().size(), room.size);
      EXPECT_EQ(A->array().capacity(), room.capacity);
      EXPECT_TRUE(reference::rest_is_zero(A->array()));
    }
  }
}

TEST(DenseMatrix, ConstructionThatOverflowsIsBadAlloc) {
  const double p[] = {1.0};
  const std::vector<std::pair<std::size_t, std::size_t>> shapes = {
      {kHalf, kHalf}, {kTop / 3 + 1, 3}, {2, kTop / 2 + 1}, {kTop, kTop},     {kTop, 1},
      {1, kTop},      {kTop / 3, 3},     {kTop - 4095, 1},  {kTop / 8 + 1, 1}};
  for (const auto& [m, n] : shapes) {
    SCOPED_TRACE(testing::Message() << m << " x " << n);
    const AssertionLog log;
    EXPECT_THROW(TnLaDblMat(m, n, 0.0), std::bad_alloc);
    EXPECT_THROW(TnLaDblMat(m, n, 1.0), std::bad_alloc);
    EXPECT_THROW(TnLaDblMat(p, m, n), std::bad_alloc);
    EXPECT_EQ(log.count(), 0u);
  }
  expect_is(TnLaDblMat(kTop, 0, 1.0), kTop, 0, {});
  expect_is(TnLaDblMat(0, kTop, 1.0), 0, kTop, {});
}

// --- Copies --------------------------------------------------------------------------------------------

TEST(DenseMatrix, CopyHasItsOwnElements) {
  for_each_shape([](std::size_t m, std::size_t n) {
    const std::vector<double> p = Random(10 * m + n).any_vector(m * n);
    TnLaDblMat A(p.data(), m, n);
    TnLaDblMat constructed(A), assigned;
    EXPECT_EQ(&(assigned = A), &assigned);
    A.initialize(7.0);
    expect_is(constructed, m, n, p);
    expect_is(assigned, m, n, p);
    constructed.initialize(8.0);
    assigned.initialize(9.0);
    expect_is(A, m, n, std::vector<double>(m * n, 7.0));
  });
}

TEST(DenseMatrix, ThereIsNoMove) {
  TnLaDblMat A = counting(2, 3);
  const TnLaDblMat B(std::move(A));
  expect_is(A, 2, 3, counting(6));
  TnLaDblMat C;
  C = std::move(A);
  expect_is(A, 2, 3, counting(6));
  expect_is(C, 2, 3, counting(6));
  expect_is(B, 2, 3, counting(6));
}

TEST(DenseMatrix, CopyIsSizedFromTheSourcesSizeNotItsCapacity) {
  TnLaDblMat A;
  make_room(A, 100);
  A = counting(3, 3);
  EXPECT_EQ(A.array().capacity(), 128u);
  EXPECT_EQ(TnLaDblMat(A).array().capacity(), 16u);
  TnLaDblMat B;
  B = A;
  EXPECT_EQ(B.array().capacity(), 16u);
}

TEST(DenseMatrix, AssignmentKeepsABlockThatSuffices) {
  for_each_shape([](std::size_t m, std::size_t n) {
    TnLaDblMat A;
    const double* const block = make_room(A, 32).array().data();
    A = counting(m, n);
    expect_is(A, m, n, counting(m * n));
    EXPECT_EQ(A.array().capacity(), 32u);
    EXPECT_EQ(A.array().data(), block);
  });
}

// 8 doubles to 16; 64 goes up to 70000 in steps of 4096.
TEST(DenseMatrix, AssignmentGrowsFromTheBlockAtHand) {
  TnLaDblMat A;
  make_room(A, 5);
  A = counting(3, 3);
  EXPECT_EQ(A.array().capacity(), 16u);
  make_room(A, 64);
  A = TnLaDblMat(70000, 1, 0.0);
  EXPECT_EQ(A.array().capacity(), 64u + 18u * 4096u);
}

TEST(DenseMatrix, SelfAssignmentDoesNothing) {
  for_each_shape([](std::size_t m, std::size_t n) {
    TnLaDblMat A;
    make_room(A, 32);
    A = counting(m, n);
    const double* const block = A.array().data();
    const TnLaDblMat& same = A;
    EXPECT_EQ(&(A = same), &A);
    expect_is(A, m, n, counting(m * n));
    EXPECT_EQ(A.array().data(), block);
    EXPECT_EQ(A.array().capacity(), 32u);
  });
}

// --- Elements ------------------------------------------------------------------------------------------

TEST(DenseMatrix, ElementsAreReadAndWrittenInPlace) {
  for_each_shape([](std::size_t m, std::size_t n) {
    TnLaDblMat A(m, n, 0.0);
    const AssertionLog log;
    for (std::size_t i = 0; i < m; ++i) {
      for (std::size_t j = 0; j < n; ++j) {
        A(i, j) = static_cast<double>(j * m + i + 1);
        EXPECT_EQ(&std::as_const(A)(i, j), A.array().data() + (j * m + i));
      }
    }
    expect_is(A, m, n, counting(m * n));
    EXPECT_EQ(log.count(), 0u);
  });
  const double p[] = {1, 2, 3, 4, 5, 6};
  const TnLaDblMat A(p, 2, 3);
  EXPECT_SAME(A(0, 1), 3.0);
  EXPECT_SAME(A(1, 0), 2.0);
}

// One check for both indices, then the array's own; the access takes place all the same.  The block is
// large enough for every access here.
TEST(DenseMatrix, IndexOutOfRangeIsAssertedAndUsed) {
  TnLaDblMat A;
  make_room(A, 32);
  A = counting(2, 3);
  const auto expect_access = [&A](std::size_t i, std::size_t j, const Files& files) {
    SCOPED_TRACE(testing::Message() << i << ", " << j);
    AssertionLog log;
    EXPECT_EQ(&A(i, j), A.array().data() + (2 * j + i));
    EXPECT_EQ(log.files(), files);
    log.clear();
    EXPECT_EQ(&std::as_const(A)(i, j), A.array().data() + (2 * j + i));
    EXPECT_EQ(log.files(), files);
  };
  expect_access(1, 2, {});
  expect_access(2, 0, {kElement});          // inside the array
  expect_access(5, 0, {kElement});          // its last element
  expect_access(6, 0, {kElement, kArray});  // the first place behind it
  expect_access(2, 2, {kElement, kArray});
  expect_access(0, 3, {kElement, kArray});
  expect_access(2, 3, {kElement, kArray});  // both indices, one check
}

TEST(DenseMatrix, EveryElementOfAnEmptyMatrixIsOutOfRange) {
  for (const std::size_t m : {0u, 2u}) {
    TnLaDblMat A;
    make_room(A, 4);
    A = TnLaDblMat(m, 2 - m, 0.0);
    const AssertionLog log;
    EXPECT_SAME(std::as_const(A)(0, 0), 0.0);
    EXPECT_EQ(log.files(), Files({kElement, kArray}));
  }
}

TEST(DenseMatrix, WithoutAHandlerNothingIsChecked) {
  TnLaDblMat A;
  make_room(A, 32);
  A = counting(2, 3);
  EXPECT_SAME(A(3, 0), 4.0);
  EXPECT_SAME(std::as_const(A)(0, 5), 0.0);
}

// The hook is read anew for each check.
TEST(DenseMatrix, AHandlerMayLeaveAfterItsFirstCall) {
  static int calls;
  calls = 0;
  TnLaDblMat A;
  make_room(A, 32);
  A = counting(2, 3);
  kit_assertion_handler = [](const char*, int) {
    ++calls;
    kit_assertion_handler = nullptr;
  };
  A(0, 3) = 0.0;
  EXPECT_EQ(calls, 1);
  EXPECT_EQ(kit_assertion_handler, nullptr);
}

// --- The pointer for the library's own algorithms ------------------------------------------------------

const double* elements_of(const TnLaDblMat& A);
double* elements_of(TnLaDblMat& A);

// An explicit instantiation may name private members.
template <const double* (TnLaDblMat::*Read)() const, double* (TnLaDblMat::*Write)()>
struct Door {
  friend const double* elements_of(const TnLaDblMat& A) { return (A.*Read)(); }
  friend double* elements_of(TnLaDblMat& A) { return (A.*Write)(); }
};
template struct Door<&TnLaDblMat::data, &TnLaDblMat::data>;

TEST(DenseMatrix, DataIsNullWhileTheMatrixIsEmptyAlsoInABlock) {
  TnLaDblMat A;
  make_room(A, 8);
  EXPECT_EQ(elements_of(A), A.array().data());
  EXPECT_EQ(elements_of(std::as_const(A)), A.array().data());
  for (const std::size_t m : {0u, 5u}) {
    A = TnLaDblMat(m, 5 - m, 0.0);
    EXPECT_NE(A.array().data(), nullptr);
    EXPECT_EQ(elements_of(A), nullptr);
    EXPECT_EQ(elements_of(std::as_const(A)), nullptr);
  }
}

// --- Setting all elements ------------------------------------------------------------------------------

TEST(DenseMatrix, InitializeSetsEveryElementAndNoOther) {
  for_each_shape([](std::size_t m, std::size_t n) {
    for (const double v : special_values()) {
      TnLaDblMat A;
      make_room(A, 32);
      A = counting(m, n);
      A.initialize(v);
      expect_is(A, m, n, std::vector<double>(m * n, v));
      EXPECT_EQ(A.array().capacity(), 32u);
    }
  });
}

TEST(DenseMatrix, InitializeCopiesPlainElements) {
  for_each_shape([](std::size_t m, std::size_t n) {
    const std::vector<double> p = Random(10 * m + n).any_vector(m * n);
    TnLaDblMat A;
    make_room(A, 32);
    A = counting(m, n);
    A.initialize(p.data());
    expect_is(A, m, n, p);
  });
  TnLaDblMat A(0, 4, 0.0);
  A.initialize(static_cast<const double*>(nullptr));
  expect_is(A, 0, 4, {});
}

// A hook call for the length, one more for each element that is not there and becomes 0.0.
TEST(DenseMatrix, InitializeCopiesTheFrontOfAnArray) {
  for_each_shape([](std::size_t m, std::size_t n) {
    for (std::size_t size = 0; size <= m * n + 3; ++size) {
      SCOPED_TRACE(testing::Message() << "from " << size);
      const TnArray<double> a = array_of(Random(size).any_vector(size));
      std::vector<double> expected(m * n, 0.0);
      std::copy_n(a.data(), std::min(size, m * n), expected.begin());
      Files files(size < m * n ? m * n - size : 0, kArray);
      if (size < m * n) files.insert(files.begin(), kMatrix);
      TnLaDblMat watched = counting(m, n), unwatched = counting(m, n);
      {
        const AssertionLog log;
        watched.initialize(a);
        EXPECT_EQ(log.files(), files);
      }
      expect_is(watched, m, n, expected);
      unwatched.initialize(a);
      expect_is(unwatched, m, n, expected);
    }
  });
}

// What an array holds behind its size is not an element.
TEST(DenseMatrix, InitializeReadsNoFurtherThanTheSize) {
  TnArray<double> a = array_of({1, 2, 3, 4, 5, 6, 7, 8});
  a.set_size(2, true);
  TnLaDblMat A(2, 2, 9.0);
  A.initialize(a);
  expect_is(A, 2, 2, {1, 2, 0, 0});
}

TEST(DenseMatrix, InitializeFromItselfChangesNothing) {
  for_each_shape([](std::size_t m, std::size_t n) {
    TnLaDblMat A = counting(m, n);
    const AssertionLog log;
    A.initialize(A.array());
    A.initialize(A.array().data());
    expect_is(A, m, n, counting(m * n));
    EXPECT_EQ(log.count(), 0u);
  });
}

TEST(DenseMatrix, InitializeMayReadFurtherOnInItsOwnBlock) {
  TnLaDblMat A = counting(5, 1);  // in a block of 8
  A.initialize(A.array().data() + 2);
  expect_is(A, 5, 1, {3, 4, 5, 0, 0});
}

TEST(DenseMatrix, AHandlerThatThrowsComesBeforeAnyChange) {
  TnLaDblMat A = counting(2, 2);
  const TnArray<double> a = array_of({9, 9, 9});
  const ThrowingAssertions handler;
  EXPECT_THROW(A.initialize(a), AssertionThrown);
  EXPECT_THROW(A(2, 0), AssertionThrown);
  expect_is(A, 2, 2, counting(4));
}

// --- The end -------------------------------------------------------------------------------------------

TEST(DenseMatrix, DestructionLeavesTheArrayFieldsZero) {
  alignas(TnLaDblMat) unsigned char place[sizeof(TnLaDblMat)];
  TnLaDblMat* const A = new (place) TnLaDblMat(3, 3, 1.0);
  A->~TnLaDblMat();
  std::size_t fields[3];  // the block, the capacity, the size
  std::memcpy(fields, place + sizeof place - sizeof fields, sizeof fields);
  for (const std::size_t field : fields) EXPECT_EQ(field, 0u);
}

}  // namespace
