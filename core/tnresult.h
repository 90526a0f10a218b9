// SPDX-License-Identifier: MIT

#pragma once

#include "tnexport.h"

class TnString;

// An error condition on its way to whoever can tell the user: how severe it is, its number, the package
// that the number belongs to, and the function that turns the number into a text.
//
// A result owns none of what it points to.  It is valid while the module that filed the condition is
// loaded.  Of one that outlives it, code and number can be read, and the result can be copied, filed anew
// and dropped; error_text and the package, and a text that was read before, are gone with the module.
//
// Nothing here allocates, and only error_text, which calls the package's function, can throw.
class TN_API TnResult {
 public:
  // How severe a condition is.
  enum class CodeID : int {
    none,         // there is no condition
    information,  // for the user to know
    warning,      // for the user to look into
    error,        // something failed
  };

  // Turns the number of a package into a text with static lifetime, or null where there is none.
  using Translation = const char* (*)(const TnString* const& package, int number);

  // Files a condition in place of the one before.  `package` is the address of the pointer to the
  // package's name: a package is identified by its string object, not by equal text.
  void set_error_condition(CodeID code, int number, const TnString* const* package,
                           Translation translation) noexcept;

  // Reads the condition.  Without one: CodeID::none, 0 and a null package.
  void get_error_condition(CodeID& code, int& number, const TnString**& package) const noexcept;

  // The condition's text, from the stored translation; null without a condition or a translation.
  const char* error_text() const;

 private:
  CodeID code_ = CodeID::none;
  int number_ = 0;
  const TnString* const* package_ = nullptr;
  Translation translation_ = nullptr;
};
