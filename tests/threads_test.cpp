// SPDX-License-Identifier: MIT

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <barrier>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <sstream>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "support/band_client.h"
#include "support/bits.h"
#include "support/values.h"
#include "tarntnla.h"

// Distinct objects on distinct threads: the same bits as on one thread, also while the assertion handler is
// exchanged under way.

namespace {

constexpr std::size_t kThreads = 16;

// --- The work ------------------------------------------------------------------------------------------

// What a piece of work has computed.
class Outcome {
 public:
  void add(double x) { values_.push_back(x); }
  void add(const double* x, std::size_t n) { values_.insert(values_.end(), x, x + n); }
  void add(const TnLaDblMat& m) {
    add(static_cast<double>(m.n_rows()));
    add(m.array().data(), m.array().size());
  }
  void add(const TnArray<double>& a) { add(a.data(), a.size()); }
  void add(const TnLaDblVec& v) { add(v.array()); }
  void add(const std::string& text) {
    for (const char c : text) add(static_cast<double>(c));
  }
  template <int N>
  void add(const TnLaTSmallVec<N, double>& v) {
    add(v.data(), N);
  }
  template <std::size_t N>
  void add(const TnLaTSmallMat<N, N, double>& m) {
    add(&m(0, 0), N * N);
  }

  bool is(const Outcome& other) const {
    if (values_.size() != other.values_.size()) return false;
    for (std::size_t i = 0; i < values_.size(); ++i) {
      if (!same_bits(values_[i], other.values_[i])) return false;
    }
    return true;
  }
  std::size_t size() const { return values_.size(); }

 private:
  std::vector<double> values_;
};

TnLaDblMat matrix(Random& random, std::size_t rows, std::size_t cols) {
  return TnLaDblMat(random.vector(rows * cols).data(), rows, cols);
}

TnLaDblVec vector(Random& random, int n) {
  return TnLaDblVec(random.vector(static_cast<std::size_t>(n)).data(), n);
}

void work_on_dense(Random& random, Outcome& out) {
  TnLaDblMat A = matrix(random, 9, 6);
  const TnLaDblMat B = matrix(random, 6, 9);
  TnLaDblVec x = vector(random, 6);
  out.add(A * B);
  out.add(A + B.tr());
  out.add(A * x);
  A.insert_rows(2, 3);
  A.resize(20, 8, true);
  A.coilup_rows(7);
  A.remove_cols(1, 2);
  out.add(A);
  x *= TnLaDblMat(5, 6, 2.0);
  x -= vector(random, 5);
  out.add(x.dir());
  out.add(x.ort());
  out.add(x % x);
  out.add(A.sq_norm());
  out.add(A.mx_norm());
}

void work_on_solvers(Random& random, Outcome& out) {
  const TnLaDblMat A = matrix(random, 7, 7);
  const TnLaDblMat B = matrix(random, 7, 3);
  const TnLaDblMat wide = matrix(random, 3, 7);
  TnLaDblMat X;
  TnLaDblMat Z;
  out.add(tnla_linearsolve(A, B, X, &Z));
  out.add(X);
  out.add(tnla_linearsolve(wide, wide, X, &Z));
  out.add(X);
  out.add(Z);
  int rank = 0;
  tnla_linearsolve(wide.tr(), B, X, 1e-9, &rank, &Z);
  out.add(rank);
  out.add(X);
  out.add(A.det());
  out.add(A.inv());
  const TnLaTQRDecompo<TnLaDblMat> qr(A);
  out.add(qr.R());
  out.add(qr.solve(B, X));
  out.add(X);
}

void work_on_special_solvers(Random& random, Outcome& out) {
  const TnLaDblMat R = matrix(random, 6, 6);
  TnLaDblMat A = R * R.tr() + TnLaDblMat(6, 6, 1.0);  // positive definite
  TnLaCholesky cholesky(6);
  cholesky.a(A.array());
  cholesky.b(vector(random, 6).array());
  out.add(cholesky.x());
  cholesky.a((-A).array());
  out.add(cholesky.x());
  TnArray<double> eigenvalues;
  TnLaDblMat V;
  out.add(tnla_eigenvector_basis(A, eigenvalues, V));
  out.add(eigenvalues);
  out.add(V);
  TnOperationBehaviour behaviour;
  int orientation = 0;
  TnLaDblMat jet = matrix(random, 3, 4);
  tnla_util_adapt_jet(&behaviour, 3, jet, matrix(random, 3, 4), false, &orientation);
  out.add(jet);
  out.add(orientation);
  TnLaDblMat X;
  const std::uint64_t seed = random.below(1000000);
  out.add(BandClient(8, Chain::open, Fault::none, seed).solve(X));
  out.add(X);
  out.add(BandClient(8, Chain::closed, Fault::none, seed).solve(X));
  out.add(X);
  const BandClient chain(20, Chain::closed, Fault::none, seed);
  for (int round = 0; round < 2; ++round) {  // the second uses the work matrix of the first
    out.add(chain.solve(X));
    out.add(X);
  }
}

// Beyond the sizes from which a product is packed, a QR has several panels, and the slabs of a Cholesky
// factor are narrow ones.
void work_on_blocks(Random& random, Outcome& out) {
  const TnLaDblMat A = matrix(random, 47, 45);
  const TnLaDblMat B = matrix(random, 47, 6);
  TnLaDblMat X;
  out.add(A.tr() * B);
  out.add(tnla_linearsolve(A, B, X));
  out.add(X);
  constexpr int n = 130;
  const TnLaDblMat R = matrix(random, n, n);
  TnLaCholesky cholesky(n);
  cholesky.a((R + R.tr() + TnLaDblMat(n, n, 2.5 * n)).array());  // positive definite
  cholesky.b(vector(random, n).array());
  out.add(cholesky.x());
}

void work_on_kernels(Random& random, Outcome& out) {
  std::vector<double> u = random.vector(11);
  const std::vector<double> w = random.vector(11);
  std::vector<double> result(11);
  tnla_crossprod(11, u.data(), w.data(), result.data(), true, false, true);
  out.add(result.data(), 11);
  tnla_lincomb(11, u.data(), 2.0, w.data(), -3.0, result.data(), true, true, true);
  out.add(result.data(), 11);
  TnLaHouseholder h(1, 2, 11, u.data(), 1);
  h.apply(result.data(), 1);
  out.add(result.data(), 11);
  out.add(tnla_normalize(11, u.data()));
}

template <int N>
void work_on_small(Random& random, Outcome& out) {
  using M = TnLaTSmallMat<std::size_t{N}, std::size_t{N}, double>;
  M A;
  M B;
  for (std::size_t k = 0; k < M::size; ++k) {
    A(k % N, k / N) = random.uniform();
    B(k % N, k / N) = random.uniform();
  }
  const TnLaTSmallVec<N, double> x(random.vector(N).data(), N);
  out.add(A * x);
  out.add(x.dir());
  out.add(x.ort());
  out.add((A + B * 2.0).sq_norm());
  M X;
  out.add(tnla_linearsolve(A, B, X));
  out.add(X);
  int rank = 0;
  tnla_linearsolve(A, B, X, 1e-9, &rank);
  out.add(X);
}

void work_on_text(Random& random, Outcome& out) {
  std::ostringstream text;
  TnJournal journal(text);
  vector(random, 13).debug(journal, 6, 4);
  matrix(random, 3, 5).debug(journal, 6, true, 4);
  TnLaDblMat(0, 5, 0.0).debug(journal, 6, true, 4);
  journal << *TnLa::package_id() << tn_blankstring(3) << tnEndExpr;
  TnResult result;
  TnLaErr::make_result(TnResult::CodeID::error, TnLaErr::singular_matrix, result);
  out.add(TnLaErr::error_number(result));
  out.add(result.error_text());
  out.add(text.str());
}

// Every family once, with violated preconditions in between: each goes to the handler of that moment.
void work_on_refusals(Random& random, Outcome& out) {
  const TnLaDblMat A = matrix(random, 4, 3);
  const TnLaDblVec x = vector(random, 4);
  TnLaDblMat X = A;
  int rank = 0;
  out.add(A + A.tr());
  out.add(A * x);
  out.add(A.row_vec(4));
  X.insert_rows(9, 1);
  X.remove_cols(9, 1);
  tnla_linearsolve(A, A, X, -1.0, &rank);
  out.add(rank);
  out.add(X);
  X.initialize(x.array());
  out.add(x % TnLaDblVec());
  TnArray<double> array(x.array());
  array.set_capacity(1, true);
  out.add(static_cast<double>(array.size()));
  TnLaTSmallMat<3, 3, double> small(3, 2, random.uniform());
  small.resize(0, 0, true);
  out.add(small);
  TnLaTSmallVec<3, double> small_vector;
  small_vector.resize(4, true);
  out.add(small.col_vec(3));
  TnLaCholesky cholesky(3);
  cholesky.a(A.array());
  cholesky.b(x.array());
  out.add(cholesky.x());
  TnLaDblMat tall = A;
  out.add(tnla_eigenvector_basis(tall, array, X));
  out.add(array);
  TnLaDblMat jet = A;
  tnla_util_adapt_jet(nullptr, 3, jet, A.tr(), false, nullptr);
  out.add(jet);
  out.add(BandClient(8, Chain::open, Fault::too_many_rows).solve(X));
  out.add(BandClient(8, Chain::closed, Fault::none_exceptional, random.below(1000000)).solve(X));
  out.add(X);
  TnResult result;
  TnLaErr::make_result(TnResult::CodeID::error, static_cast<TnLaErr::ErrorNumber>(19), result);
  out.add(TnLaErr::error_number(result));
}

Outcome work(std::uint64_t seed) {
  Random random(seed);
  Outcome out;
  work_on_dense(random, out);
  work_on_solvers(random, out);
  work_on_special_solvers(random, out);
  work_on_blocks(random, out);
  work_on_kernels(random, out);
  work_on_small<1>(random, out);
  work_on_small<2>(random, out);
  work_on_small<3>(random, out);
  work_on_small<7>(random, out);
  work_on_small<12>(random, out);
  work_on_text(random, out);
  work_on_refusals(random, out);
  return out;
}

std::vector<Outcome> work_on_one_thread() {
  std::vector<Outcome> expected;
  for (std::size_t t = 0; t < kThreads; ++t) expected.push_back(work(t));
  return expected;
}

// --- The handlers --------------------------------------------------------------------------------------

std::array<std::atomic<int>, 2> n_calls{};

template <std::size_t Which>
void counting_handler(const char* /*file*/, int /*line*/) {
  n_calls[Which].fetch_add(1, std::memory_order_relaxed);
}

void install(TnAssertionHandler handler) {
  std::atomic_ref<TnAssertionHandler>(kit_assertion_handler).store(handler, std::memory_order_relaxed);
}

// So that a check which read the handler twice would meet a null the second time.
void exchange_as_fast_as_possible(std::chrono::milliseconds time) {
  const auto end = std::chrono::steady_clock::now() + time;
  while (std::chrono::steady_clock::now() < end) {
    for (int i = 0; i < 100; ++i) {
      install(&counting_handler<0>);
      install(nullptr);
    }
  }
}

// False if no check calls the handler in a time that is long even under a sanitizer.
bool install_and_wait_for_a_call(std::size_t which) {
  const int before = n_calls[which].load();
  install(which == 0 ? &counting_handler<0> : &counting_handler<1>);
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
  while (n_calls[which].load() == before) {
    if (std::chrono::steady_clock::now() > deadline) return false;
    std::this_thread::yield();
  }
  return true;
}

// Until every thread has ended n more pieces of work, of which all but the first began after the call.
void wait_for_rounds(const std::array<std::atomic<int>, kThreads>& n_rounds, int n) {
  for (const std::atomic<int>& rounds : n_rounds) {
    for (const int before = rounds.load(); rounds.load() < before + n;) std::this_thread::yield();
  }
}

}  // namespace

TEST(Threads, TheWorkIsTheSameEachTime) {
  const std::vector<Outcome> once = work_on_one_thread();
  const std::vector<Outcome> again = work_on_one_thread();
  for (std::size_t t = 0; t < kThreads; ++t) {
    EXPECT_GT(once[t].size(), 1000u);
    EXPECT_TRUE(once[t].is(again[t])) << "seed " << t;
    EXPECT_FALSE(once[t].is(once[(t + 1) % kThreads])) << "seed " << t;
  }
}

TEST(Threads, DistinctObjectsGiveTheBitsOfOneThread) {
  const std::vector<Outcome> expected = work_on_one_thread();
  std::barrier start(kThreads);
  std::array<int, kThreads> n_wrong{};
  std::vector<std::thread> threads;
  for (std::size_t t = 0; t < kThreads; ++t) {
    threads.emplace_back([&, t] {
      start.arrive_and_wait();
      for (int round = 0; round < 10; ++round) n_wrong[t] += work(t).is(expected[t]) ? 0 : 1;
    });
  }
  for (std::thread& thread : threads) thread.join();
  for (std::size_t t = 0; t < kThreads; ++t) EXPECT_EQ(n_wrong[t], 0) << "seed " << t;
}

// Each handler stays until a check has called it, so that every exchange takes effect under way.  The last
// one is removed: who has begun a piece of work since then calls it no more.
TEST(Threads, TheHandlerMayBeExchangedWhileOthersCompute) {
  const std::vector<Outcome> expected = work_on_one_thread();
  std::atomic<bool> done{false};
  std::array<int, kThreads> n_wrong{};
  std::array<std::atomic<int>, kThreads> n_rounds{};
  std::vector<std::thread> threads;
  for (std::size_t t = 0; t < kThreads; ++t) {
    threads.emplace_back([&, t] {
      for (; !done.load(); ++n_rounds[t]) n_wrong[t] += work(t).is(expected[t]) ? 0 : 1;
    });
  }
  bool called = true;
  for (int round = 0; called && round < 8; ++round) {
    called = install_and_wait_for_a_call(0) && install_and_wait_for_a_call(1);
    exchange_as_fast_as_possible(std::chrono::milliseconds(20));
  }
  EXPECT_TRUE(called);
  wait_for_rounds(n_rounds, 1);
  const int n_calls_so_far = n_calls[0] + n_calls[1];
  wait_for_rounds(n_rounds, 2);
  EXPECT_EQ(n_calls[0] + n_calls[1], n_calls_so_far) << "a handler that was removed is called";
  done.store(true);
  for (std::thread& thread : threads) thread.join();
  for (std::size_t t = 0; t < kThreads; ++t) EXPECT_EQ(n_wrong[t], 0) << "seed " << t;
}
