// SPDX-License-Identifier: MIT

#include <gtest/gtest.h>

#include <cstddef>
#include <vector>

#include "support/band_problem.h"
#include "support/solver_world.h"
#include "support/trial.h"
#include "support/trial_worlds.h"

// Failing allocations at sizes on both sides of every threshold: work that fits the stack or does not, one
// panel or several, products that are packed or not, bands that are folded row by row or in one go.

namespace {

using trial::random_matrix;
using Qr = TnLaTQRDecompo<TnLaDblMat>;

// Made once for each size.
template <int N>
struct Given {
  static constexpr std::size_t n = N;
  static constexpr int kBandwidth = N / 2 + 1;

  static BandProblem band(int unknowns, int exceptional) {
    Random random(40);
    return random_band_problem(random, {unknowns, kBandwidth, 2}, BandValues::uniform, exceptional);
  }

  TnLaDblMat A = random_matrix(n, n, 1), B = random_matrix(n, 3, 2), flat = trial::rank_one(n, n),
             tall = random_matrix(2 * n, n, 3), tall_B = random_matrix(2 * n, 3, 4),
             wide = random_matrix(n, 2 * n, 5), definite = trial::definite(N, 6, 1.0),
             negative = trial::definite(N, 7, -1.0), jet = random_matrix(n, 4, 8),
             other_jet = random_matrix(n, 4, 9), M = random_matrix(n, n, 10), X = random_matrix(2, 2, 11);
  TnLaDblVec x = trial::random_vector(N, 12), y = trial::random_vector(N, 13);
  std::vector<double> work = Random(14).vector(n);
  BandProblem open = band(4 * kBandwidth, 0), closed = band(2 * kBandwidth, 3),
              closed_long = band(4 * kBandwidth, 3);
};

template <int N>
const Given<N>& given() {
  static const Given<N> all;
  return all;
}

template <int N>
struct SizedWorld {
  static constexpr std::size_t n = N;

  const TnLaDblMat &A = given<N>().A, &B = given<N>().B, &flat = given<N>().flat, &tall = given<N>().tall,
                   &tall_B = given<N>().tall_B, &wide = given<N>().wide, &definite = given<N>().definite,
                   &negative = given<N>().negative, &other_jet = given<N>().other_jet;
  const TnLaDblVec &x = given<N>().x, &y = given<N>().y;

  // The first two have to be as they were after a failure.
  TnLaDblMat symmetric = definite, jet = given<N>().jet;
  TnLaDblMat M = given<N>().M, X = given<N>().X, Z;
  TnLaDblVec v;
  TnArray<double> numbers;
  std::vector<double> work = given<N>().work;
  int rank = -7;
  trial::Results results;
  const BandTable open{given<N>().open}, closed{given<N>().closed}, closed_long{given<N>().closed_long};

  template <class T>
  void keep(const T& result) {
    results.keep(result);
  }

  trial::Record inputs() const {
    trial::Record r;
    for (const TnLaDblMat* m : {&A, &B, &flat, &tall, &tall_B, &wide, &definite, &negative, &other_jet}) {
      r.add(*m);
    }
    return r.add(x).add(y);
  }
  trial::Record steady() const { return trial::Record().add(symmetric).add(jet); }
  trial::Record all() const {
    trial::Record r = steady();
    r.add(M).add(X).add(Z).add(v).add(numbers.data(), numbers.size()).add(work.data(), n).add(rank);
    return r.add(results.data(), results.size());
  }
  bool sound() const {
    using trial::has_zero_tail;
    using trial::is_sound;
    return is_sound(M) && is_sound(X) && is_sound(Z) && is_sound(symmetric) && is_sound(jet) &&
           has_zero_tail(v.array()) && has_zero_tail(numbers) && results.fit();
  }
  void restore() {
    symmetric = given<N>().definite;
    jet = given<N>().jet;
    M = given<N>().M;
    X = given<N>().X;
    Z = TnLaDblMat();
    v = TnLaDblVec();
    numbers = TnArray<double>();
    work = given<N>().work;
    rank = -7;
    results.clear();
  }
};

template <int N>
using Operations = std::vector<trial::Operation<SizedWorld<N>>>;

template <int N>
const Operations<N>& operations() {
  using W = SizedWorld<N>;
  static const Operations<N> all = {
      {"product", [](W& w) { w.M = w.tall * w.wide; }},
      {"product in place", [](W& w) { w.M *= w.A, w.M *= w.M; }},
      {"product into a matrix", [](W& w) { tnla_mat_mat_prod(w.A, w.wide, w.X); }},
      {"product into a vector", [](W& w) { tnla_mat_vec_prod(w.tall, w.x, w.v); }},
      {"vector *= matrix", [](W& w) { w.v = w.x, w.v *= w.tall; }},
      {"sums", [](W& w) { w.M = w.A + w.A - w.M * 2.0; }},
      {"vector sums", [](W& w) { w.v = w.x + w.y * 3.0 - w.x.dir() + w.x.ort(); }},
      {"transpose", [](W& w) { w.X = w.tall.tr(), w.X.transpose(), w.M.transpose(); }},
      {"edit",
       [](W& w) {
         w.M.insert_rows(1, N), w.M.insert_cols(1, N), w.M.remove_rows(0, 1), w.M.remove_cols(0, 1);
         w.M.coilup_rows(w.n), w.M.coilup_cols(w.n), w.M.resize(w.n + 1, w.n, true);
       }},
      {"cross product",
       [](W& w) {
         tnla_crossprod(N, w.x.array().data(), w.y.array().data(), w.work.data(), true, true, true);
       }},
      {"reflection", [](W& w) { TnLaHouseholder(0, 1, N, w.work.data(), 1); }},

      {"QR",
       [](W& w) {
         const Qr qr(w.tall);
         w.X = qr.R(), w.keep(qr.solve(w.tall_B, w.Z));
       }},
      {"QR of rank 1", [](W& w) { w.keep(Qr(w.flat).solve(w.B, w.X)); }},
      {"solve", [](W& w) { w.keep(tnla_linearsolve(w.A, w.B, w.X, &w.Z)); }},
      {"solve for many right sides", [](W& w) { w.keep(tnla_linearsolve(w.A, w.wide, w.X)); }},
      {"solve in place", [](W& w) { w.keep(tnla_linearsolve(w.M, w.A, w.M)); }},
      {"solve in place for many right sides", [](W& w) { w.keep(tnla_linearsolve(w.M, w.wide, w.M)); }},
      {"solve least squares", [](W& w) { w.keep(tnla_linearsolve(w.tall, w.tall_B, w.X)); }},
      {"solve of rank 1", [](W& w) { w.keep(tnla_linearsolve(w.flat, w.B, w.X)); }},
      {"solve, more columns", [](W& w) { w.keep(tnla_linearsolve(w.wide, w.B, w.X, &w.Z)); }},
      {"solve by rank", [](W& w) { tnla_linearsolve(w.A, w.B, w.X, 1e-9, &w.rank, &w.Z); }},
      {"solve by rank, tall", [](W& w) { tnla_linearsolve(w.tall, w.tall_B, w.X, 1e-9, &w.rank, &w.Z); }},
      {"solve by rank, rank 1", [](W& w) { tnla_linearsolve(w.flat, w.A, w.X, 1e-9, &w.rank, &w.Z); }},
      {"solve by rank in place", [](W& w) { tnla_linearsolve(w.M, w.A, w.M, 1e-9, &w.rank, &w.Z); }},
      {"inverse", [](W& w) { w.keep(tnla_inverse(w.A, w.X)); }},
      {"inverse in place", [](W& w) { w.keep(tnla_inverse(w.M, w.M)); }},
      {"inverse by rank in place", [](W& w) { tnla_inverse(w.M, w.M, 1e-9, &w.rank); }},
      {"inverse by rank", [](W& w) { tnla_inverse(w.flat, w.X, 1e-9, &w.rank); }},
      {"invert", [](W& w) { w.M.invert(), w.X = w.flat.inv(); }},
      {"determinant", [](W& w) { w.keep(w.A.det()), w.keep(w.flat.det()); }},

      {"Cholesky",
       [](W& w) {
         TnLaCholesky cholesky(N);
         cholesky.a(w.definite.array()), cholesky.b(w.x.array()), w.v = cholesky.x();
         cholesky.b(w.y.array()), w.numbers = cholesky.x();
       }},
      {"Cholesky without a factor",
       [](W& w) {
         TnLaCholesky cholesky(N);
         cholesky.b(w.x.array()), cholesky.a(w.negative.array()), w.v = cholesky.x();
         w.numbers = cholesky.x();
       }},
      {"eigenvectors", [](W& w) { w.keep(tnla_eigenvector_basis(w.symmetric, w.numbers, w.X)); }},
      {"jet", [](W& w) { tnla_util_adapt_jet(nullptr, 3, w.jet, w.other_jet, false, nullptr); }},
      {"band", [](W& w) { w.keep(w.open.solve(w.X)); }},
      {"closed band, dense solve", [](W& w) { w.keep(w.closed.solve(w.X)); }},
      {"closed band, structured solve", [](W& w) { w.keep(w.closed_long.solve(w.X)); }},
  };
  return all;
}

// Calls f.template operator()<N>() for orders around the smallest systems (12), around what fits the stack
// (16), and for such as take several panels or packed products.
template <class F>
void for_every_size(F f) {
  f.template operator()<2>();
  f.template operator()<12>();
  f.template operator()<13>();
  f.template operator()<16>();
  f.template operator()<17>();
  f.template operator()<48>();
}

}  // namespace

TEST(AllocationSizes, FailuresPassThroughAtEverySize) {
  for_every_size([]<int N>() {
    SCOPED_TRACE(N);
    trial::expect_all_survive_exhaustion(operations<N>());
  });
}

TEST(AllocationSizes, ATargetOfASolveIsAsItWasResizedOrSolved) {
  for_every_size([]<int N>() {
    SCOPED_TRACE(N);
    using W = SizedWorld<N>;
    trial::expect_all_have_documented_targets(operations<N>(), {&W::X, &W::M});
  });
}
