// SPDX-License-Identifier: MIT

#include <vector>

#include "accuracy/measures.h"
#include "accuracy/system_types.h"
#include "accuracy/tally.h"
#include "reference/cholesky_reference.h"
#include "tarntnla.h"

namespace {

constexpr double kLeastPivot = 1e-10;

std::vector<double> elements(const TnArray<double>& a) { return {a.data(), a.data() + a.size()}; }

// Nothing of the strictly lower triangle, which only the solve without a factor reads.
Matrix upper_half(Matrix A) {
  for (std::size_t j = 0; j < A.n; ++j) {
    for (std::size_t i = j + 1; i < A.n; ++i) A(i, j) = kNaN;
  }
  return A;
}

// One right-hand side after the other.
Matrix by_cholesky(const Matrix& A, const Matrix& B) {
  TnLaCholesky cholesky(static_cast<int>(A.n));
  cholesky.a(dense(A).array());
  Matrix X(A.n, B.n);
  for (std::size_t c = 0; c < B.n; ++c) {
    cholesky.b(TnLaDblVec(B.a.data() + c * B.m, static_cast<int>(B.m)).array());
    const std::vector<double> x = elements(cholesky.x());
    std::copy(x.begin(), x.end(), X.column(c));
  }
  return X;
}

Matrix definite(Random& random, std::size_t n, Spread spread, long double condition) {
  return of_eigenvalues(random, singular_values(random, n, spread, condition));
}

Matrix well_conditioned_definite(Random& random, std::size_t n) {
  return definite(random, n, Spread::arithmetic, 2.0L);
}

Matrix without_row_and_column(Matrix A, std::size_t j) {
  for (std::size_t i = 0; i < A.n; ++i) A(i, j) = A(j, i) = 0.0;
  return A;
}

std::vector<Type> definite_types() {
  const auto one_less = [](std::size_t, std::size_t n) { return n - 1; };
  std::vector<Type> types = {
      {"diagonal",
       [](Random& random, std::size_t, std::size_t n) {
         return rounded(wide_diagonal(n, n, singular_values(random, n, Spread::random, 2.0L)));
       }},
      {"condition 2",
       [](Random& random, std::size_t, std::size_t n) { return well_conditioned_definite(random, n); }},
      {"least pivot 1e-10",
       [](Random& random, std::size_t, std::size_t n) {
         const Matrix A = well_conditioned_definite(random, n);
         double least = INFINITY;
         for (const double d : reference::Cholesky(A).diagonal) least = std::min(least, d * d);
         return scaled(A, factor_to(least, kLeastPivot * 1.01));
       }},
      {"near overflow",
       [](Random& random, std::size_t, std::size_t n) {
         return scaled(well_conditioned_definite(random, n), 0x1p1000);
       }},
      {"first row and column zero",
       [](Random& random, std::size_t, std::size_t n) {
         return without_row_and_column(well_conditioned_definite(random, n), 0);
       },
       one_less},
      {"last row and column zero",
       [](Random& random, std::size_t, std::size_t n) {
         return without_row_and_column(well_conditioned_definite(random, n), n - 1);
       },
       one_less},
      {"row and column in the middle zero",
       [](Random& random, std::size_t, std::size_t n) {
         return without_row_and_column(well_conditioned_definite(random, n), n / 2);
       },
       one_less},
  };
  for (const auto& [spread, name] : spreads()) {
    types.push_back(
        {std::string("condition 3e7, ") + name, [of = spread](Random& random, std::size_t, std::size_t n) {
           return definite(random, n, of, kHalf);
         }});
    types.push_back(
        {std::string("condition 9e14, ") + name, [of = spread](Random& random, std::size_t, std::size_t n) {
           return scaled(definite(random, n, of, kAlmostSingular), kIntoRange);
         }});
  }
  return types;
}

}  // namespace

std::size_t definite_systems() {
  constexpr std::size_t kSmall = 300;
  Tally tally("symmetric positive definite systems");
  for_all(definite_types(), square_shapes(), kSmall,
          [&](const Type& type, Shape shape, Random& random, std::size_t sample) {
            const Matrix A = type.make(random, shape.m, shape.n);
            const Matrix B = wide_product(A, random_solution(random, shape.n, sample));
            Ratios ratios;
            const bool is_definite = type.rank(shape.m, shape.n) == shape.n;
            ratios[kSolve] = solve_ratio(A, B, by_cholesky(is_definite ? upper_half(A) : A, B));
            tally.add(type.name, A, ratios, {kSolve});
          });
  return tally.close();
}
