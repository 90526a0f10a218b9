// SPDX-License-Identifier: MIT

// A X = B for systems so small that the calls, checks and allocations count; the answer is X.
//
//     two_sides   types of fixed size, 2 right sides.  Ours has no shape but N x N: columns 2 ... are zero.
//     n_sides     types of fixed size, N right sides
//     request     the request that clients make most: types of any size, 3 x 3, 2 right sides, and whether
//                 the matrix is regular; X has its size from the request before

#include "common/problem.h"

#include "common/check.h"
#include "common/numbers.h"

std::vector<bench::Case> bench::cases() {
  std::vector<Case> all;
  for (const int n : {3, 4, 6, 8, 12}) all.push_back({"two_sides", n, n, 2});
  for (const int n : {3, 4, 6, 8, 12}) all.push_back({"n_sides", n, n, n});
  all.push_back({"request", 3, 3, 2});
  return all;
}

void bench::fill(Case& c) {
  c.a = matrix(c.n, c.n, 1);
  c.b = matrix(c.n, c.p, 2);
}

std::size_t bench::answer_size(const Case& c) { return c.b.size(); }

double bench::error(const Case& c, const double* answer) {
  return residual(c.n, c.n, c.p, c.a.data(), answer, c.b.data());
}
