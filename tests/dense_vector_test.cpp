// SPDX-License-Identifier: MIT

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cstddef>
#include <cstring>
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

const Files kNone;
const Files kVector = {"src/tnla_matrix_vector.cpp"};
const Files kArray = {"interfaces/tnarray_i.h"};

// The elements, and zeros in the rest of the block.
void expect_is(const TnLaDblVec& x, const std::vector<double>& elements) {
  EXPECT_EQ(x.dim(), static_cast<int>(elements.size()));
  EXPECT_EQ(x.empty(), elements.empty());
  ASSERT_EQ(x.array().size(), elements.size());
  EXPECT_SAME_ARRAY(elements.size(), x.array().data(), elements.data());
  EXPECT_LE(x.array().size(), x.array().capacity());
  EXPECT_TRUE(reference::rest_is_zero(x.array()));
}

void expect_is_in_its_room(const TnLaDblVec& x, const std::vector<double>& elements, std::size_t room) {
  expect_is(x, elements);
  EXPECT_EQ(x.array().capacity(), room);
}

TnLaDblVec vector_of(const std::vector<double>& elements) {
  return {elements.data(), static_cast<int>(elements.size())};
}

TnArray<double> array_of(const std::vector<double>& elements) {
  TnArray<double> a;
  a.set_size(elements.size(), false);
  for (std::size_t i = 0; i < elements.size(); ++i) a[i] = elements[i];
  return a;
}

// Gives x these elements in a block of `room` or of the next power of two.
void set_up(TnLaDblVec& x, const std::vector<double>& elements, int room) {
  x = TnLaDblVec(room, -1, 0.0);
  x.initialize(kNaN);  // must not be seen again
  x = vector_of(elements);
}

// --- The interface -------------------------------------------------------------------------------------

using Const = const TnLaDblVec&;
static_assert(!std::is_polymorphic_v<TnLaDblVec>);
static_assert(std::is_same_v<decltype(std::declval<Const>().dim()), int>);
static_assert(std::is_same_v<decltype(std::declval<Const>().empty()), bool>);
static_assert(std::is_same_v<decltype(std::declval<Const>().array()), const TnArray<double>&>);
static_assert(std::is_same_v<decltype(std::declval<Const>()(0)), const double&>);
static_assert(std::is_same_v<decltype(std::declval<TnLaDblVec&>()(0)), double&>);
static_assert(std::is_same_v<decltype(std::declval<TnLaDblVec&>() = std::declval<Const>()), TnLaDblVec&>);
static_assert(sizeof(TnLaDblVec) == sizeof(TnArray<double>));

TEST(DenseVector, IsItsArray) {
  const TnLaDblVec x;
  EXPECT_EQ(static_cast<const void*>(&x.array()), static_cast<const void*>(&x));
}

// --- Construction --------------------------------------------------------------------------------------

TEST(DenseVector, StartsWithoutElementsAndStorage) {
  const TnLaDblVec x;
  expect_is_in_its_room(x, {}, 0);
  EXPECT_EQ(x.array().data(), nullptr);
}

TEST(DenseVector, ValueGoesToItsPlaceIfThereIsOne) {
  for (int n = 0; n <= 9; ++n) {
    for (const int k : {INT_MIN, -2, -1, 0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, INT_MAX}) {
      for (const double value : {7.0, 0.0, -0.0, kNaN, -kInf}) {
        SCOPED_TRACE(testing::Message() << value << " at " << k << " of " << n);
        std::vector<double> expected(static_cast<std::size_t>(n), 0.0);
        if (0 <= k && k < n) expected[static_cast<std::size_t>(k)] = value;
        const AssertionLog log;
        expect_is(TnLaDblVec(n, k, value), expected);
        EXPECT_EQ(log.files(), kNone);
      }
    }
  }
  expect_is(TnLaDblVec(5, 2, 7.0), {0, 0, 7, 0, 0});
  expect_is(TnLaDblVec(5, 9, 7.0), {0, 0, 0, 0, 0});
}

TEST(DenseVector, IsReadFromPlainElements) {
  for (std::size_t n = 0; n <= 40; ++n) {
    const std::vector<double> p = Random(n).any_vector(n);
    const AssertionLog log;
    expect_is(TnLaDblVec(p.data(), static_cast<int>(n)), p);
    EXPECT_EQ(log.files(), kNone);
  }
  expect_is(TnLaDblVec(nullptr, 0), {});
}

TEST(DenseVector, NegativeDimensionIsAssertedAndBecomesZero) {
  const std::vector<double> p = {1.0};
  for (const int n : {-1, -2, INT_MIN}) {
    SCOPED_TRACE(n);
    for (const int k : {-1, 0, n}) {
      AssertionLog log;
      expect_is_in_its_room(TnLaDblVec(n, k, 1.0), {}, 0);
      EXPECT_EQ(log.files(), kVector);
      log.clear();
      expect_is_in_its_room(TnLaDblVec(p.data(), n), {}, 0);
      EXPECT_EQ(log.files(), kVector);
    }
    expect_is_in_its_room(TnLaDblVec(n, 0, 1.0), {}, 0);
    expect_is_in_its_room(TnLaDblVec(p.data(), n), {}, 0);
  }
  const ThrowingAssertions handler;
  EXPECT_THROW(TnLaDblVec(-1, 0, 1.0), AssertionThrown);
  EXPECT_THROW(TnLaDblVec(p.data(), -1), AssertionThrown);
}

TEST(DenseVector, IsReadFromAnArray) {
  for (std::size_t n = 0; n <= 40; ++n) {
    const std::vector<double> p = Random(n).any_vector(n);
    expect_is(TnLaDblVec(array_of(p)), p);
  }
}

TEST(DenseVector, ReservesByTheRuleOfGrowth) {
  for (const Room& room : reference::kFreshRooms) {
    SCOPED_TRACE(room.size);
    const int n = static_cast<int>(room.size);
    const std::vector<double> p(room.size, 2.0), zeros(room.size, 0.0);
    expect_is_in_its_room(TnLaDblVec(n, -1, 1.0), zeros, room.capacity);
    expect_is_in_its_room(TnLaDblVec(p.data(), n), p, room.capacity);
    expect_is_in_its_room(TnLaDblVec(array_of(p)), p, room.capacity);
    const TnLaDblVec x = vector_of(p), copy(x);
    expect_is_in_its_room(copy, p, room.capacity);
    TnLaDblVec resized;
    resized.resize(n, true);
    expect_is_in_its_room(resized, zeros, room.capacity);
  }
}

// --- Copies --------------------------------------------------------------------------------------------

TEST(DenseVector, CopyHasItsOwnElements) {
  for (std::size_t n = 0; n <= 40; ++n) {
    const std::vector<double> p = Random(n).any_vector(n);
    TnLaDblVec x = vector_of(p);
    TnLaDblVec constructed(x), assigned, from_array(x.array());
    EXPECT_EQ(&(assigned = x), &assigned);
    x.initialize(7.0);
    expect_is(constructed, p);
    expect_is(assigned, p);
    expect_is(from_array, p);
    constructed.initialize(8.0);
    assigned.initialize(9.0);
    expect_is(x, std::vector<double>(n, 7.0));
  }
}

TEST(DenseVector, ThereIsNoMove) {
  TnLaDblVec x = vector_of(counting(5));
  const TnLaDblVec y(std::move(x));
  expect_is(x, counting(5));
  TnLaDblVec z;
  z = std::move(x);
  expect_is(x, counting(5));
  expect_is(y, counting(5));
  expect_is(z, counting(5));
}

TEST(DenseVector, CopyIsSizedFromTheSourcesSizeNotItsCapacity) {
  TnLaDblVec x;
  set_up(x, counting(9), 100);
  EXPECT_EQ(x.array().capacity(), 128u);
  expect_is_in_its_room(TnLaDblVec(x), counting(9), 16);
  expect_is_in_its_room(TnLaDblVec(x.array()), counting(9), 16);
}

TEST(DenseVector, AssignmentKeepsABlockThatSuffices) {
  for (std::size_t n = 0; n <= 17; ++n) {
    TnLaDblVec x(16, -1, 0.0);
    x.initialize(kNaN);
    const double* const block = x.array().data();
    x = vector_of(counting(n));
    expect_is_in_its_room(x, counting(n), n <= 16 ? 16 : 32);
    EXPECT_EQ(x.array().data() == block, n <= 16);
  }
}

TEST(DenseVector, SelfAssignmentDoesNothing) {
  for (std::size_t n = 0; n <= 9; ++n) {
    TnLaDblVec x;
    set_up(x, counting(n), 16);
    const double* const block = x.array().data();
    const TnLaDblVec& same = x;
    EXPECT_EQ(&(x = same), &x);
    expect_is_in_its_room(x, counting(n), 16);
    EXPECT_EQ(x.array().data(), block);
  }
}

// --- Elements ------------------------------------------------------------------------------------------

TEST(DenseVector, ElementsAreReadAndWrittenInPlace) {
  for (int n = 0; n <= 40; ++n) {
    TnLaDblVec x(n, -1, 0.0);
    const AssertionLog log;
    for (int i = 0; i < n; ++i) {
      x(i) = i + 1;
      EXPECT_EQ(&std::as_const(x)(i), x.array().data() + i);
    }
    expect_is(x, counting(static_cast<std::size_t>(n)));
    EXPECT_EQ(log.files(), kNone);
  }
}

TEST(DenseVector, IndexOutOfRangeIsAssertedAndUsed) {
  for (std::size_t n = 0; n <= 4; ++n) {
    TnLaDblVec x;
    set_up(x, counting(n), 8);  // room for every access here
    for (std::size_t i = n; i < 8; ++i) {
      AssertionLog log;
      EXPECT_EQ(&x(static_cast<int>(i)), x.array().data() + i);
      EXPECT_EQ(log.files(), kArray);
      log.clear();
      EXPECT_EQ(&std::as_const(x)(static_cast<int>(i)), x.array().data() + i);
      EXPECT_EQ(log.files(), kArray);
    }
    EXPECT_SAME(x(7), 0.0);  // no handler, no check
  }
}

TEST(DenseVector, NegativeIndexIsOutOfRange) {
  TnLaDblVec x(3, 0, 1.0);
  const ThrowingAssertions handler;
  for (const int i : {-1, -2, -3, INT_MIN}) {
    try {
      x(i) = 0.0;
      ADD_FAILURE() << i;
    } catch (const AssertionThrown& thrown) {
      EXPECT_EQ(thrown.file, kArray[0]);
    }
    EXPECT_THROW(std::as_const(x)(i), AssertionThrown);
  }
}

// --- The pointer for the library's own algorithms ------------------------------------------------------

const double* elements_of(const TnLaDblVec& x);
double* elements_of(TnLaDblVec& x);

// An explicit instantiation may name private members.
template <const double* (TnLaDblVec::*Read)() const, double* (TnLaDblVec::*Write)()>
struct Door {
  friend const double* elements_of(const TnLaDblVec& x) { return (x.*Read)(); }
  friend double* elements_of(TnLaDblVec& x) { return (x.*Write)(); }
};
template struct Door<&TnLaDblVec::data, &TnLaDblVec::data>;

TEST(DenseVector, DataIsNullWhileTheVectorIsEmptyAlsoInABlock) {
  TnLaDblVec x(8, 0, 1.0);
  EXPECT_EQ(elements_of(x), x.array().data());
  EXPECT_EQ(elements_of(std::as_const(x)), x.array().data());
  x.resize(0, true);
  EXPECT_NE(x.array().data(), nullptr);
  EXPECT_EQ(elements_of(x), nullptr);
  EXPECT_EQ(elements_of(std::as_const(x)), nullptr);
}

// --- Setting all elements ------------------------------------------------------------------------------

TEST(DenseVector, InitializeSetsEveryElementAndNoOther) {
  for (std::size_t n = 0; n <= 16; ++n) {
    for (const double v : special_values()) {
      TnLaDblVec x;
      set_up(x, counting(n), 16);
      x.initialize(v);
      expect_is_in_its_room(x, std::vector<double>(n, v), 16);
    }
  }
}

TEST(DenseVector, InitializeCopiesPlainElements) {
  for (std::size_t n = 0; n <= 16; ++n) {
    const std::vector<double> p = Random(n).any_vector(n);
    TnLaDblVec x;
    set_up(x, counting(n), 16);
    x.initialize(p.data());
    expect_is_in_its_room(x, p, 16);
  }
  TnLaDblVec x;
  x.initialize(static_cast<const double*>(nullptr));
  expect_is(x, {});
}

// A hook call for the length, one more for each element that is not there and becomes 0.0.
TEST(DenseVector, InitializeCopiesTheFrontOfAnArray) {
  for (std::size_t n = 0; n <= 8; ++n) {
    for (std::size_t size = 0; size <= n + 3; ++size) {
      SCOPED_TRACE(testing::Message() << n << " from " << size);
      const TnArray<double> a = array_of(Random(size).any_vector(size));
      std::vector<double> expected(n, 0.0);
      std::copy_n(a.data(), std::min(size, n), expected.begin());
      Files files(size < n ? n - size : 0, kArray[0]);
      if (size < n) files.insert(files.begin(), kVector[0]);
      TnLaDblVec watched = vector_of(counting(n)), unwatched = vector_of(counting(n));
      {
        const AssertionLog log;
        watched.initialize(a);
        EXPECT_EQ(log.files(), files);
      }
      expect_is(watched, expected);
      unwatched.initialize(a);
      expect_is(unwatched, expected);
    }
  }
}

TEST(DenseVector, InitializeFromItselfChangesNothing) {
  for (std::size_t n = 0; n <= 16; ++n) {
    TnLaDblVec x = vector_of(counting(n));
    const AssertionLog log;
    x.initialize(x.array());
    x.initialize(x.array().data());
    expect_is(x, counting(n));
    EXPECT_EQ(log.files(), kNone);
  }
}

TEST(DenseVector, InitializeMayReadFurtherOnInItsOwnBlock) {
  TnLaDblVec x = vector_of(counting(5));  // in a block of 8
  x.initialize(x.array().data() + 2);
  expect_is(x, {3, 4, 5, 0, 0});
}

TEST(DenseVector, InitializeThatThrowsFromTheHandlerChangesNothing) {
  TnLaDblVec x = vector_of(counting(3));
  const TnArray<double> a = array_of({9, 9});
  const ThrowingAssertions handler;
  EXPECT_THROW(x.initialize(a), AssertionThrown);
  expect_is(x, counting(3));
}

// --- Resize --------------------------------------------------------------------------------------------

TEST(DenseVector, ResizeKeepsTheFirstElementsOrNone) {
  for (std::size_t n = 0; n <= 17; ++n) {
    for (std::size_t to = 0; to <= 17; ++to) {
      for (const std::size_t room : {reference::room_for(n), std::size_t{32}}) {
        SCOPED_TRACE(testing::Message() << n << " to " << to << " in " << room);
        TnLaDblVec kept, cleared;
        set_up(kept, counting(n), static_cast<int>(room));
        set_up(cleared, counting(n), static_cast<int>(room));
        std::vector<double> expected = counting(n);
        expected.resize(to, 0.0);
        kept.resize(static_cast<int>(to), true);
        expect_is_in_its_room(kept, expected, reference::room_for(to, room));
        cleared.resize(static_cast<int>(to), false);
        expect_is_in_its_room(cleared, std::vector<double>(to, 0.0), reference::room_for(to, room));
      }
    }
  }
}

TEST(DenseVector, ResizeByHand) {
  TnLaDblVec x = vector_of(counting(10));
  x.resize(3, true);
  x.resize(10, true);
  expect_is_in_its_room(x, {1, 2, 3, 0, 0, 0, 0, 0, 0, 0}, 16);
  x.resize(3, false);
  expect_is_in_its_room(x, {0, 0, 0}, 16);
}

// From a block of 8: by doubling below 64000 elements, in steps of 4096 from there on.
TEST(DenseVector, ResizeGrowsFromTheBlockAtHand) {
  const Room rooms[] = {{63999, 65536}, {64000, 8 + 16 * 4096}, {70000, 8 + 18 * 4096}};
  for (const Room& room : rooms) {
    SCOPED_TRACE(room.size);
    TnLaDblVec x = vector_of(counting(5));
    x.resize(static_cast<int>(room.size), true);
    std::vector<double> expected = counting(5);
    expected.resize(room.size, 0.0);
    expect_is_in_its_room(x, expected, room.capacity);
  }
}

TEST(DenseVector, ResizeWithinTheBlockKeepsIt) {
  TnLaDblVec x = vector_of(counting(5));
  const double* const block = x.array().data();
  for (const int n : {8, 0, 7}) {
    x.resize(n, true);
    EXPECT_EQ(x.array().data(), block);
  }
}

TEST(DenseVector, ResizeToANegativeDimensionIsBadAlloc) {
  for (const int n : {-1, -4096, -4097, INT_MIN}) {
    for (const bool keep : {false, true}) {
      for (std::size_t dim = 0; dim <= 3; ++dim) {
        SCOPED_TRACE(testing::Message() << dim << " to " << n);
        TnLaDblVec x = vector_of(counting(dim));
        const AssertionLog log;
        EXPECT_THROW(x.resize(n, keep), std::bad_alloc);
        expect_is_in_its_room(x, counting(dim), reference::room_for(dim));
        EXPECT_EQ(log.files(), kNone);
      }
    }
  }
}

// --- Swap ----------------------------------------------------------------------------------------------

// The elements that both have change places.  x goes on with 0.0 where y has none; y keeps those that x
// has not.  Both keep their blocks.
TEST(DenseVector, SwapExchangesElementByElement) {
  for (std::size_t n = 0; n <= 6; ++n) {
    for (std::size_t m = 0; m <= 6; ++m) {
      for (const bool watched : {false, true}) {
        SCOPED_TRACE(testing::Message() << n << " with " << m);
        const std::vector<double> p = Random(n + 10 * m).any_vector(n), q = Random(m).any_vector(m);
        std::vector<double> p_after(n, 0.0), q_after = q;
        for (std::size_t i = 0; i < n && i < m; ++i) {
          p_after[i] = q[i];
          q_after[i] = p[i];
        }
        TnLaDblVec x, y;
        set_up(x, p, 8);
        set_up(y, q, 16);
        const double* const blocks[] = {x.array().data(), y.array().data()};
        AssertionLog log;
        if (!watched) kit_assertion_handler = nullptr;
        x.swap(y);
        EXPECT_EQ(log.files(), watched && n != m ? kVector : kNone);
        expect_is_in_its_room(x, p_after, 8);
        expect_is_in_its_room(y, q_after, 16);
        EXPECT_EQ(x.array().data(), blocks[0]);
        EXPECT_EQ(y.array().data(), blocks[1]);
      }
    }
  }
}

TEST(DenseVector, SwapWithItselfChangesNothing) {
  TnLaDblVec x = vector_of(counting(5));
  const AssertionLog log;
  x.swap(x);
  expect_is(x, counting(5));
  EXPECT_EQ(log.files(), kNone);
}

TEST(DenseVector, SwapThatThrowsFromTheHandlerChangesNothing) {
  TnLaDblVec x = vector_of(counting(3)), y = vector_of({7, 8});
  const ThrowingAssertions handler;
  EXPECT_THROW(x.swap(y), AssertionThrown);
  expect_is(x, counting(3));
  expect_is(y, {7, 8});
}

// --- The end -------------------------------------------------------------------------------------------

TEST(DenseVector, DestructionLeavesTheArrayFieldsZero) {
  alignas(TnLaDblVec) unsigned char place[sizeof(TnLaDblVec)];
  TnLaDblVec* const x = new (place) TnLaDblVec(3, 0, 1.0);
  x->~TnLaDblVec();
  std::size_t fields[3];  // the block, the capacity, the size
  std::memcpy(fields, place + sizeof place - sizeof fields, sizeof fields);
  for (const std::size_t field : fields) EXPECT_EQ(field, 0u);
}

}  // namespace
