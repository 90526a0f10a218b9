// SPDX-License-Identifier: MIT

#pragma once

#include "tnexport.h"

// The assertion hook: where violated preconditions are reported.
//
// A precondition is checked only while a handler is installed.  A check that fails calls the handler
// once, with the repository path of the file to which the check belongs and a line number; when the
// handler returns, execution goes on as if the check had passed, or with the fallback that the
// operation documents.  No precondition changes a result by being checked.
//
// A handler may be installed, replaced or removed at any time, also while other threads compute: each
// check loads it anew, with one relaxed atomic load.  It may throw or end the program; every object
// stays destructible.

// What is called for a precondition that does not hold.
using TnAssertionHandler = void (*)(const char* file, int line);

// Null at start: no checks.  Written by the application, with an atomic store if other threads compute.
TN_API extern TnAssertionHandler kit_assertion_handler;

// The handler of this moment, as a check reads it.
inline TnAssertionHandler tn_load_assertion_handler() noexcept {
#if defined(__GNUC__)
  return __atomic_load_n(&kit_assertion_handler, __ATOMIC_RELAXED);
#else  // a read that is made anew is such a load wherever a pointer is read at once
  return const_cast<const volatile TnAssertionHandler&>(kit_assertion_handler);
#endif
}

// Checks one precondition.  `file` is the path to report, relative to the repository's root; it is
// written out because a check in an inline function is compiled from wherever the header is installed.
// `condition` is evaluated only while a handler is installed.
#define TN_ASSERT(file, condition)                                           \
  do {                                                                       \
    const TnAssertionHandler tn_handler = tn_load_assertion_handler();       \
    if (tn_handler != nullptr && !(condition)) tn_handler((file), __LINE__); \
  } while (false)
