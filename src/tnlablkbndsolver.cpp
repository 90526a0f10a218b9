// SPDX-License-Identifier: MIT

#include <new>

#include "tnla_band.h"
#include "tnla_exceptional.h"
#include "tnlablkbndsolver_i.h"

namespace {

constexpr char kFile[] = "src/tnlablkbndsolver.cpp";

std::size_t size(int n) {
  if (n < 0) throw std::bad_alloc();
  return static_cast<std::size_t>(n);
}

// The work matrix is in the hands of the derived class, which is not to change its shape.
class WorkMatrix {
 public:
  explicit WorkMatrix(TnLaDblMat& G) : G_(G), n_rows_(G.n_rows()), n_cols_(G.n_cols()) {}
  WorkMatrix(const WorkMatrix&) = delete;
  WorkMatrix& operator=(const WorkMatrix&) = delete;

  // What has another shape now is emptied, so that the next solve sets it up again.
  ~WorkMatrix() {
    if (!has_kept_its_shape()) G_.resize(0, 0, false);
  }

  bool has_kept_its_shape() const { return G_.n_rows() == n_rows_ && G_.n_cols() == n_cols_; }

 private:
  TnLaDblMat& G_;
  std::size_t n_rows_;
  std::size_t n_cols_;
};

}  // namespace

TnLaBlkBndSolver::TnLaBlkBndSolver(int unknowns, int blocks, int bandwidth, int rhs_count)
    : unknowns_(unknowns), blocks_(blocks), bandwidth_(bandwidth), rhs_count_(rhs_count), work_(nullptr) {}

TnLaBlkBndSolver::~TnLaBlkBndSolver() { delete work_; }

bool TnLaBlkBndSolver::exceptional() const { return false; }

void TnLaBlkBndSolver::get_exceptional_equations(TnLaDblMat& /*first*/, TnLaDblMat& /*last*/,
                                                 TnLaDblMat& /*rhs*/, int& /*count*/) const {}

bool TnLaBlkBndSolver::solve(TnLaDblMat& x) const {
  const std::size_t most = size(max_block_equations());
  const std::size_t n = size(unknowns_);
  const std::size_t bandwidth = size(bandwidth_);
  const std::size_t n_rhs = size(rhs_count_);
  if (work_ == nullptr) work_ = new TnLaDblMat(n + most, bandwidth + n_rhs, 0.0);
  TnLaDblMat& G = *work_;
  if (G.n_rows() < n || G.n_cols() != bandwidth + n_rhs) G.resize(n + most, bandwidth + n_rhs, false);
  WorkMatrix work(G);

  TnLaBand triangle(G, unknowns_, bandwidth_, most);
  for (int block = 0; block < blocks_; ++block) {
    int count = 0;
    int first_unknown = 0;
    get_block_equations(block, static_cast<int>(triangle.n_rows()), G, count, first_unknown);
    const bool fits =
        work.has_kept_its_shape() && count >= 0 && first_unknown >= 0 && triangle.has_room_for(count);
    TN_ASSERT(kFile, fits);
    if (!fits) return false;
    triangle.fold(count, first_unknown);
  }

  const bool is_closed = exceptional();
  TnLaExceptional equations(is_closed ? most : 0, bandwidth, n_rhs);
  if (is_closed) {
    get_exceptional_equations(equations.first, equations.last, equations.rhs, equations.count);
    TN_ASSERT(kFile, equations.count >= 1);
  }
  const bool given = equations.count >= 1;
  const bool fits = work.has_kept_its_shape() && (!given || equations.fit(most, bandwidth, n_rhs));
  TN_ASSERT(kFile, fits);
  if (!fits) return false;
  if (!given) return triangle.back_substitute(x);
  return tnla_solve_with_exceptional(triangle, equations, x);
}
