// SPDX-License-Identifier: MIT

#include "tnjournal.h"

#include <ostream>

TnToken tnEndExpr{"\n"};

namespace {

template <class T>
void insert(std::ostream& stream, const T& value) {
  try {
    stream << value;
  } catch (...) {
    return;  // the stream keeps its own error state, for whoever owns it
  }
}

}  // namespace

TnJournal& TnJournal::operator<<(const char* text) {
  if (text != nullptr) insert(stream_, text);
  return *this;
}

TnJournal& TnJournal::operator<<(std::size_t value) {
  insert(stream_, value);
  return *this;
}

TnJournal& TnJournal::operator<<(double value) {
  insert(stream_, value);
  return *this;
}

TnJournal& TnJournal::operator<<(const TnString& text) { return *this << text.c_str(); }

TnJournal& TnJournal::operator<<(TnToken& token) { return *this << token.text(); }

int Tn_DebugIndentStep() noexcept { return 2; }
