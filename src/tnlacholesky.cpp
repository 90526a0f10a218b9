// SPDX-License-Identifier: MIT

#include <algorithm>
#include <cstdint>
#include <iterator>

#include "kernels/kernel_set.h"
#include "tnla_linearsolve_i.h"
#include "tnlacholesky_i.h"

namespace {

constexpr char kFile[] = "src/tnlacholesky.cpp";

constexpr double kFallbackTolerance = 1e-10;  // of the pseudo-rank, where a pivot has failed

double* new_block(std::size_t n) { return TnAllocator<double>().allocate(n); }

// Returns a block; there is none any more.
void release(double*& block) {
  TnAllocator<double>().release(block);
  block = nullptr;
}

// Sets the length, then the capacity, so that the storage is returned too.
void clear(TnArray<double>& array) {
  array.set_size(0, false);
  array.set_capacity(0, false);
}

// block = the elements of `values`, or null if they are not as many as they should be.
void replace(double*& block, const TnArray<double>& values, bool has_length) {
  if (!has_length) {
    release(block);
    return;
  }
  if (block == nullptr) block = new_block(values.size());
  std::copy_n(values.data(), values.size(), block);
}

// Room for n values while a function runs; up to some size without a heap block.
class Scratch {
 public:
  explicit Scratch(std::size_t n) : block_(n <= std::size(few_) ? nullptr : new_block(n)) {}
  Scratch(const Scratch&) = delete;
  Scratch& operator=(const Scratch&) = delete;
  ~Scratch() { release(block_); }

  double* data() { return block_ == nullptr ? few_ : block_; }

 private:
  double* block_;
  double few_[2056];  // what the factor takes up to 64 unknowns at least: 16 KB of stack
};

}  // namespace

TnLaCholesky::TnLaCholesky(int n)
    : factor_ok_(false),
      n_(n),
      matrix_(nullptr),
      rhs_(nullptr),
      factor_(nullptr),
      working_rhs_(nullptr),
      diagonal_(nullptr) {}

TnLaCholesky::~TnLaCholesky() {
  for (double** const block : {&matrix_, &rhs_, &factor_, &working_rhs_, &diagonal_}) release(*block);
}

void TnLaCholesky::a(const TnArray<double>& values) {
  release(factor_);
  release(diagonal_);
  const std::int64_t n = n_;  // whose square fits
  const bool has_length = values.size() == static_cast<std::uint64_t>(n * n);
  replace(matrix_, values, has_length);
  TN_ASSERT(kFile, has_length);
}

void TnLaCholesky::b(const TnArray<double>& values) {
  release(working_rhs_);
  const bool has_length = values.size() == static_cast<std::size_t>(n_);
  replace(rhs_, values, has_length);
  TN_ASSERT(kFile, has_length);
}

const TnArray<double>& TnLaCholesky::x() {
  const bool is_set = matrix_ != nullptr && rhs_ != nullptr;
  if (!is_set) clear(solution_);
  TN_ASSERT(kFile, is_set);
  if (!is_set) return solution_;

  if (factor_ == nullptr) factor_ok_ = factorize();
  if (working_rhs_ == nullptr) {
    working_rhs_ = new_block(static_cast<std::size_t>(n_));
    std::copy_n(rhs_, n_, working_rhs_);
  }
  if (factor_ok_) {
    substitute();
  } else {
    solve_without_factor();
  }
  return solution_;
}

// The factor's block comes last: while it is null, the next x() starts again.
bool TnLaCholesky::factorize() {
  const std::size_t n = static_cast<std::size_t>(n_);
  if (diagonal_ == nullptr) diagonal_ = new_block(n);
  init(diagonal_, n_);
  const auto& kernels = tnla_kernels::best.cholesky;
  Scratch scratch(static_cast<std::size_t>(kernels.factor_scratch(n_)));
  factor_ = new_block(n * n);
  std::copy_n(matrix_, n * n, factor_);
  return kernels.factor(n_, factor_, diagonal_, scratch.data());
}

void TnLaCholesky::substitute() {
  const std::size_t n = static_cast<std::size_t>(n_);
  if (solution_.capacity() != n) solution_.set_capacity(n, true);
  solution_.set_size(n, true);
  tnla_kernels::best.cholesky.solve(n_, factor_, diagonal_, working_rhs_, solution_.data());
}

void TnLaCholesky::solve_without_factor() {
  const std::size_t n = static_cast<std::size_t>(n_);
  TnLaDblMat X;
  int rank = 0;
  tnla_linearsolve<TnLaDblMat>(TnLaDblMat(matrix_, n, n), TnLaDblMat(rhs_, n, 1), X, kFallbackTolerance,
                               &rank);
  solution_ = X.array();
}

void TnLaCholesky::init(double* values, int n) const { std::fill_n(values, n, 0.0); }
