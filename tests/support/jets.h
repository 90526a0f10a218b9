// SPDX-License-Identifier: MIT

#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "reference/jet_reference.h"
#include "support/decomposition_types.h"
#include "tarntnla.h"

// Jets from lists of columns, and the adaptation beside its twin.

using Vector = std::vector<double>;
using Level = std::optional<int>;        // what a behaviour object answers, where there is one
using Orientation = std::optional<int>;  // what the flag holds, where there is one

// Answers what it is told to, and counts the questions that are not the expected one.
class Behaviour : public TnOperationBehaviour {
 public:
  explicit Behaviour(int answer) : answer_(static_cast<std::int16_t>(answer)) {}

  void reserved_1() override { ++n_wrong; }
  void reserved_2() override { ++n_wrong; }
  std::int16_t behaviour_level(const TnString* package, int operation, std::int16_t version) override {
    ++n_asked;
    if (package != TnLa::package_id() || operation != 0 || version != 1) ++n_wrong;
    return answer_;
  }

  int n_asked = 0;
  int n_wrong = 0;

 private:
  std::int16_t answer_;
};

inline Matrix jet_of(const std::vector<Vector>& columns) {
  Matrix jet(columns[0].size(), columns.size());
  for (std::size_t k = 0; k < jet.n; ++k) {
    for (std::size_t i = 0; i < jet.m; ++i) jet(i, k) = columns[k][i];
  }
  return jet;
}

inline Vector column(const Matrix& jet, std::size_t k) {
  return reference::jet_column(jet, k, static_cast<int>(jet.m));
}

inline Matrix adapted(const Matrix& jet, const Matrix& ref, int order, bool linear_only = false,
                      int* orientation = nullptr, TnOperationBehaviour* behaviour = nullptr) {
  TnLaDblMat x = dense(jet);
  tnla_util_adapt_jet(behaviour, order, x, dense(ref), linear_only, orientation);
  return plain(x);
}

// How an adaptation is asked for.
struct Request {
  int order;
  bool linear_only = false;
  Orientation orientation{};
  Level level{};
};

inline std::ostream& operator<<(std::ostream& out, const Request& r) {
  return out << "order " << r.order << (r.linear_only ? ", linear" : "") << ", orientation "
             << (r.orientation ? std::to_string(*r.orientation) : "null") << ", level "
             << (r.level ? std::to_string(*r.level) : "null");
}

// `ref` may be the same matrix as `x`.
inline void expect_adapts_like_the_twin(const Request& request, TnLaDblMat& x, const TnLaDblMat& ref) {
  Matrix expected = plain(x);
  const Matrix expected_ref = plain(ref);
  Orientation expected_orientation = request.orientation;
  const int asked =
      reference::adapt_jet(request.level, request.order, expected, expected_ref, request.linear_only,
                           expected_orientation ? &*expected_orientation : nullptr);

  Orientation orientation = request.orientation;
  Behaviour behaviour(request.level.value_or(0));
  tnla_util_adapt_jet(request.level ? &behaviour : nullptr, request.order, x, ref, request.linear_only,
                      orientation ? &*orientation : nullptr);
  EXPECT_SAME_MATRIX(x, expected);
  EXPECT_SAME_MATRIX(ref, &x == &ref ? expected : expected_ref);
  EXPECT_EQ(orientation, expected_orientation);
  EXPECT_EQ(behaviour.n_asked, asked);
  EXPECT_EQ(behaviour.n_wrong, 0);
}

inline void expect_like_the_twin(const Request& request, const Matrix& jet, const Matrix& ref) {
  TnLaDblMat x = dense(jet);
  expect_adapts_like_the_twin(request, x, dense(ref));
}
