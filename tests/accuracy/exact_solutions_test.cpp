// SPDX-License-Identifier: MIT

// Systems whose exact solutions are known: exact_problems.txt, which exact_problems.py has solved in
// integers and fractions.  Every solution is held to a bound that is derived, and all of them to the bits
// that they have on every machine.
//
// The bound.  The computed X solves a system in which column j of A is off by e * |column j| and a column b
// of B by e * |b|, with
//
//     e = (6 m - 3 n + 41) n u,   u = 2^-53   (Lawson and Hanson, Solving Least Squares Problems, chapters
//                                             15 and 16; their proof goes column by column)
//
// (with m and n exchanged if there are more columns than rows), and twice as much where the rank is below
// the number of columns, for the reflections from the right. exact_problems.py bounds what such a change
// does to every element of X: e * bound.  As X itself is off, too, that grows to e * bound / (1 - e *
// sensitivity); and the stored X is rounded: u |X|.
//
// That is the worst case: every rounding error as large as can be, and all of one direction.  The test
// takes sqrt(6 m - 3 n + 41) * sqrt(n) in place of their product, which is what is left when errors cancel
// as they do (Wilkinson's rule; Higham and Mary, A new approach to probabilistic rounding error analysis,
// 2019).  No error is a matter of chance here: what passes once passes always.

#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <fstream>
#include <iomanip>
#include <sstream>
#include <string>
#include <type_traits>
#include <vector>

#include "accuracy/digest.h"
#include "accuracy/wide.h"
#include "reference/cholesky_reference.h"
#include "support/bits.h"
#include "support/decomposition_types.h"
#include "tarntnla.h"

namespace {

struct Problem {
  std::string name;
  Matrix A;
  Matrix B;
  Matrix X;
  Matrix bound;
  std::size_t rank = 0;
  bool verdict = false;
  double tol = 0.0;
  double sensitivity = 0.0;
  double det = 0.0;  // if the rank is that of a square matrix

  bool is_square() const { return A.m == A.n; }
  bool is_regular() const { return is_square() && rank == A.n; }
};

// Reads one word after the other; anything unexpected ends the test.
class Reader {
 public:
  explicit Reader(const std::string& path) : file_(path) {
    if (!file_) throw std::runtime_error("cannot read " + path);
  }

  // Of the next problem; false at the end.
  bool next(Problem& p) {
    if (!(file_ >> word_)) return false;
    expect("problem");
    p = Problem();
    std::size_t m = 0;
    std::size_t n = 0;
    std::size_t n_rhs = 0;
    file_ >> p.name >> m >> n >> n_rhs >> p.rank >> p.verdict;
    p.tol = number();
    p.A = matrix("A", m, n);
    p.B = matrix("B", m, n_rhs);
    p.X = matrix("X", n, n_rhs);
    p.bound = matrix("bound", n, n_rhs);
    head("sensitivity");
    p.sensitivity = number();
    if (p.is_regular()) {
      head("det");
      p.det = number();
    }
    return true;
  }

 private:
  void expect(const char* word) const {
    if (word_ != word) throw std::runtime_error("'" + word_ + "' in place of '" + word + "'");
  }
  void head(const char* word) {
    file_ >> word_;
    expect(word);
  }
  double number() {
    file_ >> word_;
    char* end = nullptr;
    const double x = std::strtod(word_.c_str(), &end);
    if (!file_ || end == word_.c_str() || *end != '\0') throw std::runtime_error("no number: " + word_);
    return x;
  }
  Matrix matrix(const char* name, std::size_t m, std::size_t n) {
    head(name);
    Matrix result(m, n);
    for (std::size_t i = 0; i < m; ++i) {
      for (std::size_t j = 0; j < n; ++j) result(i, j) = number();
    }
    return result;
  }

  std::ifstream file_;
  std::string word_;
};

const std::vector<Problem>& problems() {
  static const std::vector<Problem> all = [] {
    std::vector<Problem> read;
    Reader reader(EXACT_PROBLEMS);
    for (Problem p; reader.next(p);) read.push_back(p);
    return read;
  }();
  return all;
}

// --- The bound ------------------------------------------------------------------------------------------

long double backward_error(const Problem& p) {
  const long double m = static_cast<long double>(p.A.m);
  const long double n = static_cast<long double>(p.A.n);
  const long double once =
      std::sqrt((6 * std::max(m, n) - 3 * std::min(m, n) + 41) * std::min(m, n)) * kUnit;
  return p.rank < p.A.n ? 2 * once : once;
}

// The largest part of its bound that an error takes.
long double used_part(const Problem& p, const Matrix& X) {
  EXPECT_EQ(X.m, p.X.m);
  EXPECT_EQ(X.n, p.X.n);
  const long double e = backward_error(p);
  long double largest = 0.0L;
  for (std::size_t k = 0; k < p.X.a.size(); ++k) {
    const long double allowed =
        e * p.bound.a[k] / (1 - e * p.sensitivity) + kUnit * std::fabs(static_cast<long double>(p.X.a[k]));
    const long double error = std::fabs(static_cast<long double>(X.a[k]) - p.X.a[k]);
    const long double part = error == 0.0L ? 0.0L : error / allowed;
    if (!(part <= largest)) largest = part;
  }
  return largest;
}

// Runs `check` on every problem that is `wanted`; it returns the part of a bound that is used.
template <class Wanted, class Check>
std::size_t for_problems(const char* what, const Wanted& wanted, const Check& check) {
  std::size_t n = 0;
  long double largest = 0.0L;
  std::string where;
  for (const Problem& p : problems()) {
    if (!wanted(p)) continue;
    SCOPED_TRACE(p.name);
    ++n;
    const long double part = check(p);
    EXPECT_TRUE(part <= 1.0L) << "the error is " << part << " times its bound";
    if (part <= largest) continue;
    largest = part;
    where = p.name;
  }
  std::printf("%s: %zu problems, at most %.3Lf of the bound (%s)\n", what, n, largest, where.c_str());
  return n;
}

bool every(const Problem&) { return true; }

// --- Solutions ------------------------------------------------------------------------------------------

struct Answer {
  bool verdict;
  Matrix X;
};

Answer default_answer(const Problem& p) {
  TnLaDblMat X;
  const bool verdict = tnla_linearsolve(dense(p.A), dense(p.B), X);
  return {verdict, plain(X)};
}

Matrix answer_by_tolerance(const Problem& p) {
  TnLaDblMat X;
  int rank = -2;
  tnla_linearsolve(dense(p.A), dense(p.B), X, p.tol, &rank);
  EXPECT_EQ(rank, static_cast<int>(p.rank));
  return plain(X);
}

bool is_solved_by_default(const Problem& p) { return p.A.m < p.A.n ? p.rank == p.A.m : p.verdict; }

TEST(ExactSolutions, ThereAreEnough) {
  std::size_t n_rectangular = 0;
  std::size_t n_deficient = 0;
  for (const Problem& p : problems()) {
    if (!p.is_square()) ++n_rectangular;
    if (p.rank < p.A.n) ++n_deficient;
    EXPECT_LT(backward_error(p) * p.sensitivity, 0.01L) << p.name;  // the bounds are to first order
  }
  EXPECT_GE(problems().size(), 300u);
  EXPECT_GE(n_rectangular, 80u);
  EXPECT_GE(n_deficient, 50u);
}

TEST(ExactSolutions, AreFoundByTheDefaultSolve) {
  const std::size_t n = for_problems("default solve", is_solved_by_default, [](const Problem& p) {
    const Answer answer = default_answer(p);
    EXPECT_TRUE(answer.verdict);
    return used_part(p, answer.X);
  });
  EXPECT_GE(n, 300u);
}

// The verdict is computed exactly, too: the diagonal of R by the leading minors of A'A.
TEST(ExactSolutions, VerdictIsTheExactOne) {
  for (const Problem& p : problems()) {
    EXPECT_EQ(default_answer(p).verdict, is_solved_by_default(p)) << p.name;
  }
}

TEST(ExactSolutions, AreFoundByTheTolerance) {
  for_problems("by tolerance", every,
               [](const Problem& p) { return used_part(p, answer_by_tolerance(p)); });
}

// A small B has as many columns as A: those of the problem come first.
template <std::size_t N>
void expect_same_of_small_type(const Problem& p) {
  using M = Small<N>;
  const M A = as<M>(p.A);
  const M B = as<M>(reference::resized(p.B, N, N));
  M X;
  const bool verdict = tnla_linearsolve(A, B, X);
  const Answer expected = default_answer(p);
  EXPECT_EQ(verdict, expected.verdict);
  if (verdict) {
    EXPECT_SAME_MATRIX(reference::resized(plain(X), N, p.B.n), expected.X);
  }
  int rank = -2;
  tnla_linearsolve(A, B, X, p.tol, &rank);
  EXPECT_EQ(rank, static_cast<int>(p.rank));
  EXPECT_SAME_MATRIX(reference::resized(plain(X), N, p.B.n), answer_by_tolerance(p));
}

TEST(ExactSolutions, SmallTypesFindTheSameBits) {
  std::size_t n = 0;
  for (const Problem& p : problems()) {
    if (!p.is_square()) continue;
    SCOPED_TRACE(p.name);
    for_all_small_sizes([&](auto size) {
      if (size.value != p.A.n) return;
      expect_same_of_small_type<size.value>(p);
      ++n;
    });
  }
  EXPECT_GE(n, 200u);
}

// --- Inverses and determinants --------------------------------------------------------------------------

bool is_inverse(const Problem& p) {
  return p.is_regular() && p.B.n == p.A.n && largest_difference(p.B, reference::identity(p.A.n)) == 0.0;
}

TEST(ExactSolutions, InversesAreSolutionsForTheIdentity) {
  std::size_t n = 0;
  for (const Problem& p : problems()) {
    if (!is_inverse(p)) continue;
    SCOPED_TRACE(p.name);
    ++n;
    TnLaDblMat inverse;
    EXPECT_EQ(tnla_inverse(dense(p.A), inverse), p.verdict);
    if (p.verdict) {
      EXPECT_SAME_MATRIX(inverse, default_answer(p).X);
    }
    tnla_inverse(dense(p.A), inverse, p.tol);
    EXPECT_SAME_MATRIX(inverse, answer_by_tolerance(p));
  }
  EXPECT_GE(n, 100u);
}

// If column j of A is off by E(j), then to first order det A is by the factor 1 + sum row j of the inverse
// times E(j); that is e * sensitivity.  The product of the diagonal takes n roundings more.
TEST(ExactSolutions, DeterminantsAreAsGood) {
  const auto has_verdict = [](const Problem& p) { return p.is_regular() && p.verdict; };
  for_problems("determinants", has_verdict, [](const Problem& p) {
    const long double relative = backward_error(p) * p.sensitivity;
    const long double allowed = relative / (1 - relative) + count(p.A.n + 1) * kUnit;
    return std::fabs((static_cast<long double>(dense(p.A).det()) - p.det) / p.det) / allowed;
  });
  for (const Problem& p : problems()) {
    if (p.is_square() && p.A.n > 1 && !p.verdict) {
      EXPECT_SAME(dense(p.A).det(), 0.0) << p.name;
    }
  }
}

// --- Positive definite matrices -------------------------------------------------------------------------

bool is_symmetric(const Matrix& A) { return A.m == A.n && largest_difference(A, transposed(A)) == 0.0; }

bool is_definite(const Problem& p) {
  return is_inverse(p) && is_symmetric(p.A) && reference::Cholesky(p.A).complete;
}

Matrix inverse_by_cholesky(const Matrix& A) {
  TnLaCholesky cholesky(static_cast<int>(A.n));
  cholesky.a(dense(A).array());
  Matrix X(A.n, A.n);
  for (std::size_t c = 0; c < A.n; ++c) {
    cholesky.b(TnLaDblVec(static_cast<int>(A.n), static_cast<int>(c), 1.0).array());
    const TnArray<double>& x = cholesky.x();
    for (std::size_t i = 0; i < A.n; ++i) X(i, c) = x[i];
  }
  return X;
}

// The computed x solves a system in which A(i, j) is off by (3 n + 1) u sqrt(A(i, i) A(j, j)) at most
// (Higham, Accuracy and Stability of Numerical Algorithms, theorem 10.4, and |L| |L'| by Cauchy's
// inequality).  So element (i, c) of the inverse is off by |row i of the inverse| s * s |column c of it|,
// s(j) = sqrt(A(j, j)).
TEST(ExactSolutions, AreFoundByCholesky) {
  const std::size_t n = for_problems("Cholesky", is_definite, [](const Problem& p) {
    const Matrix X = inverse_by_cholesky(p.A);
    const long double e = (3 * count(p.A.n) + 1) * kUnit;
    std::vector<long double> weight(p.A.n, 0.0L);  // of each row of the inverse, which is symmetric
    for (std::size_t i = 0; i < p.A.n; ++i) {
      for (std::size_t j = 0; j < p.A.n; ++j) {
        weight[i] +=
            std::fabs(static_cast<long double>(p.X(i, j))) * std::sqrt(static_cast<long double>(p.A(j, j)));
      }
    }
    long double condition = 0.0L;
    for (std::size_t i = 0; i < p.A.n; ++i) condition += weight[i] * std::sqrt(p.A(i, i));
    long double largest = 0.0L;
    for (std::size_t c = 0; c < p.A.n; ++c) {
      for (std::size_t i = 0; i < p.A.n; ++i) {
        const long double allowed = e * weight[i] * weight[c] / (1 - e * condition) +
                                    kUnit * std::fabs(static_cast<long double>(p.X(i, c)));
        const long double error = std::fabs(static_cast<long double>(X(i, c)) - p.X(i, c));
        const long double part = error == 0.0L ? 0.0L : error / allowed;
        if (!(part <= largest)) largest = part;
      }
    }
    return largest;
  });
  EXPECT_GE(n, 30u);
}

// --- Bits -----------------------------------------------------------------------------------------------

void add_eigenvectors(const Matrix& A, Digest& digest) {
  TnLaDblMat a = dense(A);
  TnArray<double> values;
  TnLaDblMat vectors;
  EXPECT_TRUE(tnla_eigenvector_basis(a, values, vectors));
  for (std::size_t i = 0; i < A.n; ++i) digest.add(values[i]);
  digest.add(plain(vectors));
}

TEST(ExactSolutions, HaveTheSameBitsEverywhere) {
  Digest solutions;
  Digest definite;
  Digest eigenvectors;
  for (const Problem& p : problems()) {
    const Answer answer = default_answer(p);
    if (answer.verdict || p.A.m < p.A.n) solutions.add(answer.X);
    solutions.add(answer_by_tolerance(p));
    if (p.is_square()) solutions.add(dense(p.A).det());
    if (is_definite(p)) definite.add(inverse_by_cholesky(p.A));
    if (is_symmetric(p.A)) add_eigenvectors(p.A, eigenvectors);
  }
  EXPECT_EQ(solutions.text(), "ec2abc46c8b95dc3");
  EXPECT_EQ(definite.text(), "94350b8fe360bb1a");
  EXPECT_EQ(eigenvectors.text(), "b20b31560494bedc");
}

}  // namespace
