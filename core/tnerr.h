// SPDX-License-Identifier: MIT

#pragma once

#include "tnexport.h"

class TnString;

// The error numbers that all packages share: -1 (no valid number), 0 (no error) and 1 to 15.
class TN_API TnErr {
 public:
  // The text of a shared number, with static lifetime; null for any other number.  The shared numbers
  // mean the same in every package, so `package` is not looked at.
  static const char* translate_error_number(const TnString* const& package, int number) noexcept;
};
