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

  // The files named so far, in the order of the calls.
  std::vector<std::string> files() const { return calls(); }
  std::size_t count() const { return calls().size(); }
  void clear() { calls().clear(); }

 private:
  static std::vector<std::string>& calls() {
    static std::vector<std::string> files;
    return files;
  }
  static void record(const char* file, int /*line*/) { calls().emplace_back(file); }
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
