// SPDX-License-Identifier: MIT

#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <initializer_list>
#include <memory>
#include <new>
#include <string>
#include <utility>
#include <vector>

#include "support/allocation.h"
#include "support/bits.h"
#include "tarntnla.h"

// Runs an operation again and again, each time disturbed at another place: an allocation that fails, a
// check whose handler throws.  After every run nothing may be lost, the inputs must be as they were, the
// targets must be sound, and the operation must do its work when it is tried again.
namespace trial {

inline double as_number(double x) { return x; }
inline double as_number(int x) { return x; }
inline double as_number(const void* x) { return static_cast<double>(reinterpret_cast<std::uintptr_t>(x)); }

// Bits to compare a state by.
class Record {
 public:
  Record& add(double x) {
    values_.push_back(x);
    return *this;
  }
  Record& add(const double* x, std::size_t n) {
    values_.insert(values_.end(), x, x + n);
    return *this;
  }
  Record& add(const TnLaDblMat& m) {
    add(static_cast<double>(m.n_rows())).add(static_cast<double>(m.n_cols()));
    return add(m.array().data(), m.array().size());
  }
  Record& add(const TnLaDblVec& v) { return add(v.dim()).add(v.array().data(), v.array().size()); }
  Record& add(const char* text) {
    for (; *text != '\0'; ++text) add(static_cast<double>(*text));
    return *this;
  }
  // With its storage: for an array that must not have been touched at all.
  template <class T>
  Record& add_whole(const TnArray<T>& a) {
    add(static_cast<double>(a.size())).add(static_cast<double>(a.capacity()));
    for (std::size_t i = 0; i < a.capacity(); ++i) add(as_number(a.data()[i]));
    return add(as_number(a.data()));
  }

  testing::AssertionResult is(const Record& expected) const {
    if (values_.size() != expected.values_.size()) {
      return testing::AssertionFailure() << values_.size() << " values, not " << expected.values_.size();
    }
    return are_same("", "the state", "", values_.size(), values_.data(), expected.values_.data());
  }

 private:
  std::vector<double> values_;
};

// Where an operation leaves what it returns, without an allocation of its own.
class Results {
 public:
  void keep(double x) { values_[n_++ % kRoom] = x; }
  void keep(const TnLaDblMat& m) {
    keep(static_cast<double>(m.n_rows()));
    keep(static_cast<double>(m.n_cols()));
    keep(m.array());
  }
  void keep(const TnLaDblVec& v) { keep(v.array()); }
  template <class T>
  void keep(const TnArray<T>& a) {
    keep(static_cast<double>(a.size()));
    for (std::size_t i = 0; i < a.size(); ++i) keep(as_number(a.data()[i]));
  }
  void keep(const char* text) {
    for (; *text != '\0'; ++text) keep(static_cast<double>(*text));
  }
  template <int N>
  void keep(const TnLaTSmallVec<N, double>& v) {
    for (int i = 0; i < N; ++i) keep(v(i));
  }
  template <std::size_t N>
  void keep(const TnLaTSmallMat<N, N, double>& m) {
    for (std::size_t k = 0; k < N * N; ++k) keep(m(k % N, k / N));
  }

  void clear() { n_ = 0; }
  bool fit() const { return n_ <= kRoom; }
  const double* data() const { return values_; }
  std::size_t size() const { return n_; }

 private:
  static constexpr std::size_t kRoom = 8192;
  double values_[kRoom] = {};
  std::size_t n_ = 0;
};

constexpr int kAnyNumber = -1;

// A World has the inputs and targets of the operations of one family:
//   inputs()   what no operation may change
//   steady()   the targets that must be as they were after an operation that failed
//   all()      everything that can be seen
//   sound()    whether the targets are valid, whatever they hold
//   restore()  gives the targets their first values, by assignment, and forgets the results
template <class World>
struct Operation {
  std::string name;
  void (*run)(World&);
  int allocations = kAnyNumber;  // how many it makes, where that is promised
};

// Everything under trial is called from here.  Out of line, so that a profiler can tell what that is.
template <class World>
[[gnu::noinline]] void run_under_trial(const Operation<World>& operation, World& world) {
  operation.run(world);
}

// How a run went.
struct Run {
  bool disturbed;   // an allocation was refused, or the handler threw
  bool broken_off;  // the operation ended by the exception of that disturbance
};

inline int failures_so_far() {
  return testing::UnitTest::GetInstance()->current_test_info()->result()->total_part_count();
}

template <class World, class Disturb>
bool disturbed_run(const Operation<World>& operation, const Record& expected, Disturb disturb) {
  const int failures = failures_so_far();
  const std::size_t alive = allocation::alive();
  Run run{};
  {
    World world;
    const Record inputs = world.inputs();
    const Record steady = world.steady();
    run = disturb([&] { run_under_trial(operation, world); });
    EXPECT_EQ(run.broken_off, run.disturbed);
    EXPECT_TRUE(world.inputs().is(inputs)) << "an input has changed";
    EXPECT_TRUE(world.sound());
    if (run.disturbed) {
      EXPECT_TRUE(world.steady().is(steady)) << "a target is not as it was";
      world.restore();
      run_under_trial(operation, world);
    }
    EXPECT_TRUE(world.all().is(expected)) << (run.disturbed ? "at the second try" : "");
  }
  if (failures_so_far() == failures) {  // the text of a failure is alive too
    EXPECT_EQ(allocation::alive(), alive) << "blocks were lost";
  }
  return run.disturbed;
}

// What the operation leaves when nothing disturbs it.
template <class World>
Record undisturbed(const Operation<World>& operation) {
  World world;
  const std::size_t made = allocation::made();
  run_under_trial(operation, world);
  const std::size_t n = allocation::made() - made;
  if (operation.allocations != kAnyNumber) {
    EXPECT_EQ(n, static_cast<std::size_t>(operation.allocations));
  }
  EXPECT_TRUE(world.sound());
  return world.all();
}

// Whether a run is only to show what it calls, which takes no failures (tests/module/tried.py).
inline bool nothing_is_to_fail() { return std::getenv("NOTHING_IS_TO_FAIL") != nullptr; }

constexpr std::size_t kMostPlaces = 2000;  // a loop that got this far would not end

template <class World>
void expect_survives_exhaustion(const Operation<World>& operation) {
  SCOPED_TRACE(operation.name);
  const Record expected = undisturbed(operation);
  if (nothing_is_to_fail()) return;
  for (const bool for_good : {false, true}) {
    bool disturbed = true;
    for (std::size_t k = 0; disturbed; ++k) {
      ASSERT_LT(k, kMostPlaces);
      SCOPED_TRACE("allocation " + std::to_string(k) + (for_good ? " and all later" : "") + " fails");
      disturbed = disturbed_run(operation, expected, [&](auto&& run) {
        const allocation::Failing failing(k, for_good);
        try {
          run();
        } catch (const std::bad_alloc&) {
          return Run{failing.has_failed(), true};
        }
        return Run{failing.has_failed(), false};
      });
    }
  }
}

// A handler that throws at the k-th failed check.
class ThrowAt {
 public:
  struct Thrown {};

  explicit ThrowAt(std::size_t k) {
    n_to_go() = k;
    kit_assertion_handler = [](const char*, int) {
      if (n_to_go()-- == 0) throw Thrown();
    };
  }
  ~ThrowAt() { kit_assertion_handler = nullptr; }
  ThrowAt(const ThrowAt&) = delete;
  ThrowAt& operator=(const ThrowAt&) = delete;

 private:
  static std::size_t& n_to_go() {
    static std::size_t n = 0;
    return n;
  }
};

// Returns the number of checks that fail.
template <class World>
std::size_t expect_survives_throwing_handler(const Operation<World>& operation) {
  SCOPED_TRACE(operation.name);
  const Record expected = undisturbed(operation);
  for (std::size_t k = 0; k < kMostPlaces; ++k) {
    SCOPED_TRACE("the handler throws at failed check " + std::to_string(k));
    const bool disturbed = disturbed_run(operation, expected, [&](auto&& run) {
      const ThrowAt handler(k);
      try {
        run();
      } catch (const ThrowAt::Thrown&) {
        return Run{true, true};
      }
      return Run{false, false};
    });
    if (!disturbed) return k;
  }
  ADD_FAILURE() << "there is no end";
  return kMostPlaces;
}

// After a failure each target of a solve is as it was, resized, or solved: nothing else may be in it.
template <class World, class Matrix>
void expect_documented_targets(const Operation<World>& solve,
                               std::initializer_list<Matrix World::*> targets) {
  SCOPED_TRACE(solve.name);
  const auto first = std::make_unique<World>();
  const auto done = std::make_unique<World>();
  solve.run(*done);
  for (const bool for_good : {false, true}) {
    bool failed = true;
    for (std::size_t k = 0; failed; ++k) {
      ASSERT_LT(k, kMostPlaces);
      const auto world = std::make_unique<World>();
      failed = false;
      {
        const allocation::Failing failing(k, for_good);
        try {
          solve.run(*world);
        } catch (const std::bad_alloc&) {
          failed = true;
        }
      }
      for (Matrix World::*const target : targets) {
        const Matrix &before = (*first).*target, &solved = (*done).*target;
        Matrix resized = before;
        resized.resize(solved.n_rows(), solved.n_cols(), true);
        const Record now = Record().add((*world).*target);
        EXPECT_TRUE(now.is(Record().add(before)) || now.is(Record().add(resized)) ||
                    now.is(Record().add(solved)))
            << "allocation " << k;
      }
    }
  }
}

// --- Whole tables ----------------------------------------------------------------------------------------

template <class Table>
void expect_all_survive_exhaustion(const Table& table) {
  for (const auto& operation : table) expect_survives_exhaustion(operation);
}

// The solves and inversions of the table.
template <class Table, class World, class Matrix>
void expect_all_have_documented_targets(const Table& table,
                                        std::initializer_list<Matrix World::*> targets) {
  for (const auto& operation : table) {
    if (operation.name.starts_with("solve") || operation.name.starts_with("inverse")) {
      expect_documented_targets(operation, targets);
    }
  }
}

// Each operation of the table fails at least one check.
template <class Table>
void expect_all_survive_throwing_handlers(const Table& table) {
  for (const auto& operation : table) {
    EXPECT_GE(expect_survives_throwing_handler(operation), 1u) << operation.name;
  }
}

template <class World>
void expect_is_exhaustion(const Operation<World>& operation) {
  SCOPED_TRACE(operation.name);
  const std::size_t alive = allocation::alive();
  {
    World world;
    const Record inputs = world.inputs();
    const Record steady = world.steady();
    EXPECT_THROW(run_under_trial(operation, world), std::bad_alloc);
    EXPECT_TRUE(world.inputs().is(inputs));
    EXPECT_TRUE(world.steady().is(steady));
    EXPECT_TRUE(world.sound());
  }
  EXPECT_EQ(allocation::alive(), alive);
}

// Each operation of the table asks for more memory than there can be.
template <class Table>
void expect_all_are_exhaustion(const Table& table) {
  for (const auto& operation : table) expect_is_exhaustion(operation);
}

}  // namespace trial
