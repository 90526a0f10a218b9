// SPDX-License-Identifier: MIT

#include <gtest/gtest.h>

#include <cstddef>
#include <limits>
#include <memory>
#include <new>

#include "support/allocation.h"
#include "support/solver_world.h"
#include "support/trial.h"

// What the special solvers leave where memory is exhausted or the assertion handler throws.

using trial::SolverWorld;

namespace {

using W = SolverWorld;
using Operation = trial::Operation<SolverWorld>;

constexpr int kMaxInt = std::numeric_limits<int>::max();

// A band solver of any sizes.
class Sized : public TnLaBlkBndSolver {
 public:
  Sized(int unknowns, int bandwidth, int right_sides, int equations)
      : TnLaBlkBndSolver(unknowns, 1, bandwidth, right_sides), equations_(equations) {}
  void get_block_equations(int, int, TnLaDblMat&, int&, int&) const override {}
  int max_block_equations() const override { return equations_; }

 private:
  int equations_;
};

// {name, operation, the number of its allocations where that is promised}

const Operation kCholesky[] = {
    {"construction", [](W&) { TnLaCholesky(7).x(); }, 0},
    {"on the heap", [](W& w) { std::make_unique<TnLaCholesky>(SolverWorld::kN)->a(w.A); }, 2},
    {"A", [](W& w) { w.fresh.a(w.A); }, 1},
    {"b", [](W& w) { w.fresh.b(w.b); }, 1},
    {"first solution",  // A, b, the factor and its diagonal, a copy of b, the solution
     [](W& w) { w.fresh.a(w.A), w.fresh.b(w.b), w.keep(w.fresh.x()); }, 6},
    {"b before A", [](W& w) { w.fresh.b(w.b), w.fresh.a(w.A), w.keep(w.fresh.x()); }, 6},
    {"solution", [](W& w) { w.keep(w.ready.x()); }, 4},
    {"same solution again", [](W& w) { w.keep(w.solved.x()); }, 0},
    {"next b", [](W& w) { w.solved.b(w.next_b), w.keep(w.solved.x()); }, 1},
    {"next A", [](W& w) { w.solved.a(w.next_A), w.keep(w.solved.x()); }, 2},
    {"next A and b", [](W& w) { w.solved.a(w.next_A), w.solved.b(w.next_b), w.keep(w.solved.x()); }, 3},
    {"A that has no factor", [](W& w) { w.ready.a(w.negative_A), w.keep(w.ready.x()); }},
    {"singular A", [](W& w) { w.ready.a(w.zeros), w.keep(w.ready.x()); }},
    {"no factor again", [](W& w) { w.keep(w.failed.x()); }},
    {"no factor, next b", [](W& w) { w.failed.b(w.next_b), w.keep(w.failed.x()); }},
    {"no factor, next A", [](W& w) { w.failed.a(w.next_A), w.keep(w.failed.x()); }},
    {"no factor after a factor", [](W& w) { w.solved.a(w.negative_A), w.keep(w.solved.x()); }},
    {"no unknowns", [](W& w) { w.empty.a(w.none), w.empty.b(w.none), w.keep(w.empty.x()); }},
};

const Operation kEigenvectors[] = {
    {"eigenvectors", [](W& w) { w.keep(tnla_eigenvector_basis(w.symmetric, w.eigenvalues, w.vectors)); }},
    {"of a 2 x 2 matrix", [](W& w) { w.keep(tnla_eigenvector_basis(w.pair, w.eigenvalues, w.vectors)); }},
    {"of a number", [](W& w) { w.keep(tnla_eigenvector_basis(w.single, w.eigenvalues, w.vectors)); }},
    {"of nothing", [](W& w) { w.keep(tnla_eigenvector_basis(w.nothing, w.eigenvalues, w.vectors)); }},
    {"of more columns", [](W& w) { w.keep(tnla_eigenvector_basis(w.wide, w.eigenvalues, w.vectors)); }},
    {"without convergence",
     [](W& w) { w.keep(tnla_eigenvector_basis(w.not_finite, w.eigenvalues, w.vectors)); }},
};

const Operation kJets[] = {
    {"order 1", [](W& w) { tnla_util_adapt_jet(nullptr, 1, w.jet, w.ref, false, &w.orientation); }},
    {"order 2", [](W& w) { tnla_util_adapt_jet(nullptr, 2, w.jet, w.ref, false, &w.orientation); }},
    {"order 3", [](W& w) { tnla_util_adapt_jet(nullptr, 3, w.jet, w.ref, false, nullptr); }},
    {"linear", [](W& w) { tnla_util_adapt_jet(nullptr, 3, w.jet, w.ref, true, &w.orientation); }},
    {"old behaviour", [](W& w) { tnla_util_adapt_jet(&w.old, 3, w.jet, w.ref, false, nullptr); }},
    {"own reference", [](W& w) { tnla_util_adapt_jet(nullptr, 3, w.jet, w.jet, false, nullptr); }},
};

const Operation kBands[] = {
    {"band", [](W& w) { w.keep(w.open.solve(w.X)); }},
    {"band again",
     [](W& w) {
       w.keep(w.open.solve(w.X));
       w.keep(w.open.solve(w.X));
     }},
    {"used band", [](W& w) { w.keep(w.used.solve(w.vectors)); }},
    {"used band, X that fits", [](W& w) { w.keep(w.used.solve(w.X)); }, 0},
    {"closed, dense solve", [](W& w) { w.keep(w.closed.solve(w.X)); }},
    {"closed, structured solve", [](W& w) { w.keep(w.closed_long.solve(w.X)); }},
    {"used, structured solve", [](W& w) { w.keep(w.used_long.solve(w.X)); }},
    {"an unknown without an equation", [](W& w) { w.keep(BandClient(2, Chain::open).solve(w.X)); }},
    {"no unknowns", [](W& w) { w.keep(BandClient(0, Chain::open).solve(w.X)); }},
    {"no exceptional equations unless overridden",
     [](W& w) {
       const Sized solver(8, 3, 2, 3);
       int count = 7;
       w.keep(solver.exceptional());
       solver.get_exceptional_equations(w.X, w.X, w.vectors, count);
       w.keep(count);
     },
     0},
};

// Violated preconditions.
const Operation kRefused[] = {
    {"no A and no b", [](W& w) { w.keep(w.fresh.x()); }, 0},
    {"no A", [](W& w) { w.fresh.b(w.b), w.keep(w.fresh.x()); }, 1},
    {"no b", [](W& w) { w.fresh.a(w.A), w.keep(w.fresh.x()); }, 1},
    {"A too short", [](W& w) { w.fresh.a(w.b); }, 0},
    {"b too long", [](W& w) { w.fresh.b(w.A); }, 0},
    {"A of a wrong length", [](W& w) { w.ready.a(w.one_too_many), w.keep(w.ready.x()); }, 0},
    {"b of a wrong length", [](W& w) { w.ready.b(w.none), w.keep(w.ready.x()); }, 0},
    {"A of a wrong length after a solution",
     [](W& w) { w.solved.a(w.b), w.keep(w.solved.x()), w.solved.a(w.A), w.keep(w.solved.x()); }},
    {"b of a wrong length after a solution",
     [](W& w) { w.solved.b(w.A), w.keep(w.solved.x()), w.solved.b(w.b), w.keep(w.solved.x()); }},
    {"A of a wrong length after a failed pivot", [](W& w) { w.failed.a(w.b), w.keep(w.failed.x()); }, 0},
    {"a negative number of unknowns", [](W& w) { TnLaCholesky(-1).b(w.b); }, 0},

    {"eigenvectors of more rows than columns",
     [](W& w) { w.keep(tnla_eigenvector_basis(w.tall, w.eigenvalues, w.vectors)); }},

    {"reference of other rows",
     [](W& w) { tnla_util_adapt_jet(nullptr, 3, w.jet, w.thin_ref, false, &w.orientation); }},
    {"reference of few columns",
     [](W& w) { tnla_util_adapt_jet(&w.old, 3, w.jet, w.short_ref, false, &w.orientation); }},
    {"jet of few columns",
     [](W& w) { tnla_util_adapt_jet(nullptr, 3, w.short_jet, w.ref, false, &w.orientation); }},
    {"jet and reference of few columns",
     [](W& w) { tnla_util_adapt_jet(nullptr, 9, w.jet, w.jet, false, nullptr); }},

    {"block of too many rows", [](W& w) { w.solve_faulty(W::kShort, Chain::open, Fault::too_many_rows); }},
    {"block of -1 rows", [](W& w) { w.solve_faulty(W::kShort, Chain::open, Fault::negative_count); }},
    {"block at unknown -1", [](W& w) { w.solve_faulty(W::kShort, Chain::open, Fault::negative_unknown); }},
    {"another shape of the work matrix", [](W& w) { w.keep(w.reshaping.solve(w.X)); }},
    {"band beyond the end", [](W& w) { w.solve_faulty(W::kShort, Chain::open, Fault::beyond_the_end); }},
    {"band beyond the end, dense solve",
     [](W& w) { w.solve_faulty(W::kShort, Chain::closed, Fault::beyond_the_end); }},
    {"band beyond the end, structured solve",
     [](W& w) { w.solve_faulty(W::kLong, Chain::closed, Fault::beyond_the_end); }},
    {"no exceptional equations",
     [](W& w) { w.solve_faulty(W::kShort, Chain::closed, Fault::none_exceptional); }},
    {"too many exceptional equations",
     [](W& w) { w.solve_faulty(W::kShort, Chain::closed, Fault::too_many_exceptional); }},
    {"another shape of the exceptional equations",
     [](W& w) { w.solve_faulty(W::kLong, Chain::closed, Fault::another_exceptional_shape); }},
};

// Sizes that no computation of the library may wrap around, and negative ones.
const Operation kTooLarge[] = {
    {"eigenvectors",
     [](W& w) {
       TnLaDblMat a(std::size_t{1} << 32, 0, 0.0);
       w.keep(tnla_eigenvector_basis(a, w.eigenvalues, w.vectors));
     }},
    {"band of -1 unknowns", [](W& w) { w.keep(Sized(-1, 3, 2, 3).solve(w.X)); }},
    {"band of width -1", [](W& w) { w.keep(Sized(8, -1, 2, 3).solve(w.X)); }},
    {"band with -1 right-hand sides", [](W& w) { w.keep(Sized(8, 3, -1, 3).solve(w.X)); }},
    {"blocks of -1 equations at most", [](W& w) { w.keep(Sized(8, 3, 2, -1).solve(w.X)); }},
    {"many unknowns", [](W& w) { w.keep(Sized(kMaxInt, kMaxInt, kMaxInt, 3).solve(w.X)); }},
    {"many equations", [](W& w) { w.keep(Sized(kMaxInt, kMaxInt, kMaxInt, kMaxInt).solve(w.X)); }},
};

}  // namespace

TEST(SolverAllocation, FailuresPassThroughCholesky) { trial::expect_all_survive_exhaustion(kCholesky); }
TEST(SolverAllocation, FailuresPassThroughEigenvectors) {
  trial::expect_all_survive_exhaustion(kEigenvectors);
}
TEST(SolverAllocation, FailuresPassThroughJets) { trial::expect_all_survive_exhaustion(kJets); }
TEST(SolverAllocation, FailuresPassThroughBands) { trial::expect_all_survive_exhaustion(kBands); }
TEST(SolverAllocation, FailuresPassThroughRefusedOperations) {
  trial::expect_all_survive_exhaustion(kRefused);
}
TEST(SolverAllocation, AHandlerThatThrowsLosesNothing) {
  trial::expect_all_survive_throwing_handlers(kRefused);
}
// Also where the client has left the work matrix in another shape.
TEST(SolverAllocation, ARefusedSolveLeavesTheSolverAsNew) {
  for (const Fault fault :
       {Fault::too_many_rows, Fault::negative_count, Fault::negative_unknown, Fault::another_shape,
        Fault::none_exceptional, Fault::too_many_exceptional, Fault::another_exceptional_shape}) {
    for (const int unknowns : {W::kShort, W::kLong}) {
      SCOPED_TRACE(testing::Message() << "fault " << static_cast<int>(fault) << ", " << unknowns);
      TnLaDblMat x;
      BandClient client(unknowns, Chain::closed, fault);
      client.solve(x);
      client.recover();
      EXPECT_TRUE(client.solve(x));
      TnLaDblMat expected;
      BandClient(unknowns, Chain::closed).solve(expected);
      EXPECT_TRUE(trial::Record().add(x).is(trial::Record().add(expected)));
    }
  }
}

TEST(SolverAllocation, ASizeThatOverflowsIsExhaustion) { trial::expect_all_are_exhaustion(kTooLarge); }
