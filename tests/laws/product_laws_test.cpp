// SPDX-License-Identifier: MIT

// Laws of the products and of the sums on plain arrays.

#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <vector>

#include "laws/laws.h"

namespace {

constexpr std::uint64_t kSeeds = 2000;

struct Operands {
  Matrix A;
  Matrix B;
};

// Now and then beyond the blocks into which a large product is cut.
std::size_t any_dimension(Random& random) {
  return random.below(64) == 0 ? between(random, 100, 300) : dimension(random);
}

Operands operands(Random& random) {
  const std::size_t m = any_dimension(random);
  const std::size_t k = any_dimension(random);
  const Matrix A = random_matrix(random, m, k);
  return {A, random_matrix(random, k, any_dimension(random))};
}

Matrix product_of(const Operands& o) { return plain(dense(o.A) * dense(o.B)); }

// The same numbers, `row` and `col` apart, between others that may not be read.
struct Strided {
  std::size_t row;
  std::size_t col;
  std::vector<double> values;

  std::size_t at(std::size_t i, std::size_t j) const { return i * row + j * col; }
  int row_step() const { return static_cast<int>(row); }
  int col_step() const { return static_cast<int>(col); }
};

Strided strided(Random& random, const Matrix& A) {
  const std::size_t inner = between(random, 1, 3);
  const std::size_t gap = random.below(3);
  const bool by_row = random.below(2) == 0;
  Strided s{by_row ? inner * A.n + gap : inner, by_row ? inner : inner * A.m + gap, {}};
  s.values.assign(s.at(A.m, A.n), kNaN);
  for (std::size_t j = 0; j < A.n; ++j) {
    for (std::size_t i = 0; i < A.m; ++i) s.values[s.at(i, j)] = A(i, j);
  }
  return s;
}

Matrix read(const Strided& s, std::size_t m, std::size_t n) {
  Matrix A(m, n);
  for (std::size_t j = 0; j < n; ++j) {
    for (std::size_t i = 0; i < m; ++i) A(i, j) = s.values[s.at(i, j)];
  }
  return A;
}

// Any steps of the three operands: the contiguous product.
TEST(ProductLaws, StridedProductIsTheContiguousOne) {
  for_seeds(kSeeds, [](Random& random) {
    const Operands o = operands(random);
    const Strided a = strided(random, o.A);
    const Strided b = strided(random, o.B);
    Strided c = strided(random, Matrix(o.A.m, o.B.n));
    tnla_mat_mat_prod(o.A.m, o.A.n, o.B.n, a.values.data(), b.values.data(), c.values.data(), a.row_step(),
                      a.col_step(), b.row_step(), b.col_step(), c.row_step(), c.col_step());
    EXPECT_SAME_MATRIX(read(c, o.A.m, o.B.n), product_of(o));
  });
}

// Exchanged steps read the transpose: as the product of a transposed copy.
TEST(ProductLaws, TransposedProductIsThatOfACopy) {
  for_seeds(kSeeds, [](Random& random) {
    const Operands o = operands(random);
    const Matrix At = transposed(o.A);
    const Matrix Bt = transposed(o.B);
    const int m = static_cast<int>(o.A.m);
    const int k = static_cast<int>(o.A.n);
    const int n = static_cast<int>(o.B.n);
    Matrix C(o.A.m, o.B.n);
    const auto expect_product = [&] {
      EXPECT_SAME_MATRIX(C, product_of(o));
      std::fill(C.a.begin(), C.a.end(), kNaN);
    };
    tnla_mat_mat_prod(o.A.m, o.A.n, o.B.n, At.a.data(), o.B.a.data(), C.a.data(), k, 1, 1, k, 1, m);
    expect_product();
    tnla_mat_mat_prod(o.A.m, o.A.n, o.B.n, o.A.a.data(), Bt.a.data(), C.a.data(), 1, m, n, 1, 1, m);
    expect_product();
    tnla_mat_mat_prod(o.A.m, o.A.n, o.B.n, At.a.data(), Bt.a.data(), C.a.data(), k, 1, n, 1, 1, m);
    expect_product();
    EXPECT_SAME_MATRIX(dense(At).tr() * dense(o.B), product_of(o));
  });
}

// (A B)' = B' A'.
TEST(ProductLaws, TransposeOfAProductIsTheProductOfTheTransposes) {
  for_seeds(kSeeds, [](Random& random) {
    const Operands o = operands(random);
    EXPECT_SAME_MATRIX(product_of({transposed(o.B), transposed(o.A)}), transposed(product_of(o)));
  });
}

// Rows of A and columns of B, some of them, in any order: those of A B.
TEST(ProductLaws, RowsAndColumnsAreIndependent) {
  for_seeds(kSeeds, [](Random& random) {
    const Operands o = operands(random);
    std::vector<std::size_t> rows = permutation(random, o.A.m);
    std::vector<std::size_t> columns = permutation(random, o.B.n);
    rows.resize(between(random, 1, rows.size()));
    columns.resize(between(random, 1, columns.size()));
    EXPECT_SAME_MATRIX(product_of({with_rows(o.A, rows), with_columns(o.B, columns)}),
                       with_columns(with_rows(product_of(o), rows), columns));
  });
}

// Columns of zeros in A and any rows in B opposite them, or the other way round: A B as it was.
TEST(ProductLaws, ZeroColumnsLeaveTheProduct) {
  for_seeds(kSeeds, [](Random& random) {
    const Operands o = operands(random);
    const std::size_t at = between(random, 0, o.A.n);
    const std::size_t more = between(random, 1, 9);
    Operands longer = {with_zero_columns(o.A, at, more), with_zero_rows(o.B, at, more)};
    const bool in_a = random.below(2) == 0;
    for (std::size_t l = at; l < at + more; ++l) {
      for (std::size_t i = 0; in_a && i < o.A.m; ++i) longer.A(i, l) = random.uniform();
      for (std::size_t j = 0; !in_a && j < o.B.n; ++j) longer.B(l, j) = random.uniform();
    }
    EXPECT_SAME_MATRIX(product_of(longer), product_of(o));
  });
}

// A times a power of two, of either sign: A B times it.  So is B.
TEST(ProductLaws, ScalingScalesTheProduct) {
  for_seeds(kSeeds, [](Random& random) {
    const Operands o = operands(random);
    const double c = power_of_two(random);
    EXPECT_SAME_MATRIX(product_of({scaled(o.A, c), o.B}), scaled(product_of(o), c));
    EXPECT_SAME_MATRIX(product_of({o.A, scaled(o.B, c)}), scaled(product_of(o), c));
  });
}

// Every way to write a product: operators, functions, and one scalar product an element.
TEST(ProductLaws, AllWaysToAProductAreOne) {
  for_seeds(kSeeds, [](Random& random) {
    const Operands o = operands(random);
    const Matrix C = product_of(o);
    const TnLaDblMat A = dense(o.A);
    TnLaDblMat in_place = A;
    in_place *= dense(o.B);
    EXPECT_SAME_MATRIX(in_place, C);
    TnLaDblMat written;
    tnla_mat_mat_prod(A, dense(o.B), written);
    EXPECT_SAME_MATRIX(written, C);
    Matrix raw(C.m, C.n);
    tnla_mat_mat_prod(C.m, o.A.n, C.n, o.A.a.data(), o.B.a.data(), raw.a.data());
    EXPECT_SAME_MATRIX(raw, C);

    const std::size_t j = random.below(C.n);
    TnLaDblVec x = dense(o.B).col_vec(j);
    TnLaDblVec y;
    tnla_mat_vec_prod(A, x, y);
    EXPECT_SAME_ARRAY(C.m, y.array().data(), column_of(C, j).a.data());
    EXPECT_SAME_ARRAY(C.m, (A * x).array().data(), y.array().data());
    const std::size_t i = random.below(C.m);
    EXPECT_SAME(A.row_vec(i) % x, C(i, j));
    EXPECT_SAME(tnla_scalprod(A.row_vec(i), x), C(i, j));
    x *= A;
    EXPECT_SAME_ARRAY(C.m, x.array().data(), y.array().data());
  });
}

// --- Sums -----------------------------------------------------------------------------------------------

// Zeros behind, or anywhere between: the same sums.
TEST(ProductLaws, ZerosLeaveASum) {
  for_seeds(kSeeds, [](Random& random) {
    const std::size_t n = dimension(random);
    const Matrix x = random_matrix(random, n, 1);
    const Matrix y = random_matrix(random, n, 1);
    const std::size_t at = between(random, 0, n);
    const std::size_t more = between(random, 1, 9);
    const Matrix longer_x = with_zero_rows(x, at, more);
    const Matrix longer_y = with_zero_rows(y, at, more);
    const int before = static_cast<int>(n);
    const int after = static_cast<int>(n + more);
    EXPECT_SAME(tnla_sq_norm(after, longer_x.a.data(), nullptr), tnla_sq_norm(before, x.a.data(), nullptr));
    EXPECT_SAME(tnla_norm(after, longer_x.a.data(), longer_y.a.data()),
                tnla_norm(before, x.a.data(), y.a.data()));
    for (const bool unit : {false, true}) {
      EXPECT_SAME(tnla_scalprod(after, longer_x.a.data(), longer_y.a.data(), unit, !unit),
                  tnla_scalprod(before, x.a.data(), y.a.data(), unit, !unit));
    }
  });
}

// x . y = y . x, without flags; |x - y| of vectors that are far apart is |y - x|; a factor that is a power
// of two comes out.
TEST(ProductLaws, SumsAreSymmetricAndScale) {
  for_seeds(kSeeds, [](Random& random) {
    const std::size_t n = dimension(random);
    const int size = static_cast<int>(n);
    const Matrix x = random_matrix(random, n, 1);
    const Matrix y = random_matrix(random, n, 1);
    const double c = power_of_two(random);
    const Matrix cx = scaled(x, c);
    const double xy = tnla_scalprod(size, x.a.data(), y.a.data());
    EXPECT_SAME(tnla_scalprod(size, y.a.data(), x.a.data()), xy);
    EXPECT_SAME(tnla_scalprod(size, cx.a.data(), y.a.data()), xy * c);
    EXPECT_SAME(tnla_scalprod(size, cx.a.data(), y.a.data(), true),
                std::copysign(1.0, c) * tnla_scalprod(size, x.a.data(), y.a.data(), true));
    EXPECT_SAME(tnla_norm(size, x.a.data(), y.a.data()), tnla_norm(size, y.a.data(), x.a.data()));
    EXPECT_SAME(tnla_sq_norm(size, x.a.data(), nullptr), tnla_scalprod(size, x.a.data(), x.a.data()));
    EXPECT_SAME(tnla_norm(size, cx.a.data(), nullptr), tnla_norm(size, x.a.data(), nullptr) * std::fabs(c));
    Matrix unit = x;
    Matrix scaled_unit = cx;
    tnla_normalize(size, unit.a.data());
    tnla_normalize(size, scaled_unit.a.data());
    EXPECT_SAME_MATRIX(scaled_unit, scaled(unit, std::copysign(1.0, c)));
  });
}

}  // namespace
