// SPDX-License-Identifier: MIT

#pragma once

#include <memory>

#include "common/case.h"

// What a peer's file, bench/<problem>/<peer>.cpp, has to provide.
//
// The file is built into a module of its own, with the peer's own flags and hidden symbols, so that peers
// which share templates or names of functions do not get each other's.
namespace bench {

class Task {
 public:
  Task() = default;
  Task(const Task&) = delete;
  Task& operator=(const Task&) = delete;
  virtual ~Task() = default;

  // What is timed.
  virtual void run(long long times) = 0;

  // What the last run has computed: matrices column by column, in the order that the problem's file states.
  virtual void answer(double* out) const = 0;
};

// The peer's task for a case; null where it has none.
std::unique_ptr<Task> make_task(const Case& c);

// Of the peer.
std::string version();

// A task from a Step, which takes what it needs from the case: step() is timed, answer(out) is not.
template <class Step>
class Repeated final : public Task {
 public:
  template <class... More>
  explicit Repeated(const Case& c, More... more) : step_(c, more...) {}

  void run(long long times) override {
    for (long long i = 0; i < times; ++i) {
      step_.step();
      asm volatile("" : : : "memory");  // the next step cannot know what this one has left in memory
    }
  }
  void answer(double* out) const override { step_.answer(out); }

 private:
  Step step_;
};

template <class Step, class... More>
std::unique_ptr<Task> task(const Case& c, More... more) {
  return std::make_unique<Repeated<Step>>(c, more...);
}

}  // namespace bench
