// SPDX-License-Identifier: MIT

#include "tnstring.h"

#include <cstring>
#include <string>

namespace {

char* copy_of(const char* text) {
  const std::size_t length = std::strlen(text) + 1;
  char* copy = new char[length];
  std::memcpy(copy, text, length);
  return copy;
}

}  // namespace

TnString::TnString(const char* text) : text_(copy_of(text != nullptr ? text : "")) {}

TnString::TnString(const TnString& other) : text_(copy_of(other.text_)) {}

TnString& TnString::operator=(const TnString& other) {
  if (this == &other) return *this;
  char* const copy = copy_of(other.text_);
  delete[] text_;
  text_ = copy;
  return *this;
}

TnString::~TnString() { delete[] text_; }

TnString tn_blankstring(int n) {
  const std::size_t length = n < 1 ? 0 : static_cast<std::size_t>(n);
  return TnString(std::string(length, ' ').c_str());
}
