// SPDX-License-Identifier: MIT

#pragma once

#include <vector>

// An assertion of the library, and the calls that show what it is worth.
struct AssertionEntry {
  const char* key;  // as table.py gives it

  // Breaks the precondition, and expects the answer that the library documents for it.
  void (*fire)();

  // The closest call that does not.
  void (*pass)();

  // The keys of the checks that `fire` fails, in order; if there is none, its own alone.
  std::vector<const char*> calls = {};
};

using AssertionEntries = std::vector<AssertionEntry>;

AssertionEntries foundation_entries();  // arrays, error numbers, the small types
AssertionEntries matrix_entries();
AssertionEntries vector_entries();
AssertionEntries solver_entries();  // and the reflections, decompositions and jets
