// SPDX-License-Identifier: MIT

#include "accuracy/system_types.h"

#include "reference/decomposition_reference.h"
#include "tarntnla.h"

Matrix uniform(Random& random, std::size_t m, std::size_t n) { return random_matrix(random, m, n); }

Matrix well_conditioned(Random& random, std::size_t m, std::size_t n) {
  return of_condition(random, m, n, Spread::arithmetic, 2.0L);
}

namespace {

// Both ends of the range in which the decompositions can be used.
constexpr double kLeastLast = 1e-20;  // the least |R(j, j)| without a reflection
constexpr double kLongest = 1e30;

Matrix either(Random& random, std::size_t m, std::size_t n) {
  return random.below(2) == 0 ? uniform(random, m, n) : well_conditioned(random, m, n);
}

double least_on_diagonal(const Matrix& R, std::size_t n) {
  double least = INFINITY;
  for (std::size_t j = 0; j < n; ++j) least = std::min(least, std::fabs(R(j, j)));
  return least;
}

// What has to reach kShortest: the |R(j, j)| of the columns with a reflection; and with more columns than
// rows also those of the rank-revealing solve, which reflects every row of its R.
Matrix at_small_end(const Matrix& A) {
  if (A.n == 1 && A.m == 1) return scaled(A, factor_to(std::fabs(A.a[0]), kLeastLast));
  const TnLaTQRDecompo<TnLaDblMat> qr(dense(A));
  double least = least_on_diagonal(plain(qr.R()), static_cast<std::size_t>(qr.n_trafo()));
  if (A.m < A.n) {
    const reference::RankRevealing revealing(A, INFINITY);  // which leaves its R as it is
    least = std::min(least, least_on_diagonal(revealing.A, A.m));
  }
  return scaled(A, factor_to(least, kShortest));
}

Matrix at_large_end(const Matrix& A) {
  const TnLaTQRDecompo<TnLaDblMat> qr(dense(A));
  double largest = 0.0;
  for (std::size_t j = 0; j < std::min(A.m, A.n); ++j) largest = std::max(largest, std::fabs(qr.R()(j, j)));
  return scaled(A, factor_to(largest, kLongest) / 2.0);
}

// Of the same condition.
Matrix upper_triangle(const Matrix& A) { return plain(TnLaTQRDecompo<TnLaDblMat>(dense(A)).R()); }

// Columns between 2^-12 and 2^12 times as long.
Matrix with_uneven_columns(Random& random, Matrix A) {
  for (std::size_t j = 0; j < A.n; ++j) {
    const double factor = std::ldexp(1.0, static_cast<int>(random.below(25)) - 12);
    for (std::size_t i = 0; i < A.m; ++i) A(i, j) *= factor;
  }
  return A;
}

}  // namespace

// Rows of any condition that the spreads give, brought into the range.
void add_conditioned(std::vector<Type>& types, const char* name, long double condition, double factor) {
  for (const auto& [spread, spread_name] : spreads()) {
    types.push_back({std::string(name) + ", " + spread_name,
                     [of = spread, condition, factor](Random& random, std::size_t m, std::size_t n) {
                       return scaled(of_condition(random, m, n, of, condition), factor);
                     }});
  }
}

std::vector<Type> regular_types() {
  std::vector<Type> types = {
      {"diagonal",
       [](Random& random, std::size_t m, std::size_t n) {
         return rounded(wide_diagonal(m, n, singular_values(random, std::min(m, n), Spread::random, 2.0L)));
       }},
      {"upper triangular", [](Random& random, std::size_t m,
                              std::size_t n) { return upper_triangle(well_conditioned(random, m, n)); }},
      {"lower triangular",
       [](Random& random, std::size_t m, std::size_t n) {
         return transposed(upper_triangle(well_conditioned(random, n, m)));
       }},
      {"uniform entries", uniform},
      {"condition 2", well_conditioned},
      {"columns of uneven length",
       [](Random& random, std::size_t m, std::size_t n) {
         return with_uneven_columns(random, either(random, m, n));
       }},
      {"at the small end of the range",
       [](Random& random, std::size_t m, std::size_t n) { return at_small_end(either(random, m, n)); }},
      {"at the large end of the range",
       [](Random& random, std::size_t m, std::size_t n) { return at_large_end(either(random, m, n)); }},
  };
  add_conditioned(types, "condition 3e7", kHalf, 1.0);
  return types;
}

std::vector<Type> singular_types() {
  return {
      {"first column zero",
       [](Random& random, std::size_t m, std::size_t n) {
         return without_column(well_conditioned(random, m, n), 0);
       },
       [](std::size_t m, std::size_t n) { return std::min(m, n - 1); }},
      {"last column zero",
       [](Random& random, std::size_t m, std::size_t n) {
         return without_column(well_conditioned(random, m, n), n - 1);
       },
       [](std::size_t m, std::size_t n) { return std::min(m, n - 1); }},
      {"last half of the columns zero",
       [](Random& random, std::size_t m, std::size_t n) {
         Matrix A = well_conditioned(random, m, n);
         for (std::size_t j = n / 2; j < n; ++j) A = without_column(A, j);
         return A;
       },
       [](std::size_t m, std::size_t n) { return std::min(m, n / 2); }},
  };
}
