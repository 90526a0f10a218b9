// SPDX-License-Identifier: MIT

#include "tnresult.h"

void TnResult::set_error_condition(CodeID code, int number, const TnString* const* package,
                                   Translation translation) noexcept {
  code_ = code;
  number_ = number;
  package_ = package;
  translation_ = translation;
}

void TnResult::get_error_condition(CodeID& code, int& number, const TnString**& package) const noexcept {
  code = code_;
  number = number_;
  // The signature hands out a pointer to a mutable pointer; callers compare through it and never write.
  package = const_cast<const TnString**>(package_);
}

const char* TnResult::error_text() const {
  if (package_ == nullptr || translation_ == nullptr) return nullptr;
  return translation_(*package_, number_);
}
