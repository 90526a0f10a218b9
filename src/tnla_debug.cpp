// SPDX-License-Identifier: MIT

#include "tnla_debug.h"

#include <algorithm>

#include "tnarraydebug.h"
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

TnArray<double> tnla_debug_array(const double* values, std::size_t n) {
  TnArray<double> array;
  array.set_size(n, false);
  std::copy_n(values, n, array.data());
  return array;
}

void tnla_debug_small_vector(TnJournal& journal, const char* file, const double* values, int n, int digits,
                             int indent) {
  const TnLaDebugLayout layout = tnla_debug_layout(digits, indent);
  TN_ASSERT(file, layout.width != 0);
  if (layout.width == 0) return;
  tn_arraydebug(journal, n, tnla_debug_array(values, static_cast<std::size_t>(n)), layout.per_line,
                layout.width, digits, indent);
}

void tnla_debug_small_matrix(TnJournal& journal, const char* file, const double* values, int n, int digits,
                             bool flag, int indent) {
  const TnLaDebugLayout layout = tnla_debug_layout(digits, indent);
  TN_ASSERT(file, layout.width != 0);
  if (layout.width == 0) return;
  tn_arraydebug(journal, flag, kPrinterReserved, n,
                tnla_debug_array(values, static_cast<std::size_t>(n) * static_cast<std::size_t>(n)),
                layout.per_line, layout.width, digits, indent);
}
