// SPDX-License-Identifier: MIT

#pragma once

#include <algorithm>
#include <cstddef>
#include <vector>

// An array with marks before and behind it, which nobody may write.  The number of those before it sets its
// alignment.
class Guarded {
 public:
  static constexpr std::size_t kGuard = 9;

  explicit Guarded(const std::vector<double>& values, std::size_t before = kGuard) : before_(before) {
    values_.assign(before, kMark);
    values_.insert(values_.end(), values.begin(), values.end());
    values_.insert(values_.end(), kGuard, kMark);
  }

  double* data() { return values_.data() + before_; }

  bool is_intact() const {
    const auto is_mark = [](double x) { return x == kMark; };
    const auto begin = values_.begin();
    return std::all_of(begin, begin + static_cast<std::ptrdiff_t>(before_), is_mark) &&
           std::all_of(values_.end() - kGuard, values_.end(), is_mark);
  }

 private:
  static constexpr double kMark = -77.0;

  std::size_t before_;
  std::vector<double> values_;
};
