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

// Gives up a work matrix whose shape an operation of the derived class has changed, at the end of a solve.
class ShapeGuard {
 public:
  explicit ShapeGuard(TnLaDblMat*& work) : work_(work), n_rows_(work->n_rows()), n_cols_(work->n_cols()) {}
  ~ShapeGuard() {
    if (holds()) return;
    delete work_;
    work_ = nullptr;
  }
  ShapeGuard(const ShapeGuard&) = delete;
  ShapeGuard& operator=(const ShapeGuard&) = delete;

  bool holds() const { return work_->n_rows() == n_rows_ && work_->n_cols() == n_cols_; }

 private:
  TnLaDblMat*& work_;
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
  const std::size_t bandwidth = size(bandwidth_);
  const std::size_t n_rhs = size(rhs_count_);
  if (work_ == nullptr) work_ = new TnLaDblMat(size(unknowns_) + most, bandwidth + n_rhs, 0.0);
  const ShapeGuard shape(work_);

  TnLaBand triangle(*work_, unknowns_, bandwidth_);
  for (int block = 0; block < blocks_; ++block) {
    int count = 0;
    int first_unknown = 0;
    get_block_equations(block, static_cast<int>(triangle.n_rows()), *work_, count, first_unknown);
    const bool fits = shape.holds() && count >= 0 && first_unknown >= 0 && triangle.has_room_for(count);
    TN_ASSERT(kFile, fits);
    if (!fits) return false;
    triangle.fold(count, first_unknown);
  }
  if (!exceptional()) return triangle.back_substitute(x);

  TnLaExceptional equations(most, bandwidth, n_rhs);
  get_exceptional_equations(equations.first, equations.last, equations.rhs, equations.count);
  const bool given = equations.count >= 1;
  TN_ASSERT(kFile, given);
  if (!given) return triangle.back_substitute(x);
  const bool fits = equations.fit(most, bandwidth, n_rhs);
  TN_ASSERT(kFile, fits);
  if (!fits) return false;
  const bool is_short = triangle.n() < 3 * triangle.bandwidth() || bandwidth == 0;
  return is_short ? tnla_solve_dense(triangle, equations, x)
                  : tnla_solve_structured(triangle, equations, x);
}
