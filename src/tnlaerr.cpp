// SPDX-License-Identifier: MIT

#include "tnassert.h"
#include "tnerr.h"
#include "tnlaerr_i.h"
#include "tnstring.h"

namespace {

constexpr char kFile[] = "src/tnlaerr.cpp";

const TnString error_package_name("TnLaErr");

// A result keeps the address of this pointer; the object it points at is the package's identity.
const TnString* const error_package = &error_package_name;

// Indexed by the number minus la_error_base, which is a number of its own and has an empty text.
constexpr const char* kTexts[] = {
    "",
    "Singular matrix found.",
    "Decomposition contains singular factor.",
};
constexpr int kLastNumber = TnLaErr::singular_factor;
static_assert(sizeof(kTexts) / sizeof(kTexts[0]) == kLastNumber - TnLaErr::la_error_base + 1,
              "one text for each of the library's own numbers");

// The number, if it is a core number or a library number under the library's package; -1 otherwise.
TnLaErr::ErrorNumber checked_number(const TnString* package, int number) {
  const bool in_range = number >= TnLaErr::unknown_error && number <= kLastNumber;
  TN_ASSERT(kFile, in_range);
  if (!in_range) return TnLaErr::unknown_error;
  if (number < TnLaErr::la_error_base) return static_cast<TnLaErr::ErrorNumber>(number);

  const bool own_package = package == error_package;
  TN_ASSERT(kFile, own_package);
  if (!own_package) return TnLaErr::unknown_error;
  return static_cast<TnLaErr::ErrorNumber>(number);
}

}  // namespace

void TnLaErr::make_result(TnResult::CodeID code, ErrorNumber number, TnResult& result) {
  result.set_error_condition(code, number, &error_package, &TnLaErr::translate_error_number);
}

TnLaErr::ErrorNumber TnLaErr::error_number(const TnResult& result) {
  TnResult::CodeID code{};
  int number = 0;
  const TnString** package = nullptr;
  result.get_error_condition(code, number, package);
  if (package == nullptr) return unknown_error;
  return checked_number(*package, number);
}

const char* TnLaErr::translate_error_number(const TnString* const& package, int number) {
  const ErrorNumber checked = checked_number(package, number);
  if (checked < la_error_base) return TnErr::translate_error_number(package, checked);
  // One of the table's numbers: every other one has been asserted and become -1.
  return kTexts[checked - la_error_base];
}
