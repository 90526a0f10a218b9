// SPDX-License-Identifier: MIT

#pragma once

#include <cstddef>
#include <vector>

#include "reference/cholesky_reference.h"
#include "support/allocation.h"
#include "support/decomposition_types.h"
#include "support/dense_objects.h"
#include "tnlacholesky_i.h"

// Solvers of three unknowns, and what is expected of them.

using Array = TnArray<double>;

inline Array array(const std::vector<double>& elements) { return vec(elements).array(); }
inline Array array(const Matrix& A) { return array(A.a); }
inline Array zeros(std::size_t n) { return array(std::vector<double>(n)); }

inline const Matrix kDefinite(3, 3, {4, 1, 0.1, 1, 5, 0.3, 0.1, 0.3, 6});
inline const Matrix kNextDefinite(3, 3, {9, 0.7, 1, 0.7, 8, 2, 1, 2, 7});
inline const Matrix kIndefinite(3, 3, {1, 2, 0.1, 2, 1, 0.3, 0.1, 0.3, 1});  // fails at the second pivot
inline const Matrix kSingular(3, 3, {1, 1, 1, 1, 1, 1, 1, 1, 1});
inline const std::vector<double> kLoad = {1, 0.2, 0.3};
inline const std::vector<double> kNextLoad = {-0.4, 7, 0.6};

struct Loaded : TnLaCholesky {
  explicit Loaded(const Matrix& A = kDefinite, const std::vector<double>& load = kLoad)
      : TnLaCholesky(static_cast<int>(A.n)) {
    a(array(A));
    b(array(load));
  }
};

inline void expect_solution(const Array& x, const Matrix& A, const std::vector<double>& b) {
  expect_elements(x, reference::cholesky_solution(A, b));
}

inline void expect_emptied(const Array& x) {
  EXPECT_EQ(x.size(), 0u);
  EXPECT_EQ(x.capacity(), 0u);
}

template <class F>
std::size_t allocations(F f) {
  const std::size_t made = allocation::made();
  f();
  return allocation::made() - made;
}
