// SPDX-License-Identifier: MIT

#pragma once

#include "tnexport.h"

// A text that owns its characters.
//
// Copies are deep.  Construction and copying allocate; a failed allocation is std::bad_alloc and leaves
// the target as it was.
class TN_API TnString {
 public:
  // A copy of the zero-terminated `text`; null counts as the empty text.
  TnString(const char* text);
  TnString(const TnString& other);
  TnString& operator=(const TnString& other);
  ~TnString();

  // The text, zero-terminated; never null.  Valid until the string is assigned to or destroyed.
  const char* c_str() const noexcept { return text_; }

 private:
  char* text_;
};

// `n` blanks; the empty text when n < 1.
TN_API TnString tn_blankstring(int n);
