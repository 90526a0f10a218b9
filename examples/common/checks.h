// SPDX-License-Identifier: MIT

#pragma once

// The checks that an example makes on its own result: one line each, "ok" or "FAILED" first.  They count as
// failed where the value is a NaN.
class Checks {
 public:
  void at_most(const char* what, double value, double bound, const char* unit);
  void between(const char* what, double value, double low, double high, const char* unit);
  void is_true(const char* what, bool value);

  // 0 if all have passed, 1 if one has not.
  int exit_code() const { return failed_ ? 1 : 0; }

 private:
  const char* verdict(bool passed);

  bool failed_ = false;
};
