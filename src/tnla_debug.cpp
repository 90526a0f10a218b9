#include "tnla_debug.h"

#include "tnjournal.h"

namespace {
constexpr long long kLineLength = 80;
constexpr long long kBesideDigits = 10;  // sign, first digit, point, exponent and a gap
}  // namespace

// In long long, so that no argument overflows before the result is narrowed.
TnLaDebugLayout tnla_debug_layout(int digits, int indent) {
  const long long width = digits + kBesideDigits;
  const long long room = kLineLength - indent - Tn_DebugIndentStep();
  const long long per_line = width == 0 ? 0 : room / width;
  return {static_cast<int>(width), static_cast<int>(per_line)};
}
