// SPDX-License-Identifier: MIT

#pragma once

#include <cstddef>
#include <iosfwd>

#include "tnexport.h"
#include "tnstring.h"

// A mark in the journal that is not text of the caller's.
class TN_API TnToken {
 public:
  // `text` is what the journal writes; it has to live as long as the token.
  explicit constexpr TnToken(const char* text) noexcept : text_(text) {}
  // The text given at construction.
  const char* text() const noexcept { return text_; }

 private:
  const char* text_;
};

// Ends an expression: written as one newline.
TN_API extern TnToken tnEndExpr;

// The debug output stream.
//
// It writes through to a stream that the caller owns and keeps alive, in that stream's number format.
// A stream that fails is never an exception, not even where the stream was told to throw: debug output
// that gets lost must not stop a computation.
class TN_API TnJournal {
 public:
  // A journal that writes to `stream`.
  explicit TnJournal(std::ostream& stream) noexcept : stream_(stream) {}
  TnJournal(const TnJournal&) = delete;
  TnJournal& operator=(const TnJournal&) = delete;

  // Writes a text, a number or a mark, and returns the journal.  A null text writes nothing.
  TnJournal& operator<<(const char* text);
  TnJournal& operator<<(std::size_t value);
  TnJournal& operator<<(double value);
  TnJournal& operator<<(const TnString& text);
  TnJournal& operator<<(TnToken& token);

 private:
  std::ostream& stream_;
};

// Columns by which nested output is indented.
TN_API int Tn_DebugIndentStep() noexcept;
