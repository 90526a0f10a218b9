// SPDX-License-Identifier: MIT

// The band solver and a client that answers with anything: negative counts, first unknowns anywhere, rows
// that were not written, reshaped matrices, exceptions, a solve within a solve.
//
// The input is a solver's sizes and then what it answers, call by call, in several solves of one object.
// Answers that are legal go to the twin too, block by block, and the work matrix, the result and the calls
// of the assertion hook must be the twin's; after any others the next solve must be right again.

#include <algorithm>
#include <climits>
#include <cstddef>
#include <new>
#include <optional>
#include <string>

#include "fuzz/target.h"
#include "reference/band_reference.h"
#include "support/assertions.h"
#include "support/bits.h"
#include "support/decomposition_types.h"
#include "tnlablkbndsolver_i.h"

namespace {

using reference::Band;
using reference::BandBlock;
using reference::BandProblem;

const std::string kFile = "src/tnlablkbndsolver.cpp";

struct Thrown {};

struct Sizes {
  int n, blocks, bandwidth, n_rhs;
};

Sizes any_sizes(Bytes& bytes) {
  const int bandwidth = bytes.rarely(4) ? bytes.between(0, 14) : bytes.between(1, 5);
  const int n = bytes.rarely(8) ? bytes.between(0, 80) : bytes.between(0, 4 * bandwidth);
  Sizes sizes{n, bytes.between(0, 24), bandwidth,
              bytes.rarely(4) ? bytes.between(0, 9) : bytes.between(1, 2)};
  if (bytes.rarely(32)) *bytes.one_of({&sizes.n, &sizes.blocks, &sizes.bandwidth, &sizes.n_rhs}) = -1;
  return sizes;
}

class Hostile : public TnLaBlkBndSolver {
 public:
  Hostile(Bytes& bytes, Sizes sizes)
      : TnLaBlkBndSolver(sizes.n, sizes.blocks, sizes.bandwidth, sizes.n_rhs),
        bytes_(bytes),
        sizes_(sizes) {}

  void solve_and_compare() {
    start();
    const Matrix before = bytes_.matrix(bytes_.below(5), bytes_.below(4));
    TnLaDblMat x = dense(before);
    const AssertionLog log;
    bool solved = false;
    Ending ending = Ending::returned;
    try {
      solved = solve(x);
    } catch (const std::bad_alloc&) {
      ending = Ending::out_of_memory;
    } catch (const Thrown&) {
      ending = Ending::thrown;
    }
    ASSERT_EQ(ending, ending_);
    if (!is_known_) return;
    Matrix expected = before;
    bool is_solution = false;
    if (ending_ == Ending::returned && !is_refused_) {
      is_solution = twin_->solve(expected);
      const auto& reports = twin_->reports();
      expected_.insert(expected_.end(), reports.begin(), reports.end());
    }
    EXPECT_EQ(solved, is_solution);
    EXPECT_SAME_MATRIX(x, expected);
    EXPECT_EQ(log.files(), expected_);
  }

  int max_block_equations() const override {
    if (is_inner_) return most_;
    if (bytes_.rarely(64)) fail();
    if (bytes_.rarely(64)) most_ = -bytes_.between(1, 2);
    if (most_ < 0) ending_ = Ending::out_of_memory;
    if (ending_ == Ending::returned) set_up();
    return most_;
  }

  void get_block_equations(int block, int first_row, TnLaDblMat& G, int& count,
                           int& first_unknown) const override {
    if (is_inner_) {
      count = std::min(1, static_cast<int>(G.n_rows()) - first_row);
      return;
    }
    EXPECT_EQ(block, n_blocks_++);
    EXPECT_EQ(first_row, n_folded_);
    EXPECT_EQ(count, 0);
    EXPECT_EQ(first_unknown, 0);
    ASSERT_EQ(G.n_rows(), g_rows_);
    ASSERT_EQ(G.n_cols(), g_cols_);
    work_ = &G;
    if (block == 0) twin_->G() = plain(G);  // an earlier solve has left something there
    if (is_known_ && is_in_order_) {
      EXPECT_SAME_MATRIX(G, twin_->G());
    }
    const int room = static_cast<int>(G.n_rows()) - first_row;
    count = std::min(room,
                     bytes_.rarely(4) ? bytes_.between(0, 2 * sizes_.bandwidth + 3) : bytes_.between(0, 3));
    first_unknown = any_unknown();
    write(G, static_cast<std::size_t>(first_row), static_cast<std::size_t>(count));
    if (bytes_.rarely(16)) disturb(room, G, count, first_unknown);
    if (ending_ != Ending::returned || is_refused_) return;
    fold(G, count, first_unknown);
  }

  bool exceptional() const override {
    if (is_inner_) return false;
    if (bytes_.rarely(64)) fail();
    if (bytes_.rarely(64)) reshape_work();
    is_closed_ = bytes_.flag();
    if (!is_closed_ && is_refused_) expected_.push_back(kFile);
    return is_closed_;
  }

  void get_exceptional_equations(TnLaDblMat& first, TnLaDblMat& last, TnLaDblMat& rhs,
                                 int& count) const override {
    const auto most = static_cast<std::size_t>(most_);
    const auto bandwidth = static_cast<std::size_t>(sizes_.bandwidth);
    EXPECT_SAME_MATRIX(first, Matrix(most, bandwidth));
    EXPECT_SAME_MATRIX(last, Matrix(most, bandwidth));
    EXPECT_SAME_MATRIX(rhs, Matrix(most, static_cast<std::size_t>(sizes_.n_rhs)));
    EXPECT_EQ(count, 0);
    count = bytes_.rarely(4) ? most_ : std::min(most_, bytes_.between(0, 3));
    for (TnLaDblMat* const part : {&first, &last, &rhs}) write(*part, 0, static_cast<std::size_t>(count));
    problem_.exceptional = count > 0;
    problem_.first = reference::resized(plain(first), static_cast<std::size_t>(count), bandwidth);
    problem_.last = reference::resized(plain(last), problem_.first.m, bandwidth);
    problem_.rhs = reference::resized(plain(rhs), problem_.first.m, rhs.n_cols());
    bool fits = true;
    if (bytes_.rarely(8)) {
      switch (bytes_.below(5)) {
        case 0:
          count = -bytes_.between(0, 2);
          problem_.exceptional = false;
          break;
        case 1:
          count = bytes_.flag() ? INT_MAX : most_ + 1;
          fits = false;
          break;
        case 2:
          fits = !reshape(*bytes_.one_of({&first, &last, &rhs}));
          break;
        case 3:
          reshape_work();
          break;
        default:
          fail();
      }
    }
    if (count < 1) expected_.push_back(kFile);
    if (count >= 1 && !fits) is_refused_ = true;
    if (is_refused_) expected_.push_back(kFile);
  }

 private:
  enum class Ending { returned, out_of_memory, thrown };

  void start() {
    most_ = bytes_.rarely(4) ? bytes_.between(0, 20) : bytes_.between(1, 4);
    problem_ = BandProblem();
    problem_.n = sizes_.n;
    problem_.bandwidth = sizes_.bandwidth;
    problem_.n_rhs = sizes_.n_rhs;
    expected_.clear();
    ending_ = Ending::returned;
    is_refused_ = is_closed_ = false;
    is_known_ = is_in_order_ = true;
    n_blocks_ = n_folded_ = front_ = 0;
    if (std::min({sizes_.n, sizes_.bandwidth, sizes_.n_rhs}) < 0) ending_ = Ending::out_of_memory;
  }

  // The work matrix is made at the first solve, and anew where it cannot hold the unknowns.
  void set_up() const {
    const auto n = static_cast<std::size_t>(sizes_.n);
    const auto n_cols = static_cast<std::size_t>(sizes_.bandwidth) + static_cast<std::size_t>(sizes_.n_rhs);
    if (g_rows_ < n || g_cols_ != n_cols || !is_made_) g_rows_ = n + static_cast<std::size_t>(most_);
    g_cols_ = n_cols;
    is_made_ = true;
    problem_.most = static_cast<int>(g_rows_) - sizes_.n;
    twin_.emplace(problem_);
  }

  // In the order that is asked for, mostly; else back, beyond a gap, or beyond the end.
  int any_unknown() const {
    if (!bytes_.rarely(16)) return front_ + bytes_.between(0, std::max(0, n_folded_ - front_));
    return bytes_.rarely(8) ? INT_MAX - bytes_.between(0, 1)
                            : bytes_.between(0, sizes_.n + sizes_.bandwidth + 3);
  }

  // Into `count` rows; now and then not into all of them, so that what was there is taken as an equation.
  void write(TnLaDblMat& M, std::size_t first_row, std::size_t count) const {
    const Matrix values = bytes_.matrix(count, M.n_cols());
    const std::size_t left_out = bytes_.rarely(16) ? bytes_.below(count + 1) : count;
    for (std::size_t j = 0; j < M.n_cols(); ++j) {
      for (std::size_t i = 0; i < count; ++i) {
        if (i != left_out) M(first_row + i, j) = values(i, j);
      }
    }
  }

  void fold(const TnLaDblMat& G, int count, int first_unknown) const {
    is_in_order_ = is_in_order_ && front_ <= first_unknown && first_unknown <= n_folded_;
    if (is_known_) {
      twin_->G() = plain(G);
      BandBlock block{first_unknown, Matrix(static_cast<std::size_t>(count), G.n_cols())};
      for (std::size_t j = 0; j < block.rows.n; ++j) {
        for (std::size_t i = 0; i < block.rows.m; ++i) {
          block.rows(i, j) = G(static_cast<std::size_t>(n_folded_) + i, j);
        }
      }
      twin_->fold(block);
    }
    n_folded_ = first_unknown + std::min(n_folded_ + count - first_unknown, sizes_.bandwidth);
    front_ = first_unknown;
  }

  // --- What no client should do -----------------------------------------------------------------------

  void disturb(int room, TnLaDblMat& G, int& count, int& first_unknown) const {
    static constexpr int kNegative[] = {-1, INT_MIN};
    switch (bytes_.below(7)) {
      case 0:
        count = bytes_.one_of(kNegative);
        return refuse();
      case 1:
        first_unknown = bytes_.one_of(kNegative);
        return refuse();
      case 2:
        count = bytes_.flag() ? INT_MAX : room + 1;
        return refuse();
      case 3:
        reshape_work();
        if (bytes_.rarely(4)) fail();
        if (is_refused_) expected_.push_back(kFile);
        break;
      case 4:  // the triangle of the earlier blocks
        G.initialize(bytes_.number());
        is_known_ = false;
        break;
      case 5: {  // the solver within itself
        TnLaDblMat x;
        is_inner_ = true;
        solve(x);
        is_inner_ = false;
        is_known_ = false;
        break;
      }
      default:
        fail();
    }
  }

  void refuse() const {
    is_refused_ = true;
    expected_.push_back(kFile);
  }

  // True if the shape is another one now.
  bool reshape(TnLaDblMat& M) const {
    const std::size_t m = M.n_rows();
    const std::size_t n = M.n_cols();
    const TnLaDblMat old = M;
    switch (bytes_.below(6)) {
      case 0:
        M.resize(0, 0, false);
        break;
      case 1:
        M.insert_rows(m, 1);
        break;
      case 2:
        if (n > 0) M.remove_cols(0, 1);
        break;
      case 3:
        M.resize(1, m * n, true);
        break;
      case 4:
        M = TnLaDblMat(50, 50, 1.0);
        break;
      default:  // there and back
        M.resize(n + 1, m + 1, false);
        M = old;
    }
    return M.n_rows() != m || M.n_cols() != n;
  }

  // The solver will notice, and empty it.
  void reshape_work() const {
    if (work_ == nullptr || !reshape(*work_)) return;
    is_refused_ = true;
    g_rows_ = g_cols_ = 0;
  }

  [[noreturn]] void fail() const {
    ending_ = bytes_.flag() ? Ending::thrown : Ending::out_of_memory;
    if (ending_ == Ending::thrown) throw Thrown();
    throw std::bad_alloc();
  }

  Bytes& bytes_;
  Sizes sizes_;

  mutable std::size_t g_rows_ = 0;
  mutable std::size_t g_cols_ = 0;
  mutable bool is_made_ = false;
  mutable TnLaDblMat* work_ = nullptr;

  mutable BandProblem problem_;
  mutable std::optional<Band> twin_;
  mutable Files expected_;
  mutable Ending ending_ = Ending::returned;
  mutable int most_ = 0;
  mutable int n_blocks_ = 0;
  mutable int n_folded_ = 0;  // rows of the triangle
  mutable int front_ = 0;     // the first unknown of the latest block
  mutable bool is_refused_ = false;
  mutable bool is_closed_ = false;
  mutable bool is_known_ = true;     // what the result must be
  mutable bool is_in_order_ = true;  // the blocks so far
  mutable bool is_inner_ = false;
};

}  // namespace

void run(Bytes& bytes) {
  constexpr int kMostSolves = 6;
  Hostile solver(bytes, any_sizes(bytes));
  for (int i = 0; i < kMostSolves && !bytes.empty(); ++i) solver.solve_and_compare();
}
