// SPDX-License-Identifier: MIT

#include <cstddef>
#include <utility>

#include "tnarray_i.h"
#include "tnla_matrix_vector_i.h"
#include "tnlablkbndsolver_i.h"
#include "tnlacholesky_i.h"
#include "tnlahouseholder_i.h"
#include "tnlaqrdecompo_i.h"

// The memory layout of the classes is part of the interface: modules that were built at different times
// share the objects.  Checked for 64-bit machines, on which the modules are shipped.

#if defined(__GNUC__)
#pragma GCC diagnostic ignored "-Winvalid-offsetof"  // exact for these classes with either compiler
#endif

struct TnLaLayout {
  template <class T>
  static constexpr bool array_holds() {
    using Array = TnArray<T>;
    return offsetof(Array, allocator_) == 8 && offsetof(Array, data_) == 16 &&
           offsetof(Array, capacity_) == 24 && offsetof(Array, size_) == 32 && sizeof(Array) == 40;
  }

  static constexpr bool dense_holds() {
    return offsetof(TnLaDblMat, n_rows_) == 0 && offsetof(TnLaDblMat, n_cols_) == 8 &&
           offsetof(TnLaDblMat, array_) == 16 && sizeof(TnLaDblMat) == 56 &&
           offsetof(TnLaDblVec, array_) == 0 && sizeof(TnLaDblVec) == 40;
  }

  static constexpr bool householder_holds() {
    return offsetof(TnLaHouseholder, j_pivot_) == 8 && offsetof(TnLaHouseholder, j_zero_) == 12 &&
           offsetof(TnLaHouseholder, u_) == 16 && offsetof(TnLaHouseholder, scale_) == 56 &&
           sizeof(TnLaHouseholder) == 64;
  }

  template <class M>
  static constexpr bool qr_holds() {
    using Qr = TnLaTQRDecompo<M>;
    return offsetof(Qr, full_rank_) == 8 && offsetof(Qr, R_) == 16 && offsetof(Qr, trafos_) == 24 &&
           sizeof(Qr) == 64;
  }

  static constexpr bool cholesky_holds() {
    using Solver = TnLaCholesky;
    return offsetof(Solver, factor_ok_) == 8 && offsetof(Solver, n_) == 12 &&
           offsetof(Solver, matrix_) == 16 && offsetof(Solver, rhs_) == 24 &&
           offsetof(Solver, factor_) == 32 && offsetof(Solver, working_rhs_) == 40 &&
           offsetof(Solver, diagonal_) == 48 && offsetof(Solver, solution_) == 56 && sizeof(Solver) == 96;
  }

  static constexpr bool band_holds() {
    using Solver = TnLaBlkBndSolver;
    return offsetof(Solver, unknowns_) == 8 && offsetof(Solver, blocks_) == 12 &&
           offsetof(Solver, bandwidth_) == 16 && offsetof(Solver, rhs_count_) == 20 &&
           offsetof(Solver, work_) == 24 && sizeof(Solver) == 32;
  }

  template <int... N>
  static constexpr bool small_hold(std::integer_sequence<int, N...>) {
    return ((sizeof(TnLaTSmallVec<N + 1, double>) == (N + 1) * sizeof(double)) && ...) &&
           ((sizeof(TnLaTSmallMat<N + 1, N + 1, double>) == (N + 1) * (N + 1) * sizeof(double)) && ...);
  }
};

constexpr bool k64Bit = sizeof(void*) == 8;
static_assert(!k64Bit || TnLaLayout::array_holds<double>());
static_assert(!k64Bit || TnLaLayout::array_holds<int>());
static_assert(!k64Bit || TnLaLayout::array_holds<TnLaHouseholder*>());
static_assert(!k64Bit || TnLaLayout::dense_holds());
static_assert(!k64Bit || TnLaLayout::householder_holds());
static_assert(!k64Bit || TnLaLayout::qr_holds<TnLaDblMat>());
static_assert(!k64Bit || TnLaLayout::qr_holds<TnLaTSmallMat<12, 12, double>>());
static_assert(!k64Bit || TnLaLayout::cholesky_holds());
static_assert(!k64Bit || TnLaLayout::band_holds());
static_assert(TnLaLayout::small_hold(std::make_integer_sequence<int, 12>()));
