// SPDX-License-Identifier: MIT

#include "support/allocation.h"

#include <gtest/gtest.h>

#include <limits>
#include <memory>
#include <new>
#include <vector>

#include "support/small_types.h"
#include "support/trial.h"
#include "support/trial_worlds.h"

using trial::DenseWorld;
using trial::expect_all_survive_exhaustion;
using trial::expect_all_survive_throwing_handlers;
using trial::SmallWorld;

namespace {

using W = DenseWorld;
using Dense = trial::Operation<DenseWorld>;
template <int N>
using Small = trial::Operation<SmallWorld<N>>;
using Index = std::size_t;
using Qr = TnLaTQRDecompo<TnLaDblMat>;

constexpr int kMaxInt = std::numeric_limits<int>::max();
constexpr Index kMax = std::numeric_limits<Index>::max();

TnLaDblMat solution(const TnLaDblMat& A, const TnLaDblMat& B) {
  TnLaDblMat X;
  tnla_linearsolve(A, B, X);
  return X;
}

TnLaDblMat inverse(const TnLaDblMat& A) {
  TnLaDblMat result;
  tnla_inverse(A, result);
  return result;
}

// --- The operations ------------------------------------------------------------------------------------
// {name, operation, the number of its allocations where that is promised}

const Dense kCore[] = {
    {"string of a text", [](W& w) { w.keep(TnString("of some length, to be sure").c_str()); }, 1},
    {"string of null", [](W& w) { w.keep(TnString(nullptr).c_str()); }},
    {"string copy", [](W& w) { w.keep(TnString(w.text).c_str()); }},
    {"string assignment", [](W& w) { w.s = w.text; }},
    {"string self-assignment", [](W& w) { w.s = *&w.s; }},
    {"blank string", [](W& w) { w.keep(tn_blankstring(40).c_str()); }},
    {"no blanks", [](W& w) { w.keep(tn_blankstring(-1).c_str()); }},

    {"array", [](W& w) { w.keep(TnArray<double>()); }, 0},
    {"array copy", [](W& w) { w.keep(TnArray<double>(w.numbers)); }, 1},
    {"array copy of none", [](W& w) { w.keep(TnArray<double>(w.none.array())); }, 0},
    {"array assignment", [](W& w) { w.d = w.numbers; }, 1},
    {"array assignment that fits", [](W& w) { w.d = w.few; }, 0},
    {"array growth", [](W& w) { w.d.set_size(9, true); }, 1},
    {"array growth without the elements", [](W& w) { w.d.set_size(9, false); }, 1},
    {"array growth in large steps", [](W& w) { w.d.set_size(70000, true); }, 1},
    {"array growth within the capacity", [](W& w) { w.d.set_size(4, true); }, 0},
    {"array shrinks", [](W& w) { w.d.set_size(1, true); }, 0},
    {"array capacity", [](W& w) { w.d.set_capacity(30, true); }, 1},
    {"array capacity without the elements", [](W& w) { w.d.set_capacity(3, false); }, 1},
    {"int array copy", [](W& w) { w.keep(TnArray<int>(w.indices)); }, 1},
    {"int array assignment", [](W& w) { w.i = w.indices; }, 1},
    {"int array growth", [](W& w) { w.i.set_size(9, true); }, 1},
    {"int array capacity", [](W& w) { w.i.set_capacity(30, true); }, 1},
    {"pointer array copy", [](W& w) { w.keep(TnArray<TnLaHouseholder*>(w.pointers)); }, 1},
    {"pointer array assignment", [](W& w) { w.p = w.pointers; }, 1},
    {"pointer array growth", [](W& w) { w.p.set_size(9, true); }, 1},
    {"pointer array capacity", [](W& w) { w.p.set_capacity(30, true); }, 1},

    {"array printer", [](W& w) { tn_arraydebug(w.journal, 20, w.numbers, 3, 30, 20, 50); }},
    {"matrix printer", [](W& w) { tn_arraydebug(w.journal, true, 1, 5, w.numbers, 3, 30, 20, 50); }},
    {"journal", [](W& w) { (w.journal.operator TnJournal&() << w.text << 1.5 << Index{3} << tnEndExpr); },
     0},
    {"result",
     [](W& w) {
       TnResult result;
       TnLaErr::make_result(TnResult::CodeID::error, TnLaErr::singular_matrix, result);
       w.keep(static_cast<double>(TnLaErr::error_number(result)));
       w.keep(result.error_text());
       TnLaErr::make_result(TnResult::CodeID::error, TnLaErr::unknown_error, result);
       w.keep(result.error_text());
     },
     0},
    {"package", [](W& w) { w.keep(TnLa::package_id()->c_str()); }, 0},
    {"behaviour",
     [](W& w) {
       TnOperationBehaviour behaviour;
       behaviour.reserved_1(), behaviour.reserved_2();
       w.keep(behaviour.behaviour_level(&w.text, 1, 1));
     },
     0},
    {"behaviour on the heap", [](W&) { std::make_unique<TnOperationBehaviour>(); }, 1},
};

const Dense kMatrix[] = {
    {"matrix", [](W& w) { w.keep(TnLaDblMat()); }, 0},
    {"matrix copy", [](W& w) { w.keep(TnLaDblMat(w.A)); }, 1},
    {"matrix of a size and a value", [](W& w) { w.keep(TnLaDblMat(4, 5, 2.0)); }, 1},
    {"matrix of values", [](W& w) { w.keep(TnLaDblMat(w.u.data(), 2, 4)); }, 1},
    {"matrix of an array", [](W& w) { w.keep(TnLaDblMat(w.numbers, 3)); }, 1},
    {"matrix of a row", [](W& w) { w.keep(TnLaDblMat(w.lengthy, true)); }, 1},
    {"matrix of a column", [](W& w) { w.keep(TnLaDblMat(w.lengthy, false)); }, 1},
    {"matrix assignment", [](W& w) { w.M = w.big; }, 1},
    {"matrix assignment that fits", [](W& w) { w.M = w.flat; }, 0},
    {"matrix self-assignment", [](W& w) { w.M = *&w.M; }, 0},
    {"matrix initialize", [](W& w) { w.M.initialize(3.0); }, 0},
    {"matrix initialize from values", [](W& w) { w.M.initialize(w.numbers.data()); }, 0},
    {"matrix initialize from an array", [](W& w) { w.M.initialize(w.numbers); }, 0},
    {"matrix initialize from itself", [](W& w) { w.M.initialize(w.M.array()); }, 0},
    {"matrix element", [](W& w) { w.M(2, 1) = w.A(0, 1); }, 0},

    {"matrix gets columns", [](W& w) { w.M.resize(3, 9, true); }, 1},
    {"matrix gets columns that fit", [](W& w) { w.M.resize(3, 5, true); }, 0},
    {"matrix gets columns and is cleared", [](W& w) { w.M.resize(3, 9, false); }, 1},
    {"matrix gets another shape", [](W& w) { w.M.resize(7, 4, true); }},
    {"matrix gets another shape that fits", [](W& w) { w.M.resize(2, 4, true); }},
    {"matrix gets another shape and is cleared", [](W& w) { w.M.resize(7, 4, false); }},
    {"insert rows", [](W& w) { w.M.insert_rows(1, 4); }},
    {"insert rows that fit", [](W& w) { w.M.insert_rows(1, 1); }, 1},
    {"insert columns", [](W& w) { w.M.insert_cols(1, 4); }, 1},
    {"insert columns that fit", [](W& w) { w.M.insert_cols(1, 1); }, 0},
    {"insert", [](W& w) { w.M.insert(0, 4, true), w.M.insert(0, 4, false); }},
    {"remove rows", [](W& w) { w.M.remove_rows(1, 1); }, 1},
    {"remove columns", [](W& w) { w.M.remove_cols(1, 1); }, 0},
    {"remove", [](W& w) { w.M.remove(0, 1, true), w.M.remove(0, 1, false); }},
    {"coil up rows", [](W& w) { w.M.coilup_rows(2); }},
    {"coil up columns", [](W& w) { w.M.coilup_cols(2); }},
    {"coil up", [](W& w) { w.M.coilup(2, true), w.M.coilup(2, false); }},
    {"swap rows", [](W& w) { w.M.swap_rows(0, 2), w.M.swap(0, 1, true); }, 0},
    {"swap columns", [](W& w) { w.M.swap_cols(0, 2), w.M.swap(0, 1, false); }, 0},
    {"transpose a square matrix", [](W& w) { w.M.transpose(); }, 0},
    {"transpose", [](W& w) { w.M.remove_cols(0, 1), w.M.transpose(); }, 1},
    {"transposed", [](W& w) { w.keep(w.tall.tr()); }},
    {"set diagonal", [](W& w) { w.M.set_diagonal(3.0, -1); }, 0},
    {"row", [](W& w) { w.keep(w.wide.row_vec(1)); }},
    {"column", [](W& w) { w.keep(w.tall.col_vec(1)); }},

    {"matrix sum", [](W& w) { w.keep(w.A + w.B); }},
    {"matrix difference", [](W& w) { w.keep(w.A - w.B); }},
    {"negative matrix", [](W& w) { w.keep(-w.A); }},
    {"matrix times number", [](W& w) { w.keep(w.A * 3.0); }},
    {"number times matrix", [](W& w) { w.keep(3.0 * w.A); }},
    {"matrix times matrix", [](W& w) { w.keep(w.tall * w.wide); }},
    {"matrix times vector", [](W& w) { w.keep(w.tall * w.x); }},
    {"assign a sum", [](W& w) { w.M = w.big + w.big; }},
    {"matrix += matrix", [](W& w) { w.M += w.B; }, 0},
    {"matrix -= matrix", [](W& w) { w.M -= w.M; }, 0},
    {"matrix *= number", [](W& w) { w.M *= w.M(0, 0); }, 0},
    {"matrix *= matrix", [](W& w) { w.M *= w.wide; }},
    {"matrix *= itself", [](W& w) { w.M *= w.M; }},
    {"product into a matrix", [](W& w) { tnla_mat_mat_prod(w.tall, w.wide, w.M); }},
    {"product of blocks", [](W& w) { tnla_mat_mat_prod(2, 2, 2, w.u.data(), w.w.data(), w.work.data()); },
     0},
    {"product of strided blocks",
     [](W& w) { tnla_mat_mat_prod(2, 2, 2, w.u.data(), w.w.data(), w.work.data(), 2, 1, 1, 2, 2, 1); }, 0},
    {"product into a vector", [](W& w) { tnla_mat_vec_prod(w.tall, w.x, w.v); }},
    {"matrix norms", [](W& w) { w.keep(w.A.sq_norm()), w.keep(w.A.mx_norm()); }, 0},
    {"print matrix", [](W& w) { w.big.debug(w.journal, 9, true, 4); }},
    {"print empty matrix", [](W& w) { w.none.debug(w.journal, 9, true, 4); }},
};

const Dense kVector[] = {
    {"vector", [](W& w) { w.keep(TnLaDblVec()); }, 0},
    {"vector copy", [](W& w) { w.keep(TnLaDblVec(w.lengthy)); }, 1},
    {"vector of an array", [](W& w) { w.keep(TnLaDblVec(w.numbers)); }, 1},
    {"unit vector", [](W& w) { w.keep(TnLaDblVec(5, 1, 2.0)); }, 1},
    {"vector of values", [](W& w) { w.keep(TnLaDblVec(w.u.data(), 8)); }, 1},
    {"vector assignment", [](W& w) { w.v = w.lengthy; }, 1},
    {"vector assignment that fits", [](W& w) { w.v = w.y; }, 0},
    {"vector self-assignment", [](W& w) { w.v = *&w.v; }, 0},
    {"vector initialize", [](W& w) { w.v.initialize(3.0); }, 0},
    {"vector initialize from values", [](W& w) { w.v.initialize(w.u.data()); }, 0},
    {"vector initialize from an array", [](W& w) { w.v.initialize(w.numbers); }, 0},
    {"vector element", [](W& w) { w.v(2) = w.x(0); }, 0},
    {"vector grows", [](W& w) { w.v.resize(40, true); }, 1},
    {"vector grows and is cleared", [](W& w) { w.v.resize(40, false); }, 1},
    {"vector shrinks", [](W& w) { w.v.resize(1, true); }, 0},
    {"vector swap",
     [](W& w) {
       TnLaDblVec other(w.x);
       w.v.swap(other);
       w.keep(other);
     },
     1},
    {"vector sum", [](W& w) { w.keep(w.x + w.y); }},
    {"vector difference", [](W& w) { w.keep(w.x - w.y); }},
    {"negative vector", [](W& w) { w.keep(-w.x); }},
    {"vector times number", [](W& w) { w.keep(w.x * 3.0); }},
    {"number times vector", [](W& w) { w.keep(3.0 * w.x); }},
    {"assign a vector sum", [](W& w) { w.v = w.lengthy + w.lengthy; }},
    {"vector += vector", [](W& w) { w.v += w.v; }, 0},
    {"vector -= vector", [](W& w) { w.v -= w.y; }, 0},
    {"vector *= number", [](W& w) { w.v *= w.v(1); }, 0},
    {"vector *= matrix", [](W& w) { w.v *= w.tall; }},
    {"vector norms", [](W& w) { w.keep(w.x.sq_norm()), w.keep(w.x.mx_norm()), w.keep(w.x % w.y); }, 0},
    {"normalize", [](W& w) { w.v.normalize(); }, 0},
    {"direction", [](W& w) { w.keep(w.x.dir()); }},
    {"orthogonal vector", [](W& w) { w.keep(w.x.ort()); }},
    {"linear combination", [](W& w) { tnla_lincomb(w.lengthy, 2.0, w.lengthy, 3.0, w.v); }},
    {"linear combination in place", [](W& w) { tnla_lincomb(w.v, 2.0, w.v, 3.0, w.v); }, 0},
    {"print vector", [](W& w) { w.lengthy.debug(w.journal, 9, 4); }},
    {"print empty vector", [](W& w) { w.nil.debug(w.journal, 9, 4); }},
};

const Dense kKernels[] = {
    {"raw norms",
     [](W& w) {
       w.keep(tnla_sq_norm(8, w.u.data(), nullptr)), w.keep(tnla_norm(8, w.u.data(), w.w.data()));
       w.keep(tnla_scalprod(8, w.u.data(), w.w.data(), true, true));
     },
     0},
    {"raw linear combination",
     [](W& w) { tnla_lincomb(8, w.u.data(), 2.0, w.w.data(), 3.0, w.work.data(), true, true, true); }, 0},
    {"raw vectors",
     [](W& w) { tnla_ortho_vec(8, w.u.data(), w.work.data()), tnla_normalize(8, w.work.data()); }, 0},
    {"no cross product",
     [](W& w) { tnla_crossprod(2, w.u.data(), w.w.data(), w.work.data(), true, true, true); }, 0},
    {"cross product",
     [](W& w) { tnla_crossprod(3, w.u.data(), w.w.data(), w.work.data(), true, true, true); }, 0},
    {"general cross product",
     [](W& w) {  // the vectors of its two reflections
       tnla_crossprod(8, w.u.data(), w.w.data(), w.work.data(), true, true, true);
     },
     2},
};

const Dense kReflections[] = {
    {"reflection", [](W& w) { TnLaHouseholder(1, 3, 8, w.column.data(), 1); }, 1},
    {"reflection copy", [](W& w) { TnLaHouseholder(w.h).apply(w.work.data(), 1); }, 1},
    {"reflection assignment", [](W& w) { w.t = w.lengthy_h; }, 1},
    {"reflection assignment that fits", [](W& w) { w.t = w.h; }, 0},
    {"apply", [](W& w) { w.h.apply(w.work.data(), 2); }, 0},
    {"print reflection", [](W& w) { w.lengthy_h.debug(w.journal, 40); }},
    {"reflection on the heap", [](W& w) { std::make_unique<TnLaHouseholder>(w.lengthy_h); }, 2},
    {"raw reflection",
     [](W& w) {
       double up = 0.0;
       tnla_h1(0, 1, 4, w.work.data(), 1, up);
       tnla_h2(0, 1, 4, w.work.data(), 1, up, w.work.data() + 4, 1, 4, 1);
     },
     0},
};

const Dense kSolvers[] = {
    {"QR",
     [](W& w) {
       const Qr qr(w.tall);
       w.keep(qr.R()), w.keep(qr.n_trafo()), w.keep(qr.full_rank());
       qr.T(2).apply(w.work.data(), 1);
     }},
    {"QR on the heap", [](W& w) { w.keep(std::make_unique<Qr>(w.tall)->n_trafo()); }},
    {"QR of more columns than rows", [](W& w) { w.keep(Qr(w.wide).solve(w.A, w.M)); }},
    {"QR of an empty matrix", [](W& w) { w.keep(Qr(w.none).full_rank()); }},
    {"QR solve", [](W& w) { w.keep(Qr(w.big).solve(w.tall, w.M)); }},
    {"QR least squares", [](W& w) { w.keep(Qr(w.tall).solve(w.big, w.M)); }},
    {"QR of deficient rank", [](W& w) { w.keep(Qr(w.flat).solve(w.flat, w.M)); }},

    {"solve", [](W& w) { w.keep(tnla_linearsolve(w.big, w.tall, w.M)); }},
    {"solve, empty null space", [](W& w) { w.keep(tnla_linearsolve(w.big, w.tall, w.M, &w.Z)); }},
    {"solve least squares", [](W& w) { w.keep(tnla_linearsolve(w.tall, w.big, w.M, &w.Z)); }},
    {"solve, more columns", [](W& w) { w.keep(tnla_linearsolve(w.wide, w.A, w.M, &w.Z)); }},
    {"solve, more columns of rank 1", [](W& w) { w.keep(tnla_linearsolve(w.flat_wide, w.A, w.M, &w.Z)); }},
    {"solve by the template", [](W& w) { w.keep(tnla_linearsolve<TnLaDblMat>(w.wide, w.A, w.M, &w.Z)); }},
    {"solve in place", [](W& w) { w.keep(tnla_linearsolve(w.M, w.wide, w.M)); }},
    {"solve into an empty matrix", [](W& w) { w.keep(solution(w.A, w.B)); }, 1},
    {"solve for two right sides", [](W& w) { w.keep(solution(w.A, w.pair)); }, 1},
    {"solve of order 7", [](W& w) { w.keep(solution(w.big, w.big)); }, 1},
    {"solve of order 13", [](W& w) { w.keep(solution(w.large, w.large)); }, 2},  // and what it works on
    {"solve of deficient rank", [](W& w) { w.keep(solution(w.flat, w.flat)); }, 1},
    {"solve into a matrix that fits", [](W& w) { w.keep(tnla_linearsolve(w.A, w.B, w.M)); }, 0},
    {"solve of an empty matrix", [](W& w) { w.keep(solution(w.none, w.none)); }, 0},
    {"solve by rank", [](W& w) { tnla_linearsolve(w.big, w.tall, w.M, 1e-9, &w.rank, &w.Z); }},
    {"solve by rank, tall", [](W& w) { tnla_linearsolve(w.tall, w.big, w.M, 1e-9, &w.rank, &w.Z); }},
    {"solve by rank, wide", [](W& w) { tnla_linearsolve(w.wide, w.A, w.M, 1e-9, &w.rank, &w.Z); }},
    {"solve by rank, rank 1", [](W& w) { tnla_linearsolve(w.flat, w.flat, w.M, 1e-9, &w.rank, &w.Z); }},
    {"solve by rank, rank 0", [](W& w) { tnla_linearsolve(w.flat, w.flat, w.M, 1e9, &w.rank, &w.Z); }},
    {"solve by rank, X alone", [](W& w) { tnla_linearsolve(w.flat, w.flat, w.M, 1e-9); }},
    {"solve by rank in place", [](W& w) { tnla_linearsolve(w.M, w.wide, w.M, 1e-9, &w.rank, &w.Z); }},

    {"inverse", [](W& w) { w.keep(tnla_inverse(w.big, w.M)); }},
    {"inverse into an empty matrix", [](W& w) { w.keep(inverse(w.big)); }, 1},
    {"inverse of a wide matrix", [](W& w) { w.keep(tnla_inverse(w.wide, w.M)); }},
    {"inverse by rank", [](W& w) { tnla_inverse(w.big, w.M, 1e-9, &w.rank); }},
    {"inverse by rank of rank 1", [](W& w) { tnla_inverse(w.flat, w.M, 1e-9, &w.rank); }},
    {"invert", [](W& w) { w.M.invert(); }, 0},
    {"invert a matrix of rank 1", [](W& w) { w.M.initialize(0.5), w.M.invert(); }},
    {"invert a matrix that is not square", [](W& w) { w.M.remove_rows(0, 1), w.M.invert(); }},
    {"inverted", [](W& w) { w.keep(w.big.inv()); }, 1},
    {"inverted of rank 1", [](W& w) { w.keep(w.flat.inv()); }},
    {"inverted of a wide matrix", [](W& w) { w.keep(w.wide.inv()); }},
    {"determinant", [](W& w) { w.keep(w.big.det()); }, 0},
    {"determinant 0", [](W& w) { w.keep(w.flat.det()); }, 0},
    {"determinant without a decomposition",
     [](W& w) { w.keep(w.single.det()), w.keep(w.wide.det()), w.keep(w.none.det()); }, 0},
};

// Violated preconditions that end in a fallback.
const Dense kRefused[] = {
    {"capacity below the size", [](W& w) { w.d.set_capacity(2, true); }, 0},
    {"vector of a negative dimension", [](W& w) { w.keep(TnLaDblVec(-1, 0, 1.0)); }, 0},
    {"vector of negatively many values", [](W& w) { w.keep(TnLaDblVec(w.u.data(), -1)); }, 0},
    {"initialize from a short array", [](W& w) { w.M.initialize(w.few); }, 0},
    {"vector initialize from a short array", [](W& w) { w.v.initialize(w.few); }, 0},
    {"swap with another dimension",
     [](W& w) {
       TnLaDblVec other(w.few);
       w.v.swap(other);
     }},
    {"insert out of range", [](W& w) { w.M.insert_rows(4, 1), w.M.insert_cols(4, 1); }, 0},
    {"remove out of range", [](W& w) { w.M.remove_rows(3, 1), w.M.remove_cols(3, 1); }, 0},
    {"coil up onto nothing", [](W& w) { w.M.coilup_rows(0), w.M.coilup_cols(0); }, 0},
    {"no such row", [](W& w) { w.keep(w.A.row_vec(3)), w.keep(w.A.col_vec(3)); }, 0},
    {"sum of different shapes", [](W& w) { w.keep(w.A + w.big), w.keep(w.A - w.big); }, 0},
    {"empty matrix times number", [](W& w) { w.keep(w.none * 2.0), w.keep(-w.none); }, 0},
    {"product of different shapes", [](W& w) { w.keep(w.A * w.big), w.keep(w.big * w.x); }, 0},
    {"in-place sum of different shapes", [](W& w) { w.M += w.big, w.M -= w.big, w.M *= w.big; }, 0},
    {"product into a matrix, refused", [](W& w) { tnla_mat_mat_prod(w.A, w.big, w.M); }},
    {"product into a vector, refused", [](W& w) { tnla_mat_vec_prod(w.big, w.x, w.v); }},
    {"empty matrix in place", [](W& w) { w.Z *= 2.0, w.keep(w.none.sq_norm()); }, 0},
    {"sum of different dimensions", [](W& w) { w.keep(w.x + w.lengthy), w.keep(w.x - w.lengthy); }, 0},
    {"empty vector times number", [](W& w) { w.keep(w.nil * 2.0), w.keep(w.nil.ort()); }, 0},
    {"direction of an empty vector", [](W& w) { w.keep(w.nil.dir()), w.keep(w.nil.sq_norm()); }, 0},
    {"vector in place, refused", [](W& w) { w.v += w.nil, w.v -= w.nil, w.v *= w.big; }, 0},
    {"scalar product, refused", [](W& w) { w.keep(w.x % w.lengthy); }, 0},
    {"linear combination, refused", [](W& w) { tnla_lincomb(w.x, 1.0, w.lengthy, 1.0, w.v); }},
    {"columns without width", [](W& w) { w.A.debug(w.journal, -10, true, 0); }, 0},
    {"vector columns without width", [](W& w) { w.x.debug(w.journal, -10, 0); }, 0},
    {"pivot behind the range", [](W& w) { TnLaHouseholder(5, 2, 8, w.column.data(), 1); }, 1},
    {"pivot outside", [](W& w) { TnLaHouseholder(8, 2, 8, w.column.data(), 1); }, 1},
    {"QR solve with too few rows", [](W& w) { w.keep(Qr(w.big).solve(w.A, w.M)); }},
    {"QR solve with too many rows", [](W& w) { w.keep(Qr(w.A).solve(w.tall, w.M)); }},
    {"solve with a tolerance of 0", [](W& w) { tnla_linearsolve(w.A, w.B, w.M, 0.0, &w.rank, &w.Z); }},
    {"solve with other rows", [](W& w) { tnla_linearsolve(w.A, w.big, w.M, 1e-9, &w.rank, &w.Z); }},
    {"solve of nothing", [](W& w) { w.keep(tnla_linearsolve(w.none, w.A, w.M, &w.Z)); }},
    {"wide solve with other rows", [](W& w) { w.keep(tnla_linearsolve(w.wide, w.big, w.M)); }},
    {"inverse by rank of nothing", [](W& w) { tnla_inverse(w.none, w.M, 1e-9, &w.rank); }},
    {"inverse with a tolerance of 0", [](W& w) { tnla_inverse(w.A, w.M, 0.0, &w.rank); }},
    {"foreign number",
     [](W& w) {
       TnResult result;
       TnLaErr::make_result(TnResult::CodeID::error, TnLaErr::ErrorNumber(19), result);
       w.keep(static_cast<double>(TnLaErr::error_number(result)));
     },
     0},
};

// Sizes that no computation of the library may wrap around.
const Dense kTooLarge[] = {
    {"array", [](W& w) { w.d.set_size(kMax, true); }},
    {"array of bytes that overflow", [](W& w) { w.d.set_size(kMax / 8 + 1, true); }},
    {"array capacity", [](W& w) { w.d.set_capacity(kMax / 8 + 2, true); }},
    {"int array", [](W& w) { w.i.set_size(kMax / 4 + 1, false); }},
    {"pointer array", [](W& w) { w.p.set_size(kMax - 4096, false); }},
    {"matrix", [](W& w) { w.keep(TnLaDblMat(kMax, 2, 1.0)); }},
    {"matrix of a wrapped size", [](W& w) { w.keep(TnLaDblMat(Index{1} << 32, Index{1} << 32, 0.0)); }},
    {"matrix of values", [](W& w) { w.keep(TnLaDblMat(w.u.data(), kMax / 2 + 1, 2)); }},
    {"resize", [](W& w) { w.M.resize(kMax / 2 + 1, 2, true); }},
    {"resize to more columns", [](W& w) { w.M.resize(3, kMax / 3 + 1, true); }},
    {"resize and clear", [](W& w) { w.M.resize(2, kMax / 2 + 1, false); }},
    {"insert rows", [](W&) { TnLaDblMat(kMax, 0, 0.0).insert_rows(0, kMaxInt); }},
    {"insert columns", [](W&) { TnLaDblMat(0, kMax, 0.0).insert_cols(0, kMaxInt); }},
    {"vector resize", [](W& w) { w.v.resize(-1, true); }},
    {"reflection", [](W& w) { TnLaHouseholder(0, 1, -1, w.column.data(), 1); }},
    {"inverse", [](W& w) { w.keep(tnla_inverse(TnLaDblMat(Index{1} << 32, 0, 0.0), w.M)); }},
};

template <int N>
const std::vector<Small<N>>& small_operations() {
  using S = SmallWorld<N>;
  using M = typename S::M;
  using V = typename S::V;
  static const std::vector<Small<N>> operations = {
      {"vectors", [](S& w) { w.keep(V()), w.keep(V(w.x)), w.keep(V(w.x.data(), N)); }, 0},
      {"vector of an array", [](S& w) { w.keep(V(w.numbers)); }, 0},
      {"vector assignment", [](S& w) { w.v = w.x; }, 0},
      {"vector initialize",
       [](S& w) { w.v.initialize(w.x), w.v.initialize(w.y.data()), w.v.initialize(2.0); }, 0},
      {"vector queries", [](S& w) { w.keep(w.x.dim()), w.keep(w.x.empty()), w.keep(w.x(0)); }, 0},
      {"vector elements", [](S& w) { w.v(0) = w.x(N - 1), w.v.data()[N - 1] = 2.0; }, 0},
      {"vector arithmetic",
       [](S& w) {
         w.keep(w.x + w.y), w.keep(w.x - w.y), w.keep(-w.x), w.keep(w.x * 2.0), w.keep(2.0 * w.x);
       },
       0},
      {"vector in place", [](S& w) { w.v += w.x, w.v -= w.y, w.v *= 2.0; }, 0},
      {"vector norms", [](S& w) { w.keep(w.x % w.y), w.keep(w.x.sq_norm()), w.keep(w.x.mx_norm()); }, 0},
      {"vector directions", [](S& w) { w.v.normalize(), w.keep(w.x.dir()), w.keep(w.x.ort()); }, 0},
      {"vector swap",
       [](S& w) {
         V other(w.x);
         w.v.swap(other);
       },
       0},
      {"vector resize", [](S& w) { w.v.resize(N, true), w.v.resize(N, false); }, 0},
      {"print vector", [](S& w) { w.x.debug(w.journal, 20, 30); }},

      {"matrices", [](S& w) { w.keep(M()), w.keep(M(w.A)), w.keep(M(N, N, 2.0)); }, 0},
      {"matrix assignment", [](S& w) { w.C = w.A, w.C = w.x; }, 0},
      {"matrix queries",
       [](S& w) {
         w.keep(static_cast<double>(w.A.n_rows() + w.A.n_cols())), w.keep(w.A.empty()), w.keep(w.A(0, 0));
       },
       0},
      {"matrix element", [](S& w) { w.C(0, N - 1) = w.A(N - 1, 0); }, 0},
      {"matrix arithmetic",
       [](S& w) {
         w.keep(w.A + w.B), w.keep(w.A - w.B), w.keep(-w.A), w.keep(w.A * 2.0), w.keep(2.0 * w.A);
       },
       0},
      {"matrix times vector", [](S& w) { w.keep(w.A * w.x); }, 0},
      {"matrix in place", [](S& w) { w.C += w.A, w.C -= w.B, w.C *= 2.0; }, 0},
      {"rows and columns", [](S& w) { w.keep(w.A.row_vec(0)), w.keep(w.A.col_vec(N - 1)); }, 0},
      {"matrix editing",
       [](S& w) {
         w.C.set_diagonal(3.0, 0), w.C.swap_rows(0, N - 1), w.C.swap_cols(0, N - 1);
         w.C.swap(0, N - 1, true), w.C.resize(N, N, true), w.C.insert_rows(0, 1), w.C.remove_cols(0, 1);
       },
       0},
      {"matrix largest magnitude", [](S& w) { w.keep(w.A.mx_norm()); }, 0},
      {"matrix squared norm", [](S& w) { w.keep(w.A.sq_norm()); }, 1},  // of a copy in an array
      {"print matrix", [](S& w) { w.A.debug(w.journal, 4, true, 30); }},

      {"QR",
       [](S& w) {
         const TnLaTQRDecompo<M> qr(w.A);
         w.keep(qr.R()), w.keep(qr.n_trafo()), w.keep(qr.full_rank()), w.keep(qr.solve(w.B, w.X));
         if (qr.n_trafo() > 0) qr.T(0).apply(w.v.data(), 1);
       }},
      {"QR on the heap", [](S& w) { w.keep(std::make_unique<TnLaTQRDecompo<M>>(w.A)->n_trafo()); }},
      {"QR of the zero matrix", [](S& w) { w.keep(TnLaTQRDecompo<M>(w.zero).solve(w.B, w.X)); }},
      {"solve", [](S& w) { w.keep(tnla_linearsolve(w.A, w.B, w.X)); }, 0},
      {"solve in place", [](S& w) { w.keep(tnla_linearsolve(w.X, w.B, w.X)); }, 0},
      {"solve of the zero matrix", [](S& w) { w.keep(tnla_linearsolve(w.zero, w.B, w.X)); }, 0},
      {"solve by rank", [](S& w) { tnla_linearsolve(w.A, w.B, w.X, 1e-9, &w.rank, &w.Z); }},
      {"solve by rank, rank 1", [](S& w) { tnla_linearsolve(w.flat, w.B, w.X, 1e-9, &w.rank, &w.Z); }},
      {"solve by rank, rank 0", [](S& w) { tnla_linearsolve(w.zero, w.B, w.X, 1e-9, &w.rank, &w.Z); }},
      {"solve by rank in place", [](S& w) { tnla_linearsolve(w.X, w.B, w.X, 1e-9, &w.rank, nullptr); }},
  };
  return operations;
}

// Violated preconditions.  Where a decomposition asks for another shape, its matrix asserts.
template <int N>
const std::vector<Small<N>>& refused_small_operations() {
  using S = SmallWorld<N>;
  using M = typename S::M;
  using V = typename S::V;
  static const std::vector<Small<N>> operations = {
      {"vector of too many values", [](S& w) { w.keep(V(w.many.data(), N + 1)); }, 0},
      {"vector of a long array", [](S& w) { w.keep(V(w.many)); }, 0},
      {"vector resize", [](S& w) { w.v.resize(N + 1, true); }, 0},
      {"vector columns without width", [](S& w) { w.x.debug(w.journal, -10, 0); }, 0},
      {"matrix of another size", [](S& w) { w.keep(M(N + 1, N, 2.0)); }, 0},
      {"matrix resize", [](S& w) { w.C.resize(N + 1, N + 1, true); }, 0},
      {"no such row", [](S& w) { w.keep(w.A.row_vec(N)), w.keep(w.A.col_vec(N)); }, 0},
      {"columns without width", [](S& w) { w.A.debug(w.journal, -10, true, 0); }, 0},
      {"solve, null space", [](S& w) { w.keep(tnla_linearsolve(w.A, w.B, w.X, &w.Z)); }},
      {"solve with a tolerance of 0", [](S& w) { tnla_linearsolve(w.A, w.B, w.X, 0.0, &w.rank, &w.Z); }},
      {"solve by rank, no null space", [](S& w) { tnla_linearsolve(w.A, w.B, w.X, 1e-9, &w.rank, &w.Z); }},
  };
  return operations;
}

}  // namespace

TEST(Allocation, FailuresPassThroughStringsArraysAndJournals) { expect_all_survive_exhaustion(kCore); }
TEST(Allocation, FailuresPassThroughMatrices) { expect_all_survive_exhaustion(kMatrix); }
TEST(Allocation, FailuresPassThroughVectors) { expect_all_survive_exhaustion(kVector); }
TEST(Allocation, FailuresPassThroughKernels) { expect_all_survive_exhaustion(kKernels); }
TEST(Allocation, FailuresPassThroughReflections) { expect_all_survive_exhaustion(kReflections); }
TEST(Allocation, FailuresPassThroughSolvers) { expect_all_survive_exhaustion(kSolvers); }

TEST(Allocation, FailuresPassThroughSmallTypes) {
  for_every_dimension([]<int N>() { expect_all_survive_exhaustion(small_operations<N>()); });
}

TEST(Allocation, FailuresPassThroughRefusedOperations) {
  expect_all_survive_exhaustion(kRefused);
  for_every_dimension([]<int N>() { expect_all_survive_exhaustion(refused_small_operations<N>()); });
}

TEST(Allocation, AHandlerThatThrowsLosesNothing) {
  expect_all_survive_throwing_handlers(kRefused);
  for_every_dimension([]<int N>() { expect_all_survive_throwing_handlers(refused_small_operations<N>()); });
}

// Rank 1 asks for a basis of N - 1 columns, in the middle of the solve.
TEST(Allocation, AHandlerThatThrowsOutOfASolveLosesNothing) {
  for_every_dimension([]<int N>() {
    const Small<N> solve = {"solve by rank, rank 1", [](SmallWorld<N>& w) {
                              tnla_linearsolve(w.flat, w.B, w.X, 1e-9, &w.rank, &w.Z);
                            }};
    EXPECT_EQ(trial::expect_survives_throwing_handler(solve), N == 1 ? 2u : 1u);
  });
}

TEST(Allocation, ASizeThatOverflowsIsExhaustion) { trial::expect_all_are_exhaustion(kTooLarge); }

// Where a copy comes first, or only storage is exchanged, the matrix is as it was.
TEST(Allocation, EditingWithoutACopyLeavesTheMatrixAsItWas) {
  const Dense operations[] = {
      {"resize", [](W& w) { w.M.resize(7, 4, true); }},
      {"more columns", [](W& w) { w.M.resize(3, 9, true); }},
      {"insert rows", [](W& w) { w.M.insert_rows(1, 4); }},
      {"insert columns", [](W& w) { w.M.insert_cols(1, 4); }},
      {"remove rows", [](W& w) { w.M.remove_rows(1, 1); }},
      {"coil up rows", [](W& w) { w.M.coilup_rows(2); }},
      {"assignment", [](W& w) { w.M = w.big; }},
      {"product", [](W& w) { w.M *= w.wide; }},
  };
  for (const Dense& operation : operations) {
    SCOPED_TRACE(operation.name);
    DenseWorld world;
    const trial::Record before = trial::Record().add(world.M);
    {
      const allocation::Failing failing(0);
      EXPECT_THROW(operation.run(world), std::bad_alloc);
    }
    EXPECT_TRUE(trial::Record().add(world.M).is(before));
  }
}

// No solve of the small types makes an allocation that could fail.
TEST(Allocation, ATargetOfASolveIsAsItWasResizedOrSolved) {
  trial::expect_all_have_documented_targets(kSolvers, {&W::M});
}

// A small one needs no memory.
TEST(Allocation, InversionLeavesALargerMatrixAsItWas) {
  const DenseWorld world;
  bool failed = true;
  for (std::size_t k = 0; failed; ++k) {
    TnLaDblMat matrix = world.large;
    {
      const allocation::Failing failing(k);
      try {
        matrix.invert();
        failed = false;
      } catch (const std::bad_alloc&) {
        EXPECT_TRUE(trial::Record().add(matrix).is(trial::Record().add(world.large))) << k;
      }
    }
    EXPECT_TRUE(failed || k > 0);
  }
}

TEST(Allocation, SmallTypesPrintByOneArrayMoreThanThePrinter) {
  for_every_dimension([]<int N>() {
    SmallWorld<N> w;
    TnArray<double> row;
    row.set_size(N, false);
    TnArray<double> block;
    block.set_size(N * N, false);
    const auto allocations = [](auto print) {
      const std::size_t made = allocation::made();
      print();
      return allocation::made() - made;
    };
    EXPECT_EQ(allocations([&] { w.x.debug(w.journal, 6, 4); }),
              1 + allocations([&] { tn_arraydebug(w.journal, N, row, 4, 16, 6, 4); }));
    EXPECT_EQ(allocations([&] { w.A.debug(w.journal, 6, true, 4); }),
              1 + allocations([&] { tn_arraydebug(w.journal, true, 1, N, block, 4, 16, 6, 4); }));
  });
}
