// SPDX-License-Identifier: MIT

#include <gtest/gtest.h>

#include <climits>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <new>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "reference/dense_model.h"
#include "support/assertions.h"
#include "support/bits.h"
#include "support/values.h"
#include "tnla_matrix_vector_i.h"

// Every edit is done to a matrix and to a plain model of it, and the two are compared: shape, elements,
// capacity, and zeros behind the elements.

namespace {

using reference::Dense;
using reference::Edit;
using reference::Row;
using reference::Rows;

const Files kAsserted = {"src/tnla_matrix_vector.cpp"};
constexpr std::size_t kTop = std::numeric_limits<std::size_t>::max();
constexpr std::size_t kHalf = std::size_t{1} << 32;  // kHalf * kHalf is 0 in a size_t

void expect_is(const TnLaDblMat& A, const Dense& model) {
  ASSERT_EQ(A.n_rows(), model.n_rows());
  ASSERT_EQ(A.n_cols(), model.n_cols());
  ASSERT_EQ(A.array().size(), model.size());
  EXPECT_SAME_ARRAY(model.size(), A.array().data(), model.by_columns().data());
  EXPECT_TRUE(reference::rest_is_zero(A.array()));
}

void expect_is_in_its_room(const TnLaDblMat& A, const Dense& model) {
  expect_is(A, model);
  EXPECT_EQ(A.array().capacity(), model.room());
}

// Gives A the model's elements and room.
void set_up(TnLaDblMat& A, const Dense& model) {
  A = TnLaDblMat(model.room(), 1, 0.0);
  A.initialize(kNaN);  // must not be seen again
  A = TnLaDblMat(model.by_columns().data(), model.n_rows(), model.n_cols());
}

// An edit does the same to both, with and without a handler; the hook is called once if, and only if, the
// precondition fails.
template <class Change>
void expect_edit(const Dense& before, Change edit) {
  Dense after = before;
  const bool allowed = edit(after);
  TnLaDblMat watched;
  set_up(watched, before);
  {
    const AssertionLog log;
    edit(watched);
    EXPECT_EQ(log.files(), allowed ? Files() : kAsserted);
  }
  expect_is_in_its_room(watched, after);
  TnLaDblMat unwatched;
  set_up(unwatched, before);
  edit(unwatched);
  expect_is_in_its_room(unwatched, after);
}

template <class... Parts>
std::string text(const Parts&... parts) {
  std::ostringstream out;
  ((out << parts << ' '), ...);
  return out.str();
}

Dense numbered(std::size_t m, std::size_t n) {
  Dense A(m, n);
  for (std::size_t i = 0; i < m; ++i) {
    for (std::size_t j = 0; j < n; ++j) A.at(i, j) = static_cast<double>(10 * i + j + 1);
  }
  return A;
}

// Every shape up to 4 x 4, the empty ones too; each in a tight block and in a large one.
template <class Test>
void for_each_shape(Test test) {
  for (std::size_t m = 0; m <= 4; ++m) {
    for (std::size_t n = 0; n <= 4; ++n) {
      Dense A = numbered(m, n);
      for (const std::size_t room : {A.room(), std::size_t{64}}) {
        const testing::ScopedTrace trace(__FILE__, __LINE__, text(m, "x", n, "in", room));
        A.make_room(room);
        test(A);
      }
    }
  }
}

// Positions in a row of n, and around it.
std::vector<std::size_t> places(std::size_t n) {
  std::vector<std::size_t> all = {kTop - 1, kTop};
  for (std::size_t i = 0; i <= n + 1; ++i) all.push_back(i);
  return all;
}

template <class Change>
void for_each_count(const Dense& A, std::size_t n, const std::vector<int>& counts, Change edit) {
  for (const std::size_t pos : places(n)) {
    for (const int count : counts) {
      SCOPED_TRACE(text("pos", pos, "count", count));
      expect_edit(A, [=](auto& B) { return edit(B, pos, count); });
    }
  }
}

// --- Each edit at every shape and every boundary -------------------------------------------------------

TEST(Editing, ResizeKeepsWhatLiesInBothShapesAndClearsTheRest) {
  for_each_shape([](const Dense& A) {
    for (std::size_t m = 0; m <= 6; ++m) {
      for (std::size_t n = 0; n <= 6; ++n) {
        SCOPED_TRACE(text("to", m, "x", n));
        expect_edit(A, [=](auto& B) { return B.resize(m, n, true); });
        expect_edit(A, [=](auto& B) { return B.resize(m, n, false); });
      }
    }
  });
}

const std::vector<int> kInserted = {INT_MIN, -1, 0, 1, 2, 7};
const std::vector<int> kRemoved = {INT_MIN, -1, 0, 1, 2, 3, 4, 5, INT_MAX};

TEST(Editing, InsertedRowsAreZeroAndPushTheOthersDown) {
  for_each_shape([](const Dense& A) {
    for_each_count(A, A.n_rows(), kInserted,
                   [](auto& B, std::size_t pos, int count) { return B.insert_rows(pos, count); });
  });
}

TEST(Editing, InsertedColumnsAreZeroAndPushTheOthersRight) {
  for_each_shape([](const Dense& A) {
    for_each_count(A, A.n_cols(), kInserted,
                   [](auto& B, std::size_t pos, int count) { return B.insert_cols(pos, count); });
  });
}

TEST(Editing, RowsAreRemovedAsFarAsTheyGo) {
  for_each_shape([](const Dense& A) {
    for_each_count(A, A.n_rows(), kRemoved,
                   [](auto& B, std::size_t pos, int count) { return B.remove_rows(pos, count); });
  });
}

TEST(Editing, ColumnsAreRemovedAsFarAsTheyGo) {
  for_each_shape([](const Dense& A) {
    for_each_count(A, A.n_cols(), kRemoved,
                   [](auto& B, std::size_t pos, int count) { return B.remove_cols(pos, count); });
  });
}

TEST(Editing, CoilupFoldsCyclicallyOrAssertsWhereThereIsNothingToFoldOnto) {
  for_each_shape([](const Dense& A) {
    for (const std::size_t n : places(4)) {
      SCOPED_TRACE(text("onto", n));
      expect_edit(A, [=](auto& B) { return B.coilup_rows(n); });
      expect_edit(A, [=](auto& B) { return B.coilup_cols(n); });
    }
  });
}

TEST(Editing, SwapsExchangeOrIgnoreSilently) {
  for_each_shape([](const Dense& A) {
    for (const std::size_t i : places(4)) {
      for (const std::size_t j : places(4)) {
        SCOPED_TRACE(text(i, "and", j));
        expect_edit(A, [=](auto& B) { return B.swap_rows(i, j); });
        expect_edit(A, [=](auto& B) { return B.swap_cols(i, j); });
      }
    }
  });
}

TEST(Editing, TheFlagChoosesRowsOrColumns) {
  for_each_shape([](const Dense& A) {
    for (const bool rows : {false, true}) {
      SCOPED_TRACE(text("rows", rows));
      expect_edit(A, [=](auto& B) { return B.insert(1, 2, rows); });
      expect_edit(A, [=](auto& B) { return B.remove(1, 2, rows); });
      expect_edit(A, [=](auto& B) { return B.coilup(2, rows); });
      expect_edit(A, [=](auto& B) { return B.swap(0, 2, rows); });
      expect_edit(A, [=](auto& B) { return B.swap(2, 2, rows); });
      expect_edit(A, [=](auto& B) { return B.swap(0, 3, rows); });
      expect_edit(A, [=](auto& B) { return B.insert(5, 1, rows); });
      expect_edit(A, [=](auto& B) { return B.remove(4, 1, rows); });
      expect_edit(A, [=](auto& B) { return B.coilup(0, rows); });
    }
  });
}

TEST(Editing, TransposeExchangesRowsAndColumnsInTheSameRoom) {
  for_each_shape([](const Dense& A) { expect_edit(A, [](auto& B) { return B.transpose(); }); });
}

TEST(Editing, SetDiagonalSetsTheElementsAtItsOffsetOnly) {
  for_each_shape([](const Dense& A) {
    for (const int offset : {INT_MIN, -5, -4, -3, -2, -1, 0, 1, 2, 3, 4, 5, INT_MAX}) {
      SCOPED_TRACE(text("offset", offset));
      expect_edit(A, [=](auto& B) { return B.set_diagonal(-0.5, offset); });
      expect_edit(A, [=](auto& B) { return B.set_diagonal(kNaN, offset); });
      expect_edit(A, [=](auto& B) { return B.set_diagonal(-0.0, offset); });
    }
  });
}

void expect_vector(const TnLaDblVec& v, const std::vector<double>& elements) {
  ASSERT_EQ(static_cast<std::size_t>(v.dim()), elements.size());
  EXPECT_SAME_ARRAY(elements.size(), v.array().data(), elements.data());
  EXPECT_EQ(v.array().capacity(), reference::room_for(elements.size()));
  EXPECT_TRUE(reference::rest_is_zero(v.array()));
}

// The extraction gives the elements where the line exists, else a call of the hook and an empty vector.
template <class Extract>
void expect_line(bool exists, const std::vector<double>& elements, Extract extract) {
  {
    const AssertionLog log;
    expect_vector(extract(), elements);
    EXPECT_EQ(log.files(), exists ? Files() : kAsserted);
  }
  expect_vector(extract(), elements);
}

TEST(Editing, RowsAndColumnsAreCopiedOut) {
  for_each_shape([](const Dense& model) {
    TnLaDblMat A;
    set_up(A, model);
    for (const std::size_t k : places(4)) {
      SCOPED_TRACE(text("line", k));
      const bool row_exists = k < model.n_rows() && model.n_cols() > 0;
      const bool col_exists = k < model.n_cols() && model.n_rows() > 0;
      expect_line(row_exists, row_exists ? model.row(k) : Row(), [&] { return A.row_vec(k); });
      expect_line(col_exists, col_exists ? model.col(k) : Row(), [&] { return A.col_vec(k); });
    }
    expect_is_in_its_room(A, model);
  });
}

TEST(Editing, TrIsATransposedCopy) {
  for_each_shape([](const Dense& model) {
    TnLaDblMat A;
    set_up(A, model);
    Dense flipped = model;
    flipped.transpose();
    flipped.make_room(reference::room_for(model.size()));
    expect_is_in_its_room(std::as_const(A).tr(), flipped);
    expect_is_in_its_room(A, model);
  });
}

// --- Cases by hand -------------------------------------------------------------------------------------

// Does an edit to a matrix of these rows; the result has to be `after`.
template <class Change>
void expect_edit(const Rows& before, const Rows& after, Change edit) {
  TnLaDblMat A;
  set_up(A, Dense(before));
  edit(A);
  expect_is(A, Dense(after));
}

const Rows k3x2 = {{1, 4}, {2, 5}, {3, 6}};
const Rows k2x2 = {{1, 3}, {2, 4}};
const Rows k3x3 = {{1, 4, 7}, {2, 5, 8}, {3, 6, 9}};
const Rows k4x3 = {{1, 5, 9}, {2, 6, 10}, {3, 7, 11}, {4, 8, 12}};

TEST(EditingByHand, Resize) {
  expect_edit(k3x2, {{1, 4, 0, 0}, {2, 5, 0, 0}, {3, 6, 0, 0}}, [](auto& A) { A.resize(3, 4, true); });
  expect_edit(k3x2, {{1, 4}, {2, 5}}, [](auto& A) { A.resize(2, 2, true); });
  expect_edit(k3x2, {{1}, {2}, {3}, {0}}, [](auto& A) { A.resize(4, 1, true); });
  expect_edit(k3x2, {{0}, {0}, {0}}, [](auto& A) { A.resize(3, 1, false); });
  expect_edit(k3x2, {{0, 0, 0}, {0, 0, 0}}, [](auto& A) { A.resize(2, 3, false); });
}

TEST(EditingByHand, InsertAndRemove) {
  expect_edit(k2x2, {{0, 0}, {0, 0}, {1, 3}, {2, 4}}, [](auto& A) { A.insert_rows(0, 2); });
  expect_edit(k2x2, {{1, 3}, {0, 0}, {2, 4}}, [](auto& A) { A.insert_rows(1, 1); });
  expect_edit(k2x2, {{1, 3}, {2, 4}, {0, 0}}, [](auto& A) { A.insert_rows(2, 1); });
  expect_edit(k2x2, k2x2, [](auto& A) { A.insert_rows(5, 1); });
  expect_edit(k2x2, {{1, 0, 0, 3}, {2, 0, 0, 4}}, [](auto& A) { A.insert_cols(1, 2); });
  expect_edit(k4x3, {{1, 5, 9}}, [](auto& A) { A.remove_rows(1, 10); });
  expect_edit(k4x3, {{1, 5, 9}, {4, 8, 12}}, [](auto& A) { A.remove_rows(1, 2); });
  expect_edit(k4x3, k4x3, [](auto& A) { A.remove_cols(3, 1); });
  expect_edit(k4x3, {{5, 9}, {6, 10}, {7, 11}, {8, 12}}, [](auto& A) { A.remove_cols(0, 1); });
}

TEST(EditingByHand, Coilup) {
  expect_edit({{1}, {2}, {3}, {4}, {5}}, {{9}, {6}}, [](auto& A) { A.coilup_rows(2); });
  expect_edit({{1, 2, 3, 4, 5}}, {{9, 6}}, [](auto& A) { A.coilup_cols(2); });
  expect_edit(k4x3, k4x3, [](auto& A) { A.coilup_cols(5); });
}

// 1e16 absorbs a 1 that is added to it, so that the sum tells the order.
TEST(EditingByHand, CoilupAddsInAscendingOrder) {
  expect_edit({{1}, {1e16}, {1}, {-1e16}}, {{0}}, [](auto& A) { A.coilup_rows(1); });
  expect_edit({{1}, {1}, {1e16}, {-1e16}}, {{2}}, [](auto& A) { A.coilup_rows(1); });
  expect_edit({{1, 1e16, 1, -1e16}}, {{0}}, [](auto& A) { A.coilup_cols(1); });
  expect_edit({{1, 1, 1e16, -1e16}}, {{2}}, [](auto& A) { A.coilup_cols(1); });
}

TEST(EditingByHand, CoilupOfNegativeZerosStaysNegative) {
  expect_edit({{-0.0}, {-0.0}, {-0.0}}, {{-0.0}}, [](auto& A) { A.coilup_rows(1); });
  expect_edit({{-0.0, -0.0, -0.0}}, {{-0.0}}, [](auto& A) { A.coilup_cols(1); });
}

TEST(EditingByHand, SwapTransposeSetDiagonal) {
  expect_edit(k3x3, k3x3, [](auto& A) { A.swap_rows(0, 7); });
  expect_edit(k3x3, {{3, 6, 9}, {2, 5, 8}, {1, 4, 7}}, [](auto& A) { A.swap_rows(0, 2); });
  expect_edit(k3x3, {{1, 7, 4}, {2, 8, 5}, {3, 9, 6}}, [](auto& A) { A.swap_cols(2, 1); });
  expect_edit(k3x2, {{1, 2, 3}, {4, 5, 6}}, [](auto& A) { A.transpose(); });
  expect_edit(k3x3, {{1, 2, 3}, {4, 5, 6}, {7, 8, 9}}, [](auto& A) { A.transpose(); });
  expect_edit(k3x3, {{1, 4, 7}, {1, 5, 8}, {3, 1, 9}}, [](auto& A) { A.set_diagonal(1.0, -1); });
  expect_edit(k3x3, {{1, 4, 0.5}, {2, 5, 8}, {3, 6, 9}}, [](auto& A) { A.set_diagonal(0.5, 2); });
}

// --- Long sequences of edits ---------------------------------------------------------------------------

// Positions up to two behind the last; counts that keep the matrix within about 40 x 40.
Edit draw(Random& random, const Dense& A) {
  Edit edit{random.below(Edit::kKinds), random.below(A.n_rows() + 3), random.below(A.n_cols() + 3), 0,
            false};
  if (A.size() == 0 && random.below(2) == 0) return {0, random.below(40), random.below(40), 0, true};
  if (edit.kind == 0 && random.below(3) > 0) edit.i = A.n_rows();
  if (edit.kind == 0 && random.below(3) > 0) edit.j = random.below(40);
  if (edit.kind == 0 && random.below(6) == 0) edit.i = random.below(40);
  edit.count = static_cast<int>(random.below(6)) - 1;
  if (edit.kind == 1 && A.n_rows() > 35) edit.count = 0;
  if (edit.kind == 2 && A.n_cols() > 35) edit.count = 0;
  if (edit.kind == 9) edit.count -= 2;
  edit.keep = random.below(8) > 0;
  return edit;
}

// New elements for a matrix and its model.
void refill(Random& random, TnLaDblMat& A, Dense& model) {
  for (std::size_t i = 0; i < model.n_rows(); ++i) {
    for (std::size_t j = 0; j < model.n_cols(); ++j) model.at(i, j) = random.any();
  }
  A.initialize(model.by_columns().data());
}

void expect_random_edits(std::uint64_t seed) {
  Random random(seed);
  TnLaDblMat A;
  Dense model;
  for (int step = 0; step < 150 && !testing::Test::HasFailure(); ++step) {
    if (random.below(3) == 0) refill(random, A, model);
    const Edit edit = draw(random, model);
    SCOPED_TRACE(text("seed", seed, "step", step, "kind", edit.kind, "at", edit.i, edit.j, "count",
                      edit.count, "keep", edit.keep, "on", model.n_rows(), "x", model.n_cols()));
    const AssertionLog log;
    const bool allowed = edit.apply(model);
    edit.apply(A);
    EXPECT_EQ(log.files(), allowed ? Files() : kAsserted);
    expect_is_in_its_room(A, model);
  }
}

TEST(EditingAtRandom, SequencesOfEditsLeaveWhatTheModelSays) {
  for (std::uint64_t seed = 1; seed <= 60; ++seed) expect_random_edits(seed);
}

// Around the widths that a loop might be cut into.
TEST(EditingAtRandom, EveryEditAtLargerShapes) {
  const std::vector<std::size_t> lengths = {7, 8, 15, 17, 32, 33, 40};
  for (const std::size_t m : lengths) {
    for (const std::size_t n : lengths) {
      Random random(100 * m + n);
      for (std::size_t kind = 0; kind < Edit::kKinds; ++kind) {
        SCOPED_TRACE(text(m, "x", n, "kind", kind));
        Dense A(m, n);
        for (std::size_t k = 0; k < m * n; ++k) A.at(k % m, k / m) = random.any();
        const Edit edit{kind, random.below(m), random.below(n), 3, true};
        expect_edit(A, [&](auto& B) { return edit.apply(B); });
      }
    }
  }
}

TEST(EditingAtRandom, LargeMatricesGrowFromTheRoomTheyHave) {
  TnLaDblMat A(300, 200, 1.0);  // 60000 elements in 65536
  Dense model(300, 200);
  model.set_diagonal(1.0, 0);
  const std::vector<Edit> edits = {{2, 0, 100, 30, true}, {1, 150, 0, 7, true}, {0, 307, 250, 0, true}};
  const std::size_t rooms[] = {65536 + 4096, 69632 + 4096, 73728 + 4096};  // 69000, 70610, 76750 elements
  for (std::size_t k = 0; k < edits.size(); ++k) {
    SCOPED_TRACE(text("edit", k));
    edits[k].apply(model);
    edits[k].apply(A);
    expect_is_in_its_room(A, model);
    EXPECT_EQ(A.array().capacity(), rooms[k]);
  }
}

// --- Memory, overflow and handlers that throw ----------------------------------------------------------

TEST(EditingInPlace, BlocksStayWhereTheRowsStayAndTheRoomSuffices) {
  TnLaDblMat A(4, 8, 1.0);
  const double* const block = A.array().data();
  A.remove_cols(2, 4);
  A.insert_cols(1, 3);
  A.resize(4, 8, true);
  A.resize(4, 2, false);
  EXPECT_EQ(A.array().data(), block);
}

TEST(EditingInPlace, RemovedRowsLeaveNothingThatAWiderMatrixWouldShow) {
  const auto edit = [](auto& A) {
    A.remove_rows(0, 2);
    A.resize(2, 6, true);
  };
  expect_edit(k4x3, {{3, 7, 11, 0, 0, 0}, {4, 8, 12, 0, 0, 0}}, edit);
}

// The edit throws `Thrown` and leaves shape, elements and block alone.
template <class Thrown, class Change>
void expect_refused(TnLaDblMat& A, Change edit) {
  const TnLaDblMat before(A);
  const double* const block = A.array().data();
  EXPECT_THROW(edit(A), Thrown);
  EXPECT_EQ(A.n_rows(), before.n_rows());
  EXPECT_EQ(A.n_cols(), before.n_cols());
  ASSERT_EQ(A.array().size(), before.array().size());
  EXPECT_SAME_ARRAY(before.array().size(), A.array().data(), before.array().data());
  EXPECT_EQ(A.array().data(), block);
}

template <class Change>
void expect_no_memory(std::size_t m, std::size_t n, Change edit) {
  SCOPED_TRACE(text(m, "x", n));
  TnLaDblMat A(m, n, 3.0);
  const AssertionLog log;
  expect_refused<std::bad_alloc>(A, edit);
  EXPECT_EQ(log.count(), 0u);
}

TEST(EditingOverflow, ResizeIsRefused) {
  for (const bool keep : {false, true}) {
    expect_no_memory(3, 2, [=](auto& A) { A.resize(kHalf, kHalf, keep); });
    expect_no_memory(3, 2, [=](auto& A) { A.resize(3, kTop / 3 + 1, keep); });
    expect_no_memory(3, 2, [=](auto& A) { A.resize(kTop / 2 + 1, 2, keep); });
    expect_no_memory(3, 2, [=](auto& A) { A.resize(3, kTop / 3, keep); });
    expect_no_memory(3, 2, [=](auto& A) { A.resize(kTop, 1, keep); });
    expect_no_memory(3, 2, [=](auto& A) { A.resize(kTop / 8 + 1, 1, keep); });
    expect_no_memory(kHalf, 0, [=](auto& A) { A.resize(kHalf, kHalf, keep); });
  }
}

TEST(EditingOverflow, InsertionIsRefused) {
  expect_no_memory(kTop - 2, 0, [](auto& A) { A.insert_rows(0, 3); });
  expect_no_memory(0, kTop - 2, [](auto& A) { A.insert_cols(0, 3); });
  expect_no_memory(0, kTop / 4 + 1, [](auto& A) { A.insert_rows(0, 4); });
  expect_no_memory(kTop / 4 + 1, 0, [](auto& A) { A.insert_cols(0, 4); });
  expect_no_memory(0, kTop / 8 + 1, [](auto& A) { A.insert_rows(0, 1); });
  expect_no_memory(kTop / 8 + 1, 0, [](auto& A) { A.insert_cols(0, 1); });
}

// What is empty takes no memory, however long it is.
TEST(EditingOverflow, EmptyShapesReachToTheTop) {
  TnLaDblMat A(kTop - 2, 0, 1.0);
  A.insert_rows(kTop - 2, 2);
  EXPECT_EQ(A.n_rows(), kTop);
  A.remove_rows(5, INT_MAX);
  EXPECT_EQ(A.n_rows(), kTop - INT_MAX);
  A.resize(0, kTop - 2, true);
  A.insert_cols(0, 2);
  EXPECT_EQ(A.n_cols(), kTop);
  A.coilup_cols(0);
  EXPECT_EQ(A.n_cols(), 0u);
  A.insert_cols(0, INT_MAX);
  EXPECT_EQ(A.n_cols(), std::size_t{INT_MAX});
  EXPECT_EQ(A.array().capacity(), 0u);
}

TEST(EditingAsserted, AHandlerThatThrowsLeavesTheMatrixAsItWas) {
  TnLaDblMat A;
  set_up(A, Dense(k4x3));
  const ThrowingAssertions handler;
  expect_refused<AssertionThrown>(A, [](auto& B) { B.insert_rows(5, 1); });
  expect_refused<AssertionThrown>(A, [](auto& B) { B.insert_cols(4, 1); });
  expect_refused<AssertionThrown>(A, [](auto& B) { B.remove_rows(4, 1); });
  expect_refused<AssertionThrown>(A, [](auto& B) { B.remove_cols(3, 1); });
  expect_refused<AssertionThrown>(A, [](auto& B) { B.coilup_rows(0); });
  expect_refused<AssertionThrown>(A, [](auto& B) { B.coilup_cols(0); });
  expect_refused<AssertionThrown>(A, [](auto& B) { B.row_vec(4); });
  expect_refused<AssertionThrown>(A, [](auto& B) { B.col_vec(3); });
}

}  // namespace
