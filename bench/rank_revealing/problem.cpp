// SPDX-License-Identifier: MIT

// A X = B with column interchanges, for 2 right sides: the solution of minimal length; the answer is X.
//
//     full        A is random, of rank n
//     deficient   A = U V' of rank 3 n / 4

#include "common/problem.h"

#include "common/check.h"
#include "common/numbers.h"

namespace {

int rank(const bench::Case& c) { return 3 * c.n / 4; }
std::vector<double> left(const bench::Case& c) { return bench::matrix(c.n, rank(c), 1); }
std::vector<double> right(const bench::Case& c) { return bench::matrix(c.n, rank(c), 2); }

// In the range of A', which makes it the shortest among all that give the same A X.
std::vector<double> solution(const bench::Case& c) {
  if (c.operation == "full") return bench::matrix(c.n, c.p, 3);
  return bench::multiply(c.n, rank(c), c.p, right(c).data(), bench::matrix(rank(c), c.p, 3).data());
}

}  // namespace

std::vector<bench::Case> bench::cases() {
  std::vector<Case> all;
  for (const int n : {12, 32, 64, 128, 256, 512}) {
    all.push_back({"full", n, n, 2, n <= 256 ? Extent::kQuick : Extent::kFull});
  }
  for (const int n : {32, 128, 256}) all.push_back({"deficient", n, n, 2});
  return all;
}

void bench::fill(Case& c) {
  c.a = matrix(c.n, c.n, 4);
  if (c.operation == "deficient") {
    c.a = multiply(c.n, rank(c), c.n, left(c).data(), transposed(c.n, rank(c), right(c)).data());
  }
  c.b = multiply(c.n, c.n, c.p, c.a.data(), solution(c).data());
}

std::size_t bench::answer_size(const Case& c) { return c.b.size(); }

// A solution that is not the shortest leaves no residual either.  The condition of U and of V, n x 3n/4
// with random elements, is about (2 + sqrt 3)^2 = 14, that of A at most 200: 1e4 allows for its square
// times 1/4.
double bench::error(const Case& c, const double* answer) {
  const double rest = residual(c.n, c.n, c.p, c.a.data(), answer, c.b.data());
  if (c.operation == "full") return rest;
  return worse(rest, distance(c.b.size(), answer, solution(c).data(), 1e4 * c.n * kEpsilon));
}
