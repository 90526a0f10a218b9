// SPDX-License-Identifier: MIT

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <memory>
#include <new>
#include <string>
#include <type_traits>
#include <vector>

#include "support/allocation.h"
#include "support/assertions.h"
#include "support/virtual_table.h"
#include "tnarray_i.h"

class TnLaHouseholder;

namespace {

constexpr std::size_t kMax = std::numeric_limits<std::size_t>::max();

// Hands out blocks without a zero bit in them, so that an element that nobody cleared shows.
template <class T>
class DirtyAllocator : public TnAllocator<T> {
 public:
  T* allocate(std::size_t n) const {
    T* const block = TnAllocator<T>::allocate(n);
    std::memset(static_cast<void*>(block), 0xff, n * sizeof(T));
    return block;
  }
};

// A value that differs from zero and from its neighbours'.
void set(double& x, std::size_t i) { x = static_cast<double>(i) + 0.5; }
void set(int& x, std::size_t i) { x = static_cast<int>(i) + 1; }
void set(TnLaHouseholder*& x, std::size_t i) {
  x = reinterpret_cast<TnLaHouseholder*>((i + 1) * sizeof(void*));  // never followed
}

template <class T>
T value(std::size_t i) {
  T x;
  set(x, i);
  return x;
}

template <class Array>
class TnArrayOf : public testing::Test {
 protected:
  using T = std::remove_pointer_t<decltype(std::declval<Array>().data())>;

  // n values in a block of `capacity` elements, by the growth rule unless given.
  static Array filled(std::size_t n, std::size_t capacity = 0) {
    Array a;
    if (capacity != 0) a.set_capacity(capacity, false);
    a.set_size(n, false);
    for (std::size_t i = 0; i < n; ++i) set(a[i], i);
    return a;
  }

  // The first n_values elements are the values of `filled`, all other slots of the block zero bits.
  static void expect_holds(const Array& a, std::size_t n_values, std::size_t size, std::size_t capacity) {
    ASSERT_EQ(a.size(), size);
    ASSERT_EQ(a.capacity(), capacity);
    ASSERT_EQ(a.data() == nullptr, capacity == 0);
    const T zero{};
    for (std::size_t i = 0; i < capacity; ++i) {
      const T expected = i < n_values ? value<T>(i) : zero;
      ASSERT_EQ(std::memcmp(a.data() + i, &expected, sizeof(T)), 0) << "slot " << i;
    }
  }
};

using Arrays = testing::Types<TnArray<double>, TnArray<int>, TnArray<TnLaHouseholder*>,
                              TnArray<double, DirtyAllocator<double>>, TnArray<int, DirtyAllocator<int>>>;
TYPED_TEST_SUITE(TnArrayOf, Arrays);

// The rule: powers of two times the capacity below 64000 elements, else steps of 4096 beyond it.
std::size_t grown(std::size_t capacity, std::size_t n) {
  if (n <= capacity) return capacity;
  if (n < 64000) {
    if (capacity == 0) capacity = 1;
    while (capacity < n) capacity = 2 * capacity;
    return capacity;
  }
  do capacity = capacity + 4096;
  while (capacity < n);
  return capacity;
}

// --- Layout ---------------------------------------------------------------------------------------------

TYPED_TEST(TnArrayOf, HasFiveFields) {
  EXPECT_EQ(sizeof(TypeParam), 40u);
  EXPECT_EQ(alignof(TypeParam), 8u);
  const TypeParam a = this->filled(3, 5);
  std::uintptr_t fields[5];
  std::memcpy(fields, static_cast<const void*>(&a), sizeof(fields));
  EXPECT_EQ(fields[2], reinterpret_cast<std::uintptr_t>(a.data()));
  EXPECT_EQ(fields[3], 5u);
  EXPECT_EQ(fields[4], 3u);
}

#if defined(HAS_TABLE_PLACE)
TYPED_TEST(TnArrayOf, SizeComesBeforeCapacityInTheVirtualTable) {
  EXPECT_TRUE(std::has_virtual_destructor_v<TypeParam>);
  EXPECT_EQ(table_place(&TypeParam::set_size), 2u);
  EXPECT_EQ(table_place(&TypeParam::set_capacity), 3u);
}
#endif

TYPED_TEST(TnArrayOf, StartsEmptyAndDoesNotAllocate) {
  const std::size_t before = allocation::made();
  const TypeParam a;
  this->expect_holds(a, 0, 0, 0);
  EXPECT_EQ(allocation::made(), before);
  EXPECT_TRUE(std::is_nothrow_default_constructible_v<TypeParam>);
}

// --- Growing and shrinking ------------------------------------------------------------------------------

TYPED_TEST(TnArrayOf, GrowsToTheNextPowerOfTwo) {
  const std::size_t capacities[][2] = {{1, 1}, {2, 2},  {3, 4},         {5, 8},
                                       {8, 8}, {9, 16}, {32769, 65536}, {63999, 65536}};
  for (const auto& [n, capacity] : capacities) {
    SCOPED_TRACE(n);
    TypeParam a;
    a.set_size(n, true);
    this->expect_holds(a, 0, n, capacity);
  }
}

TYPED_TEST(TnArrayOf, GrowsInStepsFrom64000On) {
  const std::size_t capacities[][2] = {
      {64000, 65536}, {65536, 65536}, {65537, 69632}, {69632, 69632}, {70000, 73728}};
  for (const auto& [n, capacity] : capacities) {
    SCOPED_TRACE(n);
    TypeParam a;
    a.set_size(n, true);
    this->expect_holds(a, 0, n, capacity);
  }
}

TYPED_TEST(TnArrayOf, GrowsByTheRuleFromAnyCapacity) {
  const std::size_t capacities[] = {0,    1,     2,     3,     5,     7,     8,     100,
                                    4096, 31999, 32000, 32001, 59904, 59905, 63999, 64000};
  const std::size_t sizes[] = {1,    2,     3,     4,     6,     7,     9,     101,   200,   201,
                               4097, 32000, 32001, 63998, 63999, 64000, 64001, 68095, 68096, 68097};
  for (const std::size_t capacity : capacities) {
    for (const std::size_t n : sizes) {
      SCOPED_TRACE(testing::Message() << "from " << capacity << " to " << n);
      TypeParam a;
      a.set_capacity(capacity, false);
      a.set_size(n, false);
      ASSERT_EQ(a.size(), n);
      ASSERT_EQ(a.capacity(), grown(capacity, n));
    }
  }
}

TYPED_TEST(TnArrayOf, GrowsOneByOne) {
  TypeParam a;
  for (std::size_t n = 1; n <= 300; ++n) {
    a.set_size(n, true);
    set(a[n - 1], n - 1);
    this->expect_holds(a, n, n, grown(0, n));
  }
}

TYPED_TEST(TnArrayOf, GrowingKeepsTheElementsIfTold) {
  TypeParam a = this->filled(5);
  a.set_size(9, true);
  this->expect_holds(a, 5, 9, 16);
}

TYPED_TEST(TnArrayOf, GrowingDropsTheElementsIfTold) {
  TypeParam a = this->filled(5);
  a.set_size(9, false);
  this->expect_holds(a, 0, 9, 16);
}

TYPED_TEST(TnArrayOf, LargeArrayKeepsItsElements) {
  TypeParam a = this->filled(64000);
  a.set_size(65537, true);
  this->expect_holds(a, 64000, 65537, 69632);
}

TYPED_TEST(TnArrayOf, SizeWithinTheCapacityKeepsBlockAndElements) {
  for (const bool keep : {false, true}) {
    TypeParam a = this->filled(5);
    const void* const block = a.data();
    const std::size_t before = allocation::made();
    for (const std::size_t n : {6u, 8u, 5u, 5u}) {
      a.set_size(n, keep);
      this->expect_holds(a, 5, n, 8);
    }
    EXPECT_EQ(a.data(), block);
    EXPECT_EQ(allocation::made(), before);
  }
}

TYPED_TEST(TnArrayOf, ShrinkingClearsWhatItLeaves) {
  for (const bool keep : {false, true}) {
    TypeParam a = this->filled(10);
    a.set_size(3, keep);
    this->expect_holds(a, 3, 3, 16);
    a.set_size(10, keep);
    this->expect_holds(a, 3, 10, 16);
  }
}

TYPED_TEST(TnArrayOf, EveryShrinkingClearsWhatItLeaves) {
  for (std::size_t size = 0; size <= 20; ++size) {
    for (std::size_t n = 0; n <= size; ++n) {
      SCOPED_TRACE(testing::Message() << "from " << size << " to " << n);
      TypeParam a = this->filled(size, 20);
      a.set_size(n, false);
      this->expect_holds(a, n, n, 20);
    }
  }
}

TYPED_TEST(TnArrayOf, ShrinkingKeepsTheBlock) {
  TypeParam a = this->filled(70000);
  const std::size_t before = allocation::alive();
  a.set_size(0, false);
  this->expect_holds(a, 0, 0, 73728);
  EXPECT_EQ(allocation::alive(), before);
}

// --- Capacity -------------------------------------------------------------------------------------------

TYPED_TEST(TnArrayOf, CapacityIsTakenExactly) {
  for (const bool keep : {false, true}) {
    for (const std::size_t capacity : {5u, 6u, 7u, 8u, 9u, 1000u, 64001u}) {
      SCOPED_TRACE(capacity);
      TypeParam a = this->filled(5);
      a.set_capacity(capacity, keep);
      this->expect_holds(a, keep ? 5 : 0, 5, capacity);
    }
  }
}

TYPED_TEST(TnArrayOf, BlockIsReplacedAtEqualCapacityToo) {
  for (const bool keep : {false, true}) {
    TypeParam a = this->filled(5);
    const void* const block = a.data();
    const std::size_t made = allocation::made(), alive = allocation::alive();
    a.set_capacity(8, keep);
    EXPECT_NE(a.data(), block);
    EXPECT_EQ(allocation::made(), made + 1);
    EXPECT_EQ(allocation::alive(), alive);
  }
}

TYPED_TEST(TnArrayOf, NoCapacityIsNoBlock) {
  for (const bool keep : {false, true}) {
    const std::size_t alive = allocation::alive();
    TypeParam a = this->filled(0, 8);
    EXPECT_EQ(allocation::alive(), alive + 1);
    const std::size_t made = allocation::made();
    a.set_capacity(0, keep);
    a.set_capacity(0, keep);
    a.set_size(0, keep);
    this->expect_holds(a, 0, 0, 0);
    EXPECT_EQ(allocation::alive(), alive);
    EXPECT_EQ(allocation::made(), made);
  }
}

TYPED_TEST(TnArrayOf, CapacityBelowTheSizeIsRefused) {
  TypeParam a = this->filled(5);
  const void* const block = a.data();
  const std::size_t made = allocation::made();
  a.set_capacity(4, true);
  a.set_capacity(0, false);
  EXPECT_EQ(allocation::made(), made);
  {
    const AssertionLog log;
    a.set_capacity(4, true);
    a.set_capacity(0, false);
    EXPECT_EQ(log.files(), Files(2, "interfaces/tnarray_t.h"));
  }
  {
    const ThrowingAssertions throwing;
    EXPECT_THROW(a.set_capacity(4, true), AssertionThrown);
  }
  EXPECT_EQ(a.data(), block);
  this->expect_holds(a, 5, 5, 8);
}

TYPED_TEST(TnArrayOf, NothingElseIsAsserted) {
  const AssertionLog log;
  TypeParam a = this->filled(5);
  a.set_capacity(5, true);
  a.set_size(2, false);
  a.set_size(9, true);
  const TypeParam copy(a);
  a = TypeParam();
  a = copy;
  a[8] = copy[0];
  EXPECT_EQ(log.files(), Files());
}

// --- Elements -------------------------------------------------------------------------------------------

TYPED_TEST(TnArrayOf, ElementIsASlotOfTheBlock) {
  TypeParam a = this->filled(5);
  const TypeParam& same = a;
  for (std::size_t i = 0; i < 5; ++i) {
    EXPECT_EQ(&a[i], a.data() + i);
    EXPECT_EQ(&same[i], same.data() + i);
  }
}

TYPED_TEST(TnArrayOf, IndexBeyondTheSizeIsAssertedAndTheAccessTakesPlace) {
  using Element = typename TestFixture::T;
  TypeParam a = this->filled(5);
  const TypeParam& same = a;
  AssertionLog log;
  for (const std::size_t i : {5u, 6u, 7u}) {
    log.clear();
    set(a[i], i);
    EXPECT_EQ(log.files(), Files({"interfaces/tnarray_i.h"})) << i;
    EXPECT_EQ(same[i], value<Element>(i));
    EXPECT_EQ(log.files(), Files(2, "interfaces/tnarray_i.h")) << i;
    EXPECT_EQ(same.data()[i], value<Element>(i));
  }
}

TYPED_TEST(TnArrayOf, IndexIsNotCheckedWithoutAHandler) {
  using Element = typename TestFixture::T;
  TypeParam a = this->filled(5);
  const TypeParam& same = a;
  set(a[6], 6);
  EXPECT_EQ(same[6], value<Element>(6));
}

TYPED_TEST(TnArrayOf, IndexIsUnsigned) {
  TypeParam a = this->filled(5);
  const TypeParam empty;
  const ThrowingAssertions throwing;
  EXPECT_THROW(a[kMax], AssertionThrown);
  EXPECT_THROW(empty[0], AssertionThrown);
}

// --- Copies ---------------------------------------------------------------------------------------------

TYPED_TEST(TnArrayOf, CopyIsDeepAndSizedFromTheSize) {
  const TypeParam source = this->filled(3, 100);
  const TypeParam copy(source);
  EXPECT_NE(copy.data(), source.data());
  this->expect_holds(copy, 3, 3, 4);
  const TypeParam empty = this->filled(0, 100);
  this->expect_holds(TypeParam(empty), 0, 0, 0);
}

TYPED_TEST(TnArrayOf, CopiesHoldEveryElement) {
  for (std::size_t n = 0; n <= 40; ++n) {
    const TypeParam source = this->filled(n);
    TypeParam assigned = this->filled(50);
    assigned = source;
    this->expect_holds(TypeParam(source), n, n, grown(0, n));
    this->expect_holds(assigned, n, n, 64);
  }
}

TYPED_TEST(TnArrayOf, AssignmentKeepsACapacityThatSuffices) {
  TypeParam target = this->filled(50, 100);
  const void* const block = target.data();
  EXPECT_EQ(&(target = this->filled(3)), &target);
  EXPECT_EQ(target.data(), block);
  this->expect_holds(target, 3, 3, 100);
  target = this->filled(100);
  EXPECT_EQ(target.data(), block);
  this->expect_holds(target, 100, 100, 100);
}

TYPED_TEST(TnArrayOf, AssignmentGrowsFromThePresentCapacity) {
  TypeParam target = this->filled(2, 3);
  target = this->filled(5);
  this->expect_holds(target, 5, 5, 6);
}

TYPED_TEST(TnArrayOf, AssignmentOfAnEmptyArrayClears) {
  TypeParam target = this->filled(5), empty;
  target = empty;
  this->expect_holds(target, 0, 0, 8);
  empty = TypeParam();
  this->expect_holds(empty, 0, 0, 0);
}

TYPED_TEST(TnArrayOf, SelfAssignmentChangesNothing) {
  TypeParam a = this->filled(5);
  const TypeParam& same = a;
  const void* const block = a.data();
  EXPECT_EQ(&(a = same), &a);
  EXPECT_EQ(a.data(), block);
  this->expect_holds(a, 5, 5, 8);
}

// --- Virtual operations ---------------------------------------------------------------------------------

// Tells what is called on it.  `off_by` elements too many or too few are set, as a class might that keeps
// a reserve of its own.
template <class Array>
class Watched : public Array {
 public:
  using Array::operator=;
  void set_size(std::size_t n, bool keep) override {
    calls += "size " + std::to_string(n) + (keep ? " keep; " : "; ");
    Array::set_size(n + off_by, keep);
  }
  void set_capacity(std::size_t n, bool keep) override {
    calls += "capacity " + std::to_string(n) + (keep ? " keep; " : "; ");
    asked = n;
    if (!refuses) Array::set_capacity(n, keep);
  }

  std::string calls;
  std::size_t asked = 0;
  std::size_t off_by = 0;
  bool refuses = false;
};

TYPED_TEST(TnArrayOf, GrowingAsksForACapacity) {
  Watched<TypeParam> a;
  a.set_size(5, true);
  EXPECT_EQ(a.calls, "size 5 keep; capacity 8 keep; ");
  a.calls.clear();
  a.set_size(9, false);
  EXPECT_EQ(a.calls, "size 9; capacity 16; ");
  a.calls.clear();
  a.set_size(16, true);
  a.set_size(2, true);
  EXPECT_EQ(a.calls, "size 16 keep; size 2 keep; ");
}

TYPED_TEST(TnArrayOf, AssignmentSetsTheSizeWithoutKeeping) {
  Watched<TypeParam> a;
  a = this->filled(3);
  EXPECT_EQ(a.calls, "size 3; capacity 4; ");
  this->expect_holds(a, 3, 3, 4);
  a.calls.clear();
  TypeParam& base = a;
  base = a;
  EXPECT_EQ(a.calls, "");
}

TYPED_TEST(TnArrayOf, SizeIsSetWhateverTheCapacityBecomes) {
  Watched<TypeParam> a;
  a.refuses = true;
  a.set_size(5, true);
  EXPECT_EQ(a.size(), 5u);
  EXPECT_EQ(a.capacity(), 0u);
}

TYPED_TEST(TnArrayOf, AssignmentCopiesNoMoreThanTheSourceHolds) {
  Watched<TypeParam> a;
  a.off_by = 2;
  TypeParam source = this->filled(3, 8);
  set(source.data()[3], 3);  // in reserve: no element
  const AssertionLog log;
  a = source;
  EXPECT_EQ(log.files(), Files());
  this->expect_holds(a, 3, 5, 8);
}

TYPED_TEST(TnArrayOf, AssignmentAssertsElementsThatTheTargetDoesNotHold) {
  Watched<TypeParam> a;
  a.set_capacity(8, false);
  a.off_by = kMax;  // one too few
  const TypeParam source = this->filled(3);
  const AssertionLog log;
  a = source;
  EXPECT_EQ(log.files(), Files({"interfaces/tnarray_i.h"}));
  EXPECT_EQ(a.size(), 2u);
  EXPECT_EQ(a.data()[2], source[2]);
}

TYPED_TEST(TnArrayOf, IsDeletedThroughItsBase) {
  const std::size_t alive = allocation::alive();
  std::unique_ptr<TypeParam> a = std::make_unique<Watched<TypeParam>>();
  a->set_size(5, false);
  EXPECT_GT(allocation::alive(), alive + 1);
  a.reset();
  EXPECT_EQ(allocation::alive(), alive);
}

// --- Memory ---------------------------------------------------------------------------------------------

TYPED_TEST(TnArrayOf, GivesBackAllItsMemory) {
  const std::size_t alive = allocation::alive();
  {
    TypeParam a = this->filled(5), b = this->filled(0, 7);
    EXPECT_EQ(allocation::alive(), alive + 2);
    a.set_size(70000, true);
    b = a;
    TypeParam c(b);
    c.set_capacity(80000, false);
    a = TypeParam();
    EXPECT_EQ(allocation::alive(), alive + 3);
  }
  EXPECT_EQ(allocation::alive(), alive);
}

TYPED_TEST(TnArrayOf, DestructorLeavesTheFieldsZero) {
  alignas(TypeParam) unsigned char storage[sizeof(TypeParam)];
  TypeParam* const a = new (storage) TypeParam(this->filled(5));
  a->~TypeParam();
  const volatile unsigned char* const bytes = storage;  // to be read from memory, whatever lived there
  for (std::size_t i = 2 * sizeof(void*); i < sizeof(TypeParam); ++i)
    EXPECT_EQ(bytes[i], 0) << "byte " << i;
}

// `grow` needs memory that is not there, and leaves the array as it was.
template <class Array, class Grow>
void expect_unchanged_on_failure(Array a, const Grow& grow) {
  const std::size_t size = a.size(), capacity = a.capacity(), alive = allocation::alive();
  const void* const block = a.data();
  const Array before(a);
  {
    const allocation::Failing failing(0, true);
    EXPECT_THROW(grow(a), std::bad_alloc);
    EXPECT_TRUE(failing.has_failed());
  }
  EXPECT_EQ(allocation::alive(), alive + (before.capacity() != 0));
  EXPECT_EQ(a.size(), size);
  EXPECT_EQ(a.capacity(), capacity);
  ASSERT_EQ(a.data(), block);
  for (std::size_t i = 0; i < size; ++i) EXPECT_EQ(a[i], before[i]);
}

TYPED_TEST(TnArrayOf, ExhaustedMemoryLeavesItAsItWas) {
  const TypeParam nine = this->filled(9);
  for (const std::size_t n : {0u, 5u}) {
    for (const bool keep : {false, true}) {
      expect_unchanged_on_failure(this->filled(n), [=](TypeParam& a) { a.set_size(9, keep); });
      expect_unchanged_on_failure(this->filled(n), [=](TypeParam& a) { a.set_size(64000, keep); });
      expect_unchanged_on_failure(this->filled(n), [=](TypeParam& a) { a.set_capacity(5, keep); });
    }
    expect_unchanged_on_failure(this->filled(n), [&](TypeParam& a) { a = nine; });
    expect_unchanged_on_failure(this->filled(n), [&](TypeParam&) { TypeParam copy(nine); });
  }
}

TYPED_TEST(TnArrayOf, SizeThatOverflowsIsExhaustedMemory) {
  constexpr std::size_t most = kMax / sizeof(typename TestFixture::T);
  for (const std::size_t n : {most + 1, most + 2, kMax - 8192, kMax - 4097, kMax - 4096, kMax - 4095,
                              kMax - 4094, kMax - 1, kMax}) {
    SCOPED_TRACE(n);
    TypeParam a = this->filled(5);
    const allocation::Failing failing(0, true);
    EXPECT_THROW(a.set_size(n, true), std::bad_alloc);
    EXPECT_THROW(a.set_capacity(n, true), std::bad_alloc);
    EXPECT_THROW(TypeParam().set_size(n, true), std::bad_alloc);
    EXPECT_FALSE(failing.has_failed()) << "asked for a block of another size";
    this->expect_holds(a, 5, 5, 8);
  }
}

// The largest sizes are only asked for: nothing of that kind can be had.
TYPED_TEST(TnArrayOf, CapacityNeverWrapsAround) {
  for (const std::size_t capacity : {0u, 1u, 100u, 65536u}) {
    for (std::size_t n = kMax - 4096 - 100; n <= kMax - 4096; ++n) {
      Watched<TypeParam> a;
      a.set_capacity(capacity, false);
      a.refuses = true;
      a.set_size(n, false);
      ASSERT_GE(a.asked, n);
      ASSERT_LT(a.asked - n, 4096u);
      ASSERT_EQ((a.asked - capacity) % 4096, 0u);
    }
    for (const std::size_t n : {kMax - 4094, kMax - 1, kMax}) {
      Watched<TypeParam> a;
      a.set_capacity(capacity, false);
      a.refuses = true;
      EXPECT_THROW(a.set_size(n, false), std::bad_alloc);
      EXPECT_EQ(a.size(), 0u);
    }
  }
}

// --- Allocator ------------------------------------------------------------------------------------------

TEST(TnAllocator, HasNoState) { EXPECT_TRUE(std::is_empty_v<TnAllocator<double>>); }

TEST(TnAllocator, HandsOutBlocksAndTakesThemBack) {
  const TnAllocator<double> allocator;
  const std::size_t alive = allocation::alive();
  double* const block = allocator.allocate(3);
  block[0] = block[2] = 1.0;
  EXPECT_EQ(allocation::alive(), alive + 1);
  allocator.release(block);
  allocator.release(nullptr);
  EXPECT_EQ(allocation::alive(), alive);
}

}  // namespace
