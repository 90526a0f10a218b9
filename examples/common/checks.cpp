// SPDX-License-Identifier: MIT

#include "checks.h"

#include <cstdio>
#include <string>

namespace {

// " mm"; nothing where there is no unit.
std::string after_number(const char* unit) { return *unit == '\0' ? "" : std::string(" ") + unit; }

}  // namespace

const char* Checks::verdict(bool passed) {
  if (!passed) failed_ = true;
  return passed ? "ok" : "FAILED";
}

void Checks::at_most(const char* what, double value, double bound, const char* unit) {
  std::printf("  %-6s  %s: %.1e, at most %.1e%s\n", verdict(value <= bound), what, value, bound,
              after_number(unit).c_str());
}

void Checks::between(const char* what, double value, double low, double high, const char* unit) {
  std::printf("  %-6s  %s: %.4f, between %.4f and %.4f%s\n", verdict(low <= value && value <= high), what,
              value, low, high, after_number(unit).c_str());
}

void Checks::is_true(const char* what, bool value) { std::printf("  %-6s  %s\n", verdict(value), what); }
