// SPDX-License-Identifier: MIT

#include "tnerr.h"

namespace {

constexpr int kUnknownError = -1;

// Indexed by the number minus kUnknownError.
constexpr const char* kTexts[] = {
    "Unknown error.",
    "No error.",
    "Out of memory.",
    "Invalid argument.",
    "Index out of range.",
    "Dimensions do not match.",
    "Object is empty.",
    "Object is not initialized.",
    "Operation is not supported.",
    "Operation was cancelled.",
    "Internal error.",
    "Value is out of range.",
    "Division by zero.",
    "No convergence.",
    "No solution found.",
    "Tolerance is too small.",
    "Version is not supported.",
};
constexpr int kCount = sizeof(kTexts) / sizeof(kTexts[0]);
static_assert(kCount == 17, "one text for each number from -1 to 15");

}  // namespace

const char* TnErr::translate_error_number(const TnString* const& /*package*/, int number) noexcept {
  if (number < kUnknownError || number >= kUnknownError + kCount) return nullptr;
  return kTexts[number - kUnknownError];
}
