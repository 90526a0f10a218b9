// SPDX-License-Identifier: MIT

#include <vector>

#include "accuracy/measures.h"
#include "accuracy/revealed.h"
#include "accuracy/system_types.h"
#include "accuracy/tally.h"
#include "tarntnla.h"

namespace {

struct SquareAnswer {
  Matrix X;
  Matrix inverse;
};

// By the default solve; or, where its verdict refuses the spread of the diagonal, by the tolerance.
SquareAnswer square_answer(const Matrix& A, const Matrix& B) {
  TnLaDblMat X;
  TnLaDblMat inverse;
  if (tnla_linearsolve(dense(A), dense(B), X)) {
    EXPECT_TRUE(tnla_inverse(dense(A), inverse));
  } else {
    constexpr double kTolerance = 1e-10;
    int rank = 0;
    tnla_linearsolve(dense(A), dense(B), X, kTolerance, &rank);
    EXPECT_EQ(rank, static_cast<int>(A.n));
    tnla_inverse(dense(A), inverse, kTolerance, &rank);
    EXPECT_EQ(rank, static_cast<int>(A.n));
  }
  return {plain(X), plain(inverse)};
}

void measure_square(const Matrix& A, const Matrix& X0, Ratios& ratios) {
  const Matrix B = wide_product(A, X0);
  const SquareAnswer answer = square_answer(A, B);
  ratios[kSolve] = solve_ratio(A, B, answer.X);
  ratios[kForward] = forward_ratio(A, answer.X, X0, one_norm(answer.inverse));
  ratios[kInverse] = inverse_ratio(A, answer.inverse);
}

void measure_singular(const Matrix& A, const Matrix& X0, std::size_t rank, Ratios& ratios) {
  const Matrix B = wide_product(A, X0);
  TnLaDblMat X;
  EXPECT_FALSE(tnla_linearsolve(dense(A), dense(B), X));
  const Revealed answer = revealed(A, B, kShortest, rank);
  ratios[kSolve] = solve_ratio(A, B, answer.X);
  measure_null_space(A, rank, answer.null_space, answer.X, ratios);
}

}  // namespace

std::size_t square_systems() {
  constexpr std::size_t kSmall = 700;
  Tally tally("square systems");
  std::vector<Type> types = regular_types();
  add_conditioned(types, "condition 9e14", kAlmostSingular, kIntoRange);
  for_all(types, square_shapes(), kSmall,
          [&](const Type& type, Shape shape, Random& random, std::size_t sample) {
            const Matrix A = type.make(random, shape.m, shape.n);
            Ratios ratios;
            measure_factors(A, ratios);
            measure_square(A, random_solution(random, shape.n, sample), ratios);
            tally.add(type.name, A, ratios, {kFactor, kOrthogonal, kSolve, kForward, kInverse});
          });
  for_all(singular_types(), square_shapes(), kSmall,
          [&](const Type& type, Shape shape, Random& random, std::size_t sample) {
            const Matrix A = type.make(random, shape.m, shape.n);
            Ratios ratios;
            measure_factors(A, ratios);
            measure_singular(A, random_solution(random, shape.n, sample), type.rank(shape.m, shape.n),
                             ratios);
            tally.add(type.name, A, ratios, {kFactor, kOrthogonal, kSolve, kNull, kBasis, kMinimal});
          });
  return tally.close();
}
