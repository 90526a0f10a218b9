// SPDX-License-Identifier: MIT

#pragma once

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include "tnassert.h"

// Installs an assertion handler that records its calls, as long as the object lives.  One at a time.
//
//     AssertionLog log;
//     v.swap(other);
//     EXPECT_EQ(log.files(), Files({"src/tnla_matrix_vector.cpp"}));
class AssertionLog {
 public:
  AssertionLog() {
    calls().clear();
    kit_assertion_handler = &record;
  }
  ~AssertionLog() { kit_assertion_handler = nullptr; }
  AssertionLog(const AssertionLog&) = delete;
  AssertionLog& operator=(const AssertionLog&) = delete;

  // The files named so far, in the order of the calls; and each with its line, as "file:line".
  std::vector<std::string> files() const {
    std::vector<std::string> files;
    for (const Call& call : calls()) files.push_back(call.file);
    return files;
  }
  std::vector<std::string> places() const {
    std::vector<std::string> places;
    for (const Call& call : calls()) places.push_back(call.file + ":" + std::to_string(call.line));
    return places;
  }
  std::size_t count() const { return calls().size(); }
  void clear() { calls().clear(); }

 private:
  struct Call {
    std::string file;
    int line;
  };
  static std::vector<Call>& calls() {
    static std::vector<Call> calls;
    return calls;
  }
  static void record(const char* file, int line) { calls().push_back({file, line}); }
};

using Files = std::vector<std::string>;

// Installs a handler that throws AssertionThrown: it ends an operation at its first failed check, where
// going on would touch memory that is not there.
struct AssertionThrown {
  std::string file;
};

class ThrowingAssertions {
 public:
  ThrowingAssertions() {
    kit_assertion_handler = [](const char* file, int /*line*/) { throw AssertionThrown{file}; };
  }
  ~ThrowingAssertions() { kit_assertion_handler = nullptr; }
  ThrowingAssertions(const ThrowingAssertions&) = delete;
  ThrowingAssertions& operator=(const ThrowingAssertions&) = delete;
};
