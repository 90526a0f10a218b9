// SPDX-License-Identifier: MIT

#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include "support/assertions.h"
#include "support/bits.h"
#include "support/printed.h"
#include "support/values.h"
#include "tarntnla.h"

// What the tests of the small matrices and vectors share.

template <int N>
using Vec = TnLaTSmallVec<N, double>;
template <int N>
using Mat = TnLaTSmallMat<static_cast<std::size_t>(N), static_cast<std::size_t>(N), double>;

// Calls check.operator()<N>() for N = 1 ... 12.
template <class Check>
void for_every_dimension(Check check) {
  [&]<int... I>(std::integer_sequence<int, I...>) {
    const auto traced = [&]<int N>() {
      SCOPED_TRACE("N = " + std::to_string(N));
      check.template operator()<N>();
    };
    (traced.template operator()<I + 1>(), ...);
  }
  (std::make_integer_sequence<int, 12>());
}

using Values = std::vector<double>;

struct Operands {
  Values x;
  Values y;
  std::string name;
};

// Pairs of n values each: random ones, and every pair of special values at least once.
inline std::vector<Operands> operands(std::size_t n) {
  std::vector<Operands> all;
  for (std::uint64_t seed = 1; seed <= 25; ++seed) {
    Random random(seed * 1000 + n);
    Values x = random.any_vector(n);
    all.push_back({std::move(x), random.any_vector(n), "seed " + std::to_string(seed)});
  }
  const std::size_t n_special = special_values().size();
  for (std::size_t first = 0; first < n_special * n_special; first += n) {
    Operands o{Values(n), Values(n), "special values from " + std::to_string(first)};
    for (std::size_t i = 0; i < n; ++i) {
      o.x[i] = special_values()[(first + i) / n_special % n_special];
      o.y[i] = special_values()[(first + i) % n_special];
    }
    all.push_back(o);
  }
  return all;
}

// n different numbers that no arithmetic made.
inline Values numbered(std::size_t n, double first = 1.5) {
  Values out(n);
  for (std::size_t i = 0; i < n; ++i) out[i] = first + static_cast<double>(i);
  return out;
}

template <int N>
[[gnu::noinline]] Vec<N> vec(const Values& x) {
  return Vec<N>(x.data(), N);
}

template <int N>
[[gnu::noinline]] Mat<N> mat(const Values& x) {
  Mat<N> m;
  for (std::size_t k = 0; k < x.size(); ++k) m(k % N, k / N) = x[k];
  return m;
}

template <int N>
[[gnu::noinline]] Values elements(const Vec<N>& v) {
  Values out;
  for (int i = 0; i < N; ++i) out.push_back(v(i));
  return out;
}

template <std::size_t N>
[[gnu::noinline]] Values elements(const TnLaTSmallMat<N, N, double>& m) {
  Values out;
  for (std::size_t j = 0; j < N; ++j) {
    for (std::size_t i = 0; i < N; ++i) out.push_back(m(i, j));
  }
  return out;
}

inline Values elements(const TnArray<double>& a) { return Values(a.data(), a.data() + a.size()); }

// One call for a compiler, as the tests make hundreds of them for each of the twelve types.
[[gnu::noinline]] inline void expect_values(const char* file, int line, const char* what,
                                            const Values& actual, const Values& expected) {
  const testing::AssertionResult result =
      actual.size() == expected.size()
          ? are_same("", what, "", actual.size(), actual.data(), expected.data())
          : testing::AssertionFailure()
                << what << " has " << actual.size() << " elements, expected " << expected.size();
  if (!result) ADD_FAILURE_AT(file, line) << result.message();
}

#define EXPECT_VALUES(actual, expected) expect_values(__FILE__, __LINE__, #actual, actual, expected)
#define EXPECT_ELEMENTS(object, expected) \
  expect_values(__FILE__, __LINE__, #object, elements(object), expected)
#define EXPECT_NUMBER(actual, expected) \
  expect_values(__FILE__, __LINE__, #actual, Values(1, actual), Values(1, expected))

// Takes the lines of the failed checks, which tell one check from another, and ends the operation at the
// n-th of them by an exception.
class CheckLines {
 public:
  struct Ended {};

  explicit CheckLines(std::size_t end_at) {
    lines().clear();
    limit() = end_at;
    kit_assertion_handler = [](const char* /*file*/, int line) {
      lines().push_back(line);
      if (lines().size() == limit()) throw Ended();
    };
  }
  ~CheckLines() { kit_assertion_handler = nullptr; }
  CheckLines(const CheckLines&) = delete;
  CheckLines& operator=(const CheckLines&) = delete;

  std::vector<int> taken() const { return lines(); }

 private:
  static std::vector<int>& lines() {
    static std::vector<int> taken;
    return taken;
  }
  static std::size_t& limit() {
    static std::size_t n = 0;
    return n;
  }
};

// The lines of the checks that fail in `operation`, which is ended at the n-th.
template <class F>
std::vector<int> failing_checks(std::size_t end_at, F operation) {
  const CheckLines log(end_at);
  try {
    operation();
  } catch (const CheckLines::Ended&) {
    EXPECT_EQ(log.taken().size(), end_at);
  }
  return log.taken();
}

// The file of the check at which `operation` ends; empty if every check passes.
template <class F>
std::string failing_file(F operation) {
  const ThrowingAssertions ending;
  try {
    operation();
  } catch (const AssertionThrown& thrown) {
    return thrown.file;
  }
  return "";
}

// The sum of squares that decides whether a length counts as zero, from either side: the first vector of
// (a, b) reaches 1e-40, the second is one ulp short of it.  A search, as a square may skip a number.
struct AroundThreshold {
  double reaching[2];
  double short_of[2];
};

inline AroundThreshold around_threshold() {
  double a = 1e-20;
  while (a * a >= 1e-40) a = ulp_below(a);
  const double gap = 1e-40 - a * a;
  const double ulp = 1e-40 - ulp_below(1e-40);
  return {{a, std::sqrt(gap)}, {a, std::sqrt(gap - ulp)}};
}
