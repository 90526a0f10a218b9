// SPDX-License-Identifier: MIT

// Decompositions and what is solved by them, for the dense matrix and the twelve small ones: QR, both forms
// of the linear solve, inverses, determinants, reflections, the Cholesky solver in all its states,
// eigenvectors, jets.
//
// The input is a type, a few systems, and what is done with them, also against a precondition; every result
// must have the bits of its twin, and every call of the assertion hook is expected.

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <new>
#include <optional>
#include <string>
#include <type_traits>
#include <vector>

#include "fuzz/target.h"
#include "reference/cholesky_reference.h"
#include "reference/decomposition_reference.h"
#include "reference/jacobi_reference.h"
#include "support/assertions.h"
#include "support/decomposition_types.h"
#include "support/dense_objects.h"
#include "support/jets.h"
#include "support/strided_vectors.h"
#include "tarntnla.h"

namespace {

using reference::identity;
using reference::Qr;
using reference::RankRevealing;
using reference::Reflection;
using reference::resized;

const std::string kSolve = "src/tnla_linearsolve.cpp";
const std::string kQr = "src/tnlaqrdecompo.cpp";
const std::string kSmallMat = "src/tnlatsmallmat.cpp";
const std::string kReflection = "src/tnlahouseholder.cpp";
const std::string kCholesky = "src/tnlacholesky.cpp";
const std::string kUtil = "src/tnla_util.cpp";
const std::string kMatrixHeader = "interfaces/tnla_matrix_vector_i.h";
const std::string kArrayHeader = "interfaces/tnarray_i.h";

constexpr int kNotWritten = -77;

Files when(bool asserted, const std::string& file) { return asserted ? Files{file} : Files(); }

// --- Systems ------------------------------------------------------------------------------------------

// Mostly few rows and columns, now and then what takes panels and blocks.
std::size_t extent(Bytes& bytes) { return bytes.rarely(8) ? bytes.below(45) : bytes.below(16); }

// A matrix whose columns may depend on one another, differ in length, or be as good as zero.
Matrix system(Bytes& bytes, std::size_t m, std::size_t n) {
  Matrix A = bytes.matrix(m, n);
  const std::size_t kind = bytes.below(6);
  Random random = bytes.random();
  for (std::size_t j = 0; j < n; ++j) {
    if (kind == 1 && j > 0 && random.below(3) == 0) {  // once more
      for (std::size_t i = 0; i < m; ++i) A(i, j) = A(i, j - 1);
    }
    if (kind == 2) {
      for (std::size_t i = 0; i < m; ++i)
        A(i, j) = std::ldexp(A(i, j), -static_cast<int>(random.below(60)));
    }
    if (kind == 3) {  // symmetric, with more or less of a diagonal
      for (std::size_t i = 0; i < std::min(j, m); ++i) A(i, j) = j < m && i < n ? A(j, i) : A(i, j);
      if (j < m) A(j, j) += static_cast<double>(random.below(2) * n);
    }
    if (kind == 4) {  // triangular
      for (std::size_t i = j + 1; i < m; ++i) A(i, j) = 0.0;
    }
  }
  return kind == 5 ? product(A, system(bytes, n, n)) : A;
}

template <class M>
constexpr bool kIsDense = std::is_same_v<M, TnLaDblMat>;

template <class M>
std::size_t rows_of(Bytes& bytes) {
  if constexpr (kIsDense<M>) {
    return extent(bytes);
  } else {
    return M::DimOut;
  }
}

// The rows and columns of an N x N type are given.
template <class M>
Matrix any_system(Bytes& bytes) {
  const std::size_t m = rows_of<M>(bytes);
  return system(bytes, m, kIsDense<M> && bytes.flag() ? rows_of<M>(bytes) : m);
}

// For A, mostly with as many rows.
template <class M>
Matrix right_side(Bytes& bytes, const Matrix& A) {
  if (!kIsDense<M>) return bytes.matrix(A.m, A.m);
  const std::size_t m = bytes.rarely(16) ? bytes.below(A.m + 3) : A.m;
  return bytes.matrix(m, bytes.rarely(8) ? bytes.below(40) : bytes.below(5));
}

template <class M>
Matrix anything(Bytes& bytes, const Matrix& A) {
  return kIsDense<M> ? bytes.matrix(bytes.below(8), bytes.below(8)) : bytes.matrix(A.m, A.n);
}

// A call of M's resize: a small matrix stays as it is, and asserts.
template <class M>
void expect_resize(Matrix& X, std::size_t m, std::size_t n, Files& files) {
  if (kIsDense<M>) {
    X = resized(X, m, n);
  } else {
    if (m != X.m) files.push_back(kSmallMat);
    if (n != X.n) files.push_back(kSmallMat);
  }
}

// --- Solves -------------------------------------------------------------------------------------------

// By a decomposition of A; what does not fit is a check and, where rows are missing, no solution.
bool qr_solve(const Matrix& A, const Matrix& B, Matrix& X, Files& files) {
  if (A.m != B.m) files.push_back(kQr);
  const bool too_short = B.m < A.m && B.n > 0;
  std::optional<Matrix> solution;
  if (!too_short) solution = Qr(A).solve(resized(B, A.m, B.n));
  X = solution.value_or(resized(X, A.n, B.n));
  return solution.has_value();
}

template <class M>
void rank_revealing_solve(const Matrix& A, const Matrix& B, Matrix& X, double tol, int& rank, Matrix* Z,
                          Files& files) {
  if (A.m != B.m || 0.0 >= tol || A.a.empty() || B.a.empty()) {
    files.push_back(kSolve);
    expect_resize<M>(X, 0, 0, files);
    rank = -1;
    return;
  }
  const RankRevealing twin(A, tol);
  X = twin.solve(B);
  rank = static_cast<int>(twin.rank);
  if (Z == nullptr) return;
  const std::size_t n_free = A.n - twin.rank;
  if (kIsDense<M>) {
    *Z = twin.null_space(*Z);
    return;
  }
  Matrix whole = *Z;
  expect_resize<M>(whole, n_free == 0 ? 0 : A.n, n_free, files);
  if (n_free > 0) twin.basis(*Z);  // turns all columns
}

template <class M>
bool default_solve(const Matrix& A, const Matrix& B, Matrix& X, Matrix* Z, Files& files) {
  if (A.m < A.n) {
    int rank = 0;
    rank_revealing_solve<M>(A, B, X, 1e-13, rank, Z, files);
    return rank == static_cast<int>(A.m);
  }
  const bool solved = qr_solve(A, B, X, files);
  if (Z != nullptr) expect_resize<M>(*Z, 0, 0, files);
  return solved;
}

template <class M>
void check_qr(Bytes& bytes) {
  const Matrix A = any_system<M>(bytes);
  const Matrix B = right_side<M>(bytes, A);
  const Qr twin(A);
  const AssertionLog log;
  const M matrix = as<M>(A);
  const TnLaTQRDecompo<M> qr(matrix);
  EXPECT_SAME_MATRIX(matrix, A);
  EXPECT_SAME_MATRIX(qr.R(), twin.R);
  EXPECT_EQ(qr.full_rank(), twin.full_rank);
  ASSERT_EQ(qr.n_trafo(), static_cast<int>(twin.reflections.size()));
  for (int i = 0; i < qr.n_trafo(); ++i) {
    std::vector<double> w = bytes.random().vector(A.m);
    std::vector<double> expected = w;
    twin.reflections[static_cast<std::size_t>(i)].apply(expected.data(), 1);
    qr.T(i).apply(w.data(), 1);
    EXPECT_SAME_ARRAY(w.size(), w.data(), expected.data());
  }
  Files files;
  Matrix expected = anything<M>(bytes, A);
  M X = as<M>(expected);
  EXPECT_EQ(qr.solve(as<M>(B), X), qr_solve(A, B, expected, files));
  EXPECT_SAME_MATRIX(X, expected);
  EXPECT_EQ(log.files(), files);
}

// X may be A.
template <class M>
void check_default_solve(Bytes& bytes) {
  const Matrix A = any_system<M>(bytes);
  const Matrix B = right_side<M>(bytes, A);
  const bool in_place = bytes.flag(), with_null_space = bytes.flag();
  Matrix expected = in_place ? A : anything<M>(bytes, A);
  Matrix null_space = anything<M>(bytes, A);
  const M matrix = as<M>(A);
  M X = as<M>(expected);
  M Z = as<M>(null_space);
  Files files;
  const bool solved = default_solve<M>(A, B, expected, with_null_space ? &null_space : nullptr, files);
  const AssertionLog log;
  EXPECT_EQ(tnla_linearsolve(in_place ? X : matrix, as<M>(B), X, with_null_space ? &Z : nullptr), solved);
  EXPECT_SAME_MATRIX(X, expected);
  EXPECT_SAME_MATRIX(Z, null_space);
  EXPECT_EQ(log.files(), files);
}

template <class M>
void check_rank_revealing_solve(Bytes& bytes) {
  static constexpr double kTolerances[] = {1e-13, 1e-10, 1e-3, 0.5,  100.0, 1e-20,
                                           kTiny, 0.0,   -0.0, -1.0, kNaN,  kInf};
  const Matrix A = any_system<M>(bytes);
  const Matrix B = right_side<M>(bytes, A);
  const double tol = bytes.one_of(kTolerances);
  const bool in_place = bytes.flag(), with_null_space = bytes.flag(), with_rank = bytes.flag();
  Matrix expected = in_place ? A : anything<M>(bytes, A);
  Matrix null_space = anything<M>(bytes, A);
  const M matrix = as<M>(A);
  M X = as<M>(expected);
  M Z = as<M>(null_space);
  Files files;
  int expected_rank = kNotWritten;
  rank_revealing_solve<M>(A, B, expected, tol, expected_rank, with_null_space ? &null_space : nullptr,
                          files);
  int rank = kNotWritten;
  const AssertionLog log;
  tnla_linearsolve(in_place ? X : matrix, as<M>(B), X, tol, with_rank ? &rank : nullptr,
                   with_null_space ? &Z : nullptr);
  EXPECT_EQ(rank, with_rank ? expected_rank : kNotWritten);
  EXPECT_SAME_MATRIX(X, expected);
  EXPECT_SAME_MATRIX(Z, null_space);
  EXPECT_EQ(log.files(), files);
}

// --- Inverse and determinant --------------------------------------------------------------------------

void pseudo_inverse(const Matrix& A, Matrix& X, double tol, int& rank, Files& files) {
  if (!A.a.empty()) return rank_revealing_solve<TnLaDblMat>(A, identity(A.m), X, tol, rank, nullptr, files);
  files.push_back(kSolve);
  X = Matrix();
}

void check_inverse(Bytes& bytes) {
  const Matrix A = any_system<TnLaDblMat>(bytes);
  const bool in_place = bytes.flag();
  Matrix expected = in_place ? A : anything<TnLaDblMat>(bytes, A);
  TnLaDblMat matrix = dense(A);
  TnLaDblMat other = dense(expected);
  TnLaDblMat& X = in_place ? matrix : other;
  Files files;
  const AssertionLog log;
  if (bytes.flag()) {
    const bool inverted = default_solve<TnLaDblMat>(A, identity(A.m), expected, nullptr, files);
    EXPECT_EQ(tnla_inverse(matrix, X), inverted);
  } else {
    const double tol = bytes.flag() ? 1e-10 : bytes.number();
    int expected_rank = kNotWritten;
    pseudo_inverse(A, expected, tol, expected_rank, files);
    int rank = kNotWritten;
    tnla_inverse(matrix, X, tol, &rank);
    EXPECT_EQ(rank, expected_rank);
  }
  EXPECT_SAME_MATRIX(X, expected);
  EXPECT_EQ(log.files(), files);
}

void check_members(Bytes& bytes) {
  const Matrix A = any_system<TnLaDblMat>(bytes);
  Matrix expected = A;
  Files files;
  if (!default_solve<TnLaDblMat>(A, identity(A.m), expected, nullptr, files)) {
    int rank = 0;
    pseudo_inverse(A, expected, 1e-20, rank, files);
  }
  const bool has_determinant = A.m == A.n && A.n > 0;
  TnLaDblMat X = dense(A);
  const AssertionLog log;
  EXPECT_SAME(X.det(), !has_determinant ? 0.0 : A.n == 1 ? A.a[0] : reference::determinant(A));
  if (bytes.flag()) {
    X = X.inv();
  } else {
    X.invert();
  }
  EXPECT_SAME_MATRIX(X, expected);
  EXPECT_EQ(log.files(), files);
}

// --- Reflections --------------------------------------------------------------------------------------

bool is_valid(const Indices& at) { return 0 <= at.pivot && at.pivot < at.zero && at.zero <= at.n; }

// Mostly valid; else with a pivot that is in the range.
Indices any_indices(Bytes& bytes) {
  const int n = bytes.between(1, bytes.rarely(8) ? 80 : 12);
  const int zero = bytes.between(bytes.rarely(16) ? 0 : 1, n);
  return {bytes.between(0, bytes.rarely(16) ? n - 1 : std::max(0, zero - 1)), zero, n};
}

Block any_strided(Bytes& bytes, int n, int incr) {
  const int reach = std::abs(incr) * (n - 1);
  const auto extent_of_it = static_cast<std::size_t>(reach);
  return {bytes.numbers(extent_of_it + 1), incr < 0 ? static_cast<std::ptrdiff_t>(extent_of_it) : 0};
}

void check_raw_reflection(Bytes& bytes) {
  static constexpr int kSteps[] = {1, 2, 3, 7, -1, -2};
  const Indices at = any_indices(bytes);
  const int incr = bytes.one_of(kSteps);
  Block u = any_strided(bytes, at.n, incr);
  Block expected = u;
  const double up_before = bytes.number();
  double up = up_before, expected_up = up_before;
  Files files = when(!is_valid(at), kReflection);
  const AssertionLog log;
  tnla_h1(at.pivot, at.zero, at.n, u.start(), incr, up);
  reference::h1(at.pivot, at.zero, at.n, expected.start(), incr, expected_up);
  EXPECT_SAME_BLOCK(u.values, expected.values);
  EXPECT_SAME(up, expected_up);

  const int n_vec = bytes.between(-1, bytes.rarely(4) ? 40 : 6);
  const int incr_c = bytes.one_of(kSteps);
  const int stride = bytes.between(-90, 90);
  const std::ptrdiff_t down = static_cast<std::ptrdiff_t>(incr_c) * (at.n - 1);
  const std::ptrdiff_t right = static_cast<std::ptrdiff_t>(stride) * std::max(0, n_vec - 1);
  Block c;
  c.origin = -std::min<std::ptrdiff_t>(0, down) - std::min<std::ptrdiff_t>(0, right);
  const std::ptrdiff_t end =
      c.origin + std::max<std::ptrdiff_t>(0, down) + std::max<std::ptrdiff_t>(0, right);
  c.values = bytes.numbers(static_cast<std::size_t>(end) + 1);
  Block expected_c = c;
  tnla_h2(at.pivot, at.zero, at.n, u.start(), incr, up, c.start(), incr_c, stride, n_vec);
  reference::h2(at.pivot, at.zero, at.n, u.start(), incr, up, expected_c.start(), incr_c, stride, n_vec);
  EXPECT_SAME_BLOCK(c.values, expected_c.values);
  if (!is_valid(at)) files.push_back(kReflection);
  EXPECT_EQ(log.files(), files);
}

void check_reflection(Bytes& bytes) {
  const Indices at = any_indices(bytes);
  const int incr = bytes.one_of({1, 2, 5, -1});
  Block v = any_strided(bytes, at.n, incr);
  Block expected = v;
  const AssertionLog log;
  const TnLaHouseholder h(at.pivot, at.zero, at.n, v.start(), incr);
  const Reflection twin(at.pivot, at.zero, at.n, expected.start(), incr);
  EXPECT_SAME_BLOCK(v.values, expected.values);
  const TnLaHouseholder copy(h);
  Block identity_of_one{{1.0}, 0};
  TnLaHouseholder assigned(0, 1, 1, identity_of_one.start(), 1);
  assigned = copy;
  const Block w = any_strided(bytes, at.n, incr);
  expect_applies(h, twin, w, incr);
  expect_applies(assigned, twin, w, incr);
  if (bytes.rarely(8)) expect_holds(h, twin);
  EXPECT_EQ(log.files(), when(!is_valid(at), kReflection));
}

// A pivot that does not exist.
void check_no_reflection(Bytes& bytes) {
  const int n = bytes.between(-2, 9);
  const int zero = bytes.between(-2, 11);
  const bool negative_zero = bytes.flag();
  const int pivot = negative_zero  ? bytes.between(0, std::max(0, n - 1))
                    : bytes.flag() ? -1 - bytes.between(0, 3)
                                   : std::max(n, 0);
  const int j_zero = negative_zero ? -1 - bytes.between(0, 3) : zero;
  std::vector<double> v = bytes.numbers(static_cast<std::size_t>(std::max(n, 0)));
  const std::vector<double> before = v;
  const AssertionLog log;
  try {
    const TnLaHouseholder h(pivot, j_zero, n, v.data(), 1);
    EXPECT_GE(n, 0);
    Files files = when(pivot < 0 || pivot >= n, kArrayHeader);
    if (!is_valid({pivot, j_zero, n})) files.push_back(kReflection);
    EXPECT_EQ(log.files(), files);
  } catch (const std::bad_alloc&) {
    EXPECT_LT(n, 0);
  }
  EXPECT_EQ(v.size(), before.size());
  EXPECT_SAME_ARRAY(v.size(), v.data(), before.data());
}

// --- Cholesky -----------------------------------------------------------------------------------------

TnArray<double> array(const std::vector<double>& values) { return vec(values).array(); }

TnArray<double> one_more(std::vector<double> values) {
  values.push_back(0.0);
  return array(values);
}

// One object through a list of matrices, right sides and solutions, some of a wrong length.
void check_cholesky(Bytes& bytes) {
  const int n = bytes.rarely(4) ? bytes.between(0, 60) : bytes.between(1, 9);
  const auto order = static_cast<std::size_t>(n);
  TnLaCholesky cholesky(n);
  std::optional<Matrix> A;
  std::optional<std::vector<double>> b;
  const AssertionLog log;
  Files files;
  for (int step = 0; step < 12; ++step) {
    const std::size_t what = bytes.below(4);
    const bool is_wrong = what < 2 && bytes.rarely(8);
    if (is_wrong) files.push_back(kCholesky);
    if (what == 0) {
      A = system(bytes, order, order);
      if (bytes.flag()) A = product(*A, transposed(*A));
      cholesky.a(is_wrong ? one_more(A->a) : array(A->a));
      if (is_wrong) A.reset();
    } else if (what == 1) {
      b = bytes.numbers(order);
      cholesky.b(is_wrong ? one_more(*b) : array(*b));
      if (is_wrong) b.reset();
    } else {
      const TnArray<double>& x = cholesky.x();
      const bool is_set = A && b;
      if (!is_set) files.push_back(kCholesky);
      const std::vector<double> expected =
          is_set ? reference::cholesky_solution(*A, *b) : std::vector<double>();
      ASSERT_EQ(x.size(), expected.size());
      EXPECT_SAME_ARRAY(x.size(), x.data(), expected.data());
    }
  }
  EXPECT_EQ(log.files(), files);
}

// --- Eigenvectors -------------------------------------------------------------------------------------

void check_eigenvectors(Bytes& bytes) {
  const std::size_t n = bytes.rarely(8) ? bytes.below(40) : bytes.below(16);
  const std::size_t n_cols = bytes.rarely(8) ? bytes.below(n + 4) : n;
  const Matrix A = system(bytes, n, n_cols);
  TnLaDblMat a = dense(A);
  TnArray<double> values = array(bytes.numbers(bytes.below(5)));
  TnLaDblMat vectors = dense(bytes.matrix(bytes.below(4), bytes.below(4)));
  const AssertionLog log;
  const bool converged = tnla_eigenvector_basis(a, values, vectors);
  EXPECT_EQ(log.files(), when(n_cols < n, kMatrixHeader));
  ASSERT_EQ(values.size(), n);
  if (n_cols < n) {
    EXPECT_FALSE(converged);
    EXPECT_SAME_MATRIX(a, A);
    EXPECT_SAME_ARRAY(n, values.data(), std::vector<double>(n, 0.0).data());
    EXPECT_SAME_MATRIX(vectors, identity(n));
    return;
  }
  const reference::Jacobi twin(A);
  EXPECT_EQ(converged, twin.converged);
  EXPECT_SAME_MATRIX(a, twin.a);
  EXPECT_SAME_ARRAY(n, values.data(), twin.d.data());
  EXPECT_SAME_MATRIX(vectors, twin.V);
}

// --- Jets ---------------------------------------------------------------------------------------------

void check_jet(Bytes& bytes) {
  const std::size_t rows = bytes.below(7);
  const std::size_t ref_rows = bytes.rarely(8) ? bytes.below(7) : rows;
  const Matrix jet = bytes.matrix(rows, bytes.below(6));
  const Matrix ref = bytes.matrix(ref_rows, bytes.below(6));
  Request request{bytes.between(-1, 5), bytes.flag()};
  if (bytes.flag()) request.orientation = bytes.between(-2, 2);
  if (bytes.flag()) request.level = bytes.between(-1, 2);
  const bool same = bytes.rarely(8);
  TnLaDblMat x = dense(jet);
  const TnLaDblMat other = dense(ref);
  const TnLaDblMat& reference_jet = same ? x : other;
  Files files = when(x.n_rows() != reference_jet.n_rows(), kUtil);
  const auto lacks = [&](const TnLaDblMat& J) { return request.order >= static_cast<int>(J.n_cols()); };
  if (lacks(x)) files.push_back(kUtil);
  if (lacks(reference_jet)) files.push_back(kUtil);
  const AssertionLog log;
  expect_adapts_like_the_twin(request, x, reference_jet);
  EXPECT_EQ(log.files(), files);
}

// --- The target ---------------------------------------------------------------------------------------

using Check = void (*)(Bytes&);

constexpr Check kDenseChecks[] = {
    check_inverse,       check_members,  check_raw_reflection, check_reflection,
    check_no_reflection, check_cholesky, check_eigenvectors,   check_jet};

template <class M>
void check_one(Bytes& bytes) {
  static constexpr Check kChecks[] = {check_qr<M>, check_default_solve<M>, check_rank_revealing_solve<M>};
  bytes.one_of(kChecks)(bytes);
}

template <std::size_t... I>
void check_small(Bytes& bytes, std::index_sequence<I...>) {
  static constexpr Check kTypes[] = {check_one<Small<I + 1>>...};
  bytes.one_of(kTypes)(bytes);
}

}  // namespace

void run(Bytes& bytes) {
  constexpr int kMostChecks = 8;
  for (int i = 0; i < kMostChecks && !bytes.empty(); ++i) {
    switch (bytes.below(3)) {
      case 0:
        check_one<TnLaDblMat>(bytes);
        break;
      case 1:
        check_small(bytes, std::make_index_sequence<12>());
        break;
      default:
        bytes.one_of(kDenseChecks)(bytes);
    }
    if (testing::UnitTest::GetInstance()->ad_hoc_test_result().Failed()) return;
  }
}
