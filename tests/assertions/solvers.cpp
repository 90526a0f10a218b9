// SPDX-License-Identifier: MIT

#include "entries.h"
#include "reference/reflection_reference.h"
#include "support/band_client.h"
#include "support/band_problem.h"
#include "support/dense_objects.h"
#include "support/jets.h"
#include "support/values.h"
#include "tarntnla.h"
#include "tnlathftidecompo.h"

namespace {

// Whose solutions are those of x / 2 and x / 4.
TnLaDblMat halves() { return mat(2, 2, {2, 0, 0, 4}); }
TnLaDblMat right_side() { return mat(2, 1, {6, 8}); }
const std::vector<double> kSolution = {3, 2};

// --- Householder reflections ----------------------------------------------------------------------------

struct Vectors {
  std::vector<double> v = {3, 4};
  std::vector<double> w = {1, 2};
  double up = 0.0;

  bool operator==(const Vectors&) const = default;
};

void expect_h1(int j_pivot, int j_zero) {
  Vectors actual;
  Vectors expected;
  tnla_h1(j_pivot, j_zero, 2, actual.v.data(), 1, actual.up);
  reference::h1(j_pivot, j_zero, 2, expected.v.data(), 1, expected.up);
  EXPECT_EQ(actual, expected);
}

// The reflection is a proper one, the indices with which it is applied need not be.
void expect_h2(int j_pivot, int j_zero) {
  Vectors actual;
  tnla_h1(0, 1, 2, actual.v.data(), 1, actual.up);
  Vectors expected = actual;
  tnla_h2(j_pivot, j_zero, 2, actual.v.data(), 1, actual.up, actual.w.data(), 1, 2, 1);
  reference::h2(j_pivot, j_zero, 2, expected.v.data(), 1, expected.up, expected.w.data(), 1, 2, 1);
  EXPECT_EQ(actual, expected);
}

void expect_identity(int j_pivot, int j_zero) {
  Vectors vectors;
  const TnLaHouseholder reflection(j_pivot, j_zero, 2, vectors.v.data(), 1);
  reflection.apply(vectors.w.data(), 1);
  EXPECT_EQ(vectors, Vectors());
}

void expect_reflects_onto_the_pivot() {
  Vectors vectors;
  const TnLaHouseholder reflection(0, 1, 2, vectors.v.data(), 1);
  EXPECT_EQ(vectors.v, std::vector<double>({-5, 0}));
}

// --- Linear solves --------------------------------------------------------------------------------------

bool solve_by_qr(const TnLaDblMat& B, TnLaDblMat& X) {
  return TnLaTQRDecompo<TnLaDblMat>(halves()).solve(B, X);
}

TnLaDblMat solved_by_rank(const TnLaDblMat& B) {
  TnLaDblMat X;
  TnLaTHFTIDecompo<TnLaDblMat>(halves(), 1e-10).solve(B, X);
  return X;
}

void expect_rank_revealing(double tol, const TnLaDblMat& expected, int expected_rank) {
  TnLaDblMat X = ones(3, 3);
  int rank = 0;
  tnla_linearsolve<TnLaDblMat>(halves(), right_side(), X, tol, &rank);
  expect_unchanged(X, expected);
  EXPECT_EQ(rank, expected_rank);
}

// --- Cholesky -------------------------------------------------------------------------------------------

void expect_cholesky(std::size_t matrix_size, std::size_t load_size, const std::vector<double>& expected) {
  TnLaCholesky cholesky(1);
  cholesky.a(ones(matrix_size).array());
  cholesky.b(ones(load_size).array());
  expect_elements(cholesky.x(), expected);
}

// --- Bands ----------------------------------------------------------------------------------------------

void expect_band(Chain chain, Fault fault, bool solved) {
  TnLaDblMat x;
  EXPECT_EQ(BandClient(6, chain, fault).solve(x), solved);
}

// 2 x0 = 4, 8 and 4 x1 + last (x2) = 8, 16; the first n_rhs of the right sides.
BandProblem two_unknowns(int first, int n_rhs) {
  BandProblem p = band_problem({2, 2, n_rhs}, 1);
  const std::vector<double> rows[] = {{2, 0, 4, 8}, {0, 4, 8, 16}, {4, 5, 8, 16}};
  const auto n_cols = 2 + n_rhs;
  const auto& last = first == 0 ? rows[1] : rows[2];
  p.blocks = {equation(0, {rows[0].begin(), rows[0].begin() + n_cols}),
              equation(first, {last.begin(), last.begin() + n_cols})};
  return p;
}

void expect_two_unknowns(int first, int n_rhs) {
  const std::vector<double> solutions = {2, 2, 4, 4};
  const auto n = static_cast<std::size_t>(n_rhs);
  const Matrix x(2, n, {solutions.begin(), solutions.begin() + 2 * n_rhs});
  expect_same_answer(answer_of(two_unknowns(first, n_rhs)), {true, x});
}

// --- Eigenvectors ---------------------------------------------------------------------------------------

// Stays empty, whatever size it is to get.
class StaysEmpty : public TnArray<double> {
 public:
  void set_size(std::size_t /*n*/, bool /*keep*/) override {}
};

bool has_basis(const TnLaDblMat& A, TnArray<double>& eigenvalues) {
  TnLaDblMat a = A;
  TnLaDblMat vectors;
  return tnla_eigenvector_basis(a, eigenvalues, vectors);
}

// --- Jets -----------------------------------------------------------------------------------------------

const Matrix kJet = jet_of({{0, 0}, {1, 0}});

void expect_adapted(const Matrix& ref, int order, const Vector& first_derivative) {
  EXPECT_SAME_MATRIX(adapted(kJet, ref, order), jet_of({{0, 0}, first_derivative}));
}

}  // namespace

AssertionEntries solver_entries() {
  return {
      // --- Householder reflections ----------------------------------------------------------------------
      {"src/tnlahouseholder.cpp:tnla_h1:1", [] { expect_h1(1, 1); }, [] { expect_h1(0, 1); }},
      {"src/tnlahouseholder.cpp:tnla_h2:1", [] { expect_h2(0, 0); }, [] { expect_h2(0, 1); }},
      {"src/tnlahouseholder.cpp:TnLaHouseholder::TnLaHouseholder:1",
       [] { expect_identity(2, 3); },
       expect_reflects_onto_the_pivot,
       {"src/tnlahouseholder.cpp:TnLaHouseholder::TnLaHouseholder:1",
        "src/tnlahouseholder.cpp:TnLaHouseholder::TnLaHouseholder:2"}},
      {"src/tnlahouseholder.cpp:TnLaHouseholder::TnLaHouseholder:2", [] { expect_identity(0, -1); },
       expect_reflects_onto_the_pivot},

      // --- Linear solves --------------------------------------------------------------------------------
      {"src/tnlaqrdecompo.cpp:TnLaTQRDecompo::solve:1",
       [] {
         TnLaDblMat X;
         EXPECT_FALSE(solve_by_qr(ones(1, 1), X));
         expect_is(X, 2, 1, {0, 0});
       },
       [] {
         TnLaDblMat X;
         EXPECT_TRUE(solve_by_qr(right_side(), X));
         expect_is(X, 2, 1, kSolution);
       }},
      {"src/tnlathftidecompo.cpp:TnLaTHFTIDecompo::solve:1",
       [] {
         expect_is(solved_by_rank(mat(3, 1, {6, 8, 9})), 2, 1, kSolution);
       },
       [] { expect_is(solved_by_rank(right_side()), 2, 1, kSolution); }},
      {"src/tnla_linearsolve.cpp:tnla_linearsolve:1", [] { expect_rank_revealing(0.0, TnLaDblMat(), -1); },
       [] { expect_rank_revealing(kTiny, mat(2, 1, kSolution), 2); }},
      {"src/tnla_linearsolve.cpp:tnla_linearsolve:2",
       [] {
         TnLaDblMat X;
         EXPECT_FALSE(tnla_linearsolve(halves(), ones(1, 1), X));
         expect_is(X, 2, 1, {0, 0});
       },
       [] {
         TnLaDblMat X;
         EXPECT_TRUE(tnla_linearsolve(halves(), right_side(), X));
         expect_is(X, 2, 1, kSolution);
       }},
      {"src/tnla_linearsolve.cpp:tnla_inverse:1",
       [] {
         TnLaDblMat inverse = ones(2, 2);
         int rank = 7;
         tnla_inverse(TnLaDblMat(1, 0, 0.0), inverse, 1e-10, &rank);
         expect_is(inverse, 0, 0, {});
         EXPECT_EQ(rank, 7);
       },
       [] {
         TnLaDblMat inverse;
         tnla_inverse(mat(1, 1, {2}), inverse, 1e-10);
         expect_is(inverse, 1, 1, {0.5});
       }},

      // --- Cholesky -------------------------------------------------------------------------------------
      {"src/tnlacholesky.cpp:TnLaCholesky::a:1",
       [] { expect_cholesky(2, 1, {}); },
       [] { expect_cholesky(1, 1, {1}); },
       {"src/tnlacholesky.cpp:TnLaCholesky::a:1", "src/tnlacholesky.cpp:TnLaCholesky::x:1"}},
      {"src/tnlacholesky.cpp:TnLaCholesky::b:1",
       [] { expect_cholesky(1, 2, {}); },
       [] { expect_cholesky(1, 1, {1}); },
       {"src/tnlacholesky.cpp:TnLaCholesky::b:1", "src/tnlacholesky.cpp:TnLaCholesky::x:1"}},
      {"src/tnlacholesky.cpp:TnLaCholesky::x:1",
       [] {
         TnLaCholesky cholesky(1);
         cholesky.a(ones(1).array());
         expect_elements(cholesky.x(), {});
       },
       [] { expect_cholesky(1, 1, {1}); }},

      // --- Bands ----------------------------------------------------------------------------------------
      {"src/tnlablkbndsolver.cpp:TnLaBlkBndSolver::solve:1",
       [] { expect_band(Chain::open, Fault::negative_count, false); },
       [] { expect_band(Chain::open, Fault::none, true); }},
      {"src/tnlablkbndsolver.cpp:TnLaBlkBndSolver::solve:2",
       [] { expect_band(Chain::closed, Fault::none_exceptional, true); },
       [] { expect_band(Chain::closed, Fault::none, true); }},
      {"src/tnlablkbndsolver.cpp:TnLaBlkBndSolver::solve:3",
       [] { expect_band(Chain::closed, Fault::too_many_exceptional, false); },
       [] { expect_band(Chain::closed, Fault::none, true); }},
      {"src/tnla_band.cpp:tnla_element_or_null:1",
       [] { expect_two_unknowns(1, 2); },
       [] { expect_two_unknowns(0, 2); },
       {"src/tnla_band.cpp:tnla_element_or_null:1", "src/tnla_band.cpp:tnla_element_or_null:1",
        "src/tnla_band.cpp:tnla_element_or_null:2"}},
      {"src/tnla_band.cpp:tnla_element_or_null:2",
       [] { expect_two_unknowns(1, 1); },
       [] { expect_two_unknowns(0, 1); },
       {"src/tnla_band.cpp:tnla_element_or_null:1", "src/tnla_band.cpp:tnla_element_or_null:2"}},

      // --- Eigenvectors ---------------------------------------------------------------------------------
      {"src/tnla_eigenvector_basis.cpp:tnla_eigenvector_basis:1",
       [] {
         TnArray<double> eigenvalues;
         EXPECT_FALSE(has_basis(ones(2, 1), eigenvalues));
         expect_elements(eigenvalues, {0, 0});
       },
       [] {
         TnArray<double> eigenvalues;
         EXPECT_TRUE(has_basis(halves(), eigenvalues));
         expect_elements(eigenvalues, {4, 2});
       }},
      {"src/tnla_eigenvector_basis.cpp:tnla_eigenvector_basis:2",
       [] {
         StaysEmpty eigenvalues;
         EXPECT_FALSE(has_basis(halves(), eigenvalues));
       },
       [] {
         TnArray<double> eigenvalues;
         EXPECT_TRUE(has_basis(ones(1, 1), eigenvalues));
         expect_elements(eigenvalues, {1});
       }},

      // --- Jets -----------------------------------------------------------------------------------------
      {"src/tnla_util.cpp:tnla_util_adapt_jet:1",
       [] {
         expect_adapted(jet_of({{0, 0, 9}, {3, 4, 9}}), 1, {5, 0});
       },
       [] {
         expect_adapted(jet_of({{0, 0}, {3, 4}}), 1, {5, 0});
       }},
      {"src/tnla_util.cpp:tnla_util_adapt_jet:2",
       [] {
         expect_adapted(jet_of({{0, 0}, {3, 4}, {1, 1}}), 2, {5, 0});
       },
       [] {
         expect_adapted(jet_of({{0, 0}, {3, 4}, {1, 1}}), 1, {5, 0});
       }},
      {"src/tnla_util.cpp:tnla_util_adapt_jet:3",
       [] {
         expect_adapted(jet_of({{0, 0}}), 1, {0, 0});
       },
       [] {
         expect_adapted(jet_of({{0, 0}, {3, 4}}), 1, {5, 0});
       }},
  };
}
