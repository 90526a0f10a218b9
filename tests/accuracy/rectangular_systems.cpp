// SPDX-License-Identifier: MIT

#include <utility>
#include <vector>

#include "accuracy/measures.h"
#include "accuracy/revealed.h"
#include "accuracy/system_types.h"
#include "accuracy/tally.h"
#include "tarntnla.h"

namespace {

// By the default solve: QR with more rows than columns, otherwise the shortest solution.
void measure_full_rank(const Matrix& A, const Matrix& X0, const Matrix& apart, Ratios& ratios) {
  const Matrix B = wide_product(A, X0);
  TnLaDblMat X;
  TnLaDblMat Z;
  EXPECT_TRUE(tnla_linearsolve(dense(A), dense(B), X, &Z));
  ratios[kSolve] = solve_ratio(A, B, plain(X));
  measure_null_space(A, std::min(A.m, A.n), plain(Z), plain(X), ratios);
  if (A.m <= A.n) return;
  EXPECT_TRUE(tnla_linearsolve(dense(A), dense(apart), X));
  ratios[kNormal] = normal_ratio(A, apart, plain(X));
}

void measure_deficient(const Matrix& A, const Matrix& X0, const Matrix& apart, std::size_t rank,
                       Ratios& ratios) {
  const Matrix B = wide_product(A, X0);
  const double tol = tolerance_for(A);
  const Revealed answer = revealed(A, B, tol, rank);
  ratios[kSolve] = solve_ratio(A, B, answer.X);
  measure_null_space(A, rank, answer.null_space, answer.X, ratios);
  ratios[kNormal] = normal_ratio(A, apart, revealed(A, apart, tol, rank).X);
}

std::size_t half(std::size_t m, std::size_t n) { return (std::min(m, n) + 1) / 2; }

std::vector<Type> deficient_types() {
  const auto of_half_rank = [](Spread spread, long double condition) {
    return [spread, condition](Random& random, std::size_t m, std::size_t n) {
      return of_singular_values(random, m, n, singular_values(random, half(m, n), spread, condition));
    };
  };
  std::vector<Type> types = singular_types();
  types.push_back({"half rank, condition 2", of_half_rank(Spread::arithmetic, 2.0L), half});
  for (const auto& [spread, name] : spreads()) {
    types.push_back({std::string("half rank, condition 1e3, ") + name, of_half_rank(spread, 1e3L), half});
  }
  types.push_back({"every column twice",
                   [](Random& random, std::size_t m, std::size_t n) {
                     Matrix A = uniform(random, m, n);
                     for (std::size_t j = 1; j < n; j += 2) std::copy_n(A.column(j - 1), m, A.column(j));
                     return A;
                   },
                   [](std::size_t m, std::size_t n) { return std::min(m, (n + 1) / 2); }});
  types.push_back({"zero", [](Random&, std::size_t m, std::size_t n) { return Matrix(m, n); },
                   [](std::size_t, std::size_t) { return std::size_t{0}; }});
  return types;
}

}  // namespace

std::size_t rectangular_systems() {
  constexpr std::size_t kSmall = 120;
  Tally tally("more rows or more columns");
  for_all(
      regular_types(), rectangular_shapes(), kSmall,
      [&](const Type& type, Shape shape, Random& random, std::size_t sample) {
        const Matrix A = type.make(random, shape.m, shape.n);
        const Matrix X0 = random_solution(random, shape.n, sample);
        Ratios ratios;
        measure_factors(A, ratios);
        measure_full_rank(A, X0, random_solution(random, shape.m, sample), ratios);
        tally.add(type.name, A, ratios, {kFactor, kOrthogonal, kSolve, kNormal, kNull, kBasis, kMinimal});
      });
  return tally.close();
}

std::size_t deficient_systems() {
  constexpr std::size_t kSmall = 80;
  Tally tally("rank below the number of columns");
  std::vector<Shape> shapes = rectangular_shapes();
  for (const Shape& shape : square_shapes()) shapes.push_back(shape);
  for_all(deficient_types(), shapes, kSmall,
          [&](const Type& type, Shape shape, Random& random, std::size_t sample) {
            const Matrix A = type.make(random, shape.m, shape.n);
            const Matrix X0 = random_solution(random, shape.n, sample);
            Ratios ratios;
            measure_deficient(A, X0, random_solution(random, shape.m, sample), type.rank(shape.m, shape.n),
                              ratios);
            tally.add(type.name, A, ratios, {kSolve, kNormal, kNull, kBasis, kMinimal});
          });
  return tally.close();
}
