// SPDX-License-Identifier: MIT

#include "entries.h"
#include "support/dense_objects.h"
#include "support/printed.h"

namespace {

TnLaDblMat sample() { return mat(2, 2, {1, 2, 3, 4}); }
TnLaDblMat column() { return mat(2, 1, {5, 6}); }
TnLaDblMat no_rows() { return TnLaDblMat(0, 2, 0.0); }

// Calls change(A) for the sample, and expects it to hold these elements.
template <class F>
void expect_becomes(F change, std::size_t rows, std::size_t cols, const std::vector<double>& by_columns) {
  TnLaDblMat A = sample();
  change(A);
  expect_is(A, rows, cols, by_columns);
}

template <class F>
void expect_stays(F change) {
  expect_becomes(change, 2, 2, elements(sample()));
}

std::string debugged(int digits) {
  return printed([=](TnJournal& out) { ones(1, 1).debug(out, digits, false, 0); });
}

}  // namespace

AssertionEntries matrix_entries() {
  return {
      // --- Elements -------------------------------------------------------------------------------------
      {"interfaces/tnla_matrix_vector_i.h:TnLaDblMat::operator():1",
       [] {
         TnLaDblMat A = sample();
         EXPECT_EQ(&A(2, 0), &A(0, 1));
       },
       [] {
         TnLaDblMat A = sample();
         EXPECT_EQ(&A(1, 0), &A(0, 0) + 1);
       }},
      {"interfaces/tnla_matrix_vector_i.h:TnLaDblMat::operator():2",
       [] {
         const TnLaDblMat A = sample();
         EXPECT_SAME(A(2, 0), 3.0);
       },
       [] {
         const TnLaDblMat A = sample();
         EXPECT_SAME(A(1, 1), 4.0);
       }},
      {"src/tnla_matrix_vector.cpp:TnLaDblMat::initialize:1",
       [] {
         expect_becomes([](TnLaDblMat& A) { A.initialize(ones(3).array()); }, 2, 2, {1, 1, 1, 0});
       },
       [] {
         expect_becomes([](TnLaDblMat& A) { A.initialize(ones(4).array()); }, 2, 2, {1, 1, 1, 1});
       },
       {"src/tnla_matrix_vector.cpp:TnLaDblMat::initialize:1", "src/tnla_matrix_vector.cpp:copy_front:1"}},
      {"src/tnla_matrix_vector.cpp:copy_front:1",
       [] {
         expect_becomes([](TnLaDblMat& A) { A.initialize(ones(2).array()); }, 2, 2, {1, 1, 0, 0});
       },
       [] {
         expect_becomes([](TnLaDblMat& A) { A.initialize(ones(4).array()); }, 2, 2, {1, 1, 1, 1});
       },
       {"src/tnla_matrix_vector.cpp:TnLaDblMat::initialize:1", "src/tnla_matrix_vector.cpp:copy_front:1",
        "src/tnla_matrix_vector.cpp:copy_front:1"}},

      // --- Structure ------------------------------------------------------------------------------------
      {"src/tnla_matrix_vector.cpp:TnLaDblMat::insert_rows:1",
       [] { expect_stays([](TnLaDblMat& A) { A.insert_rows(3, 1); }); },
       [] {
         expect_becomes([](TnLaDblMat& A) { A.insert_rows(2, 1); }, 3, 2, {1, 2, 0, 3, 4, 0});
       }},
      {"src/tnla_matrix_vector.cpp:TnLaDblMat::insert_cols:1",
       [] { expect_stays([](TnLaDblMat& A) { A.insert_cols(3, 1); }); },
       [] {
         expect_becomes([](TnLaDblMat& A) { A.insert_cols(2, 1); }, 2, 3, {1, 2, 3, 4, 0, 0});
       }},
      {"src/tnla_matrix_vector.cpp:TnLaDblMat::remove_rows:1",
       [] { expect_stays([](TnLaDblMat& A) { A.remove_rows(2, 1); }); },
       [] {
         expect_becomes([](TnLaDblMat& A) { A.remove_rows(1, 1); }, 1, 2, {1, 3});
       }},
      {"src/tnla_matrix_vector.cpp:TnLaDblMat::remove_cols:1",
       [] { expect_stays([](TnLaDblMat& A) { A.remove_cols(2, 1); }); },
       [] {
         expect_becomes([](TnLaDblMat& A) { A.remove_cols(1, 1); }, 2, 1, {1, 2});
       }},
      {"src/tnla_matrix_vector.cpp:TnLaDblMat::coilup_rows:1",
       [] { expect_stays([](TnLaDblMat& A) { A.coilup_rows(0); }); },
       [] {
         expect_becomes([](TnLaDblMat& A) { A.coilup_rows(1); }, 1, 2, {3, 7});
       }},
      {"src/tnla_matrix_vector.cpp:TnLaDblMat::coilup_cols:1",
       [] { expect_stays([](TnLaDblMat& A) { A.coilup_cols(0); }); },
       [] {
         expect_becomes([](TnLaDblMat& A) { A.coilup_cols(1); }, 2, 1, {4, 6});
       }},
      {"src/tnla_matrix_vector.cpp:TnLaDblMat::row_vec:1", [] { expect_is(sample().row_vec(2), {}); },
       [] {
         expect_is(sample().row_vec(1), {2, 4});
       }},
      {"src/tnla_matrix_vector.cpp:TnLaDblMat::col_vec:1", [] { expect_is(sample().col_vec(2), {}); },
       [] {
         expect_is(sample().col_vec(1), {3, 4});
       }},

      // --- Arithmetic -----------------------------------------------------------------------------------
      {"src/tnla_matrix_vector.cpp:TnLaDblMat::operator+:1",
       [] { expect_is(sample() + column(), 0, 0, {}); },
       [] {
         expect_is(sample() + ones(2, 2), 2, 2, {2, 3, 4, 5});
       }},
      {"src/tnla_matrix_vector.cpp:TnLaDblMat::operator-:1",
       [] { expect_is(sample() - column(), 0, 0, {}); },
       [] {
         expect_is(sample() - ones(2, 2), 2, 2, {0, 1, 2, 3});
       }},
      {"src/tnla_matrix_vector.cpp:TnLaDblMat::operator*:1", [] { expect_is(no_rows() * 2.0, 0, 1, {}); },
       [] {
         expect_is(ones(1, 2) * 2.0, 1, 2, {2, 2});
       }},
      {"src/tnla_matrix_vector.cpp:TnLaDblMat::operator*:2",
       [] { expect_is(column() * sample(), 0, 0, {}); },
       [] {
         expect_is(sample() * column(), 2, 1, {23, 34});
       }},
      {"src/tnla_matrix_vector.cpp:TnLaDblMat::operator+=:1",
       [] { expect_stays([](TnLaDblMat& A) { A += column(); }); },
       [] {
         expect_becomes([](TnLaDblMat& A) { A += ones(2, 2); }, 2, 2, {2, 3, 4, 5});
       }},
      {"src/tnla_matrix_vector.cpp:TnLaDblMat::operator-=:1",
       [] { expect_stays([](TnLaDblMat& A) { A -= column(); }); },
       [] {
         expect_becomes([](TnLaDblMat& A) { A -= ones(2, 2); }, 2, 2, {0, 1, 2, 3});
       }},
      {"src/tnla_matrix_vector.cpp:TnLaDblMat::operator*=:1",
       [] {
         TnLaDblMat A = no_rows();
         A *= 2.0;
         expect_is(A, 0, 2, {});
       },
       [] {
         expect_becomes([](TnLaDblMat& A) { A *= 2.0; }, 2, 2, {2, 4, 6, 8});
       }},
      {"src/tnla_matrix_vector.cpp:TnLaDblMat::operator*=:2",
       [] { expect_stays([](TnLaDblMat& A) { A *= ones(1, 2); }); },
       [] {
         expect_becomes([](TnLaDblMat& A) { A *= column(); }, 2, 1, {23, 34});
       }},
      {"src/tnla_matrix_vector.cpp:TnLaDblMat::sq_norm:1", [] { EXPECT_SAME(no_rows().sq_norm(), 0.0); },
       [] { EXPECT_SAME(sample().sq_norm(), 30.0); }},
      {"src/tnla_matrix_vector.cpp:TnLaDblMat::debug:1", [] { EXPECT_EQ(debugged(-10), ""); },
       [] { EXPECT_EQ(debugged(-9), "1e+00\n"); }},

      // --- Products into a given place ------------------------------------------------------------------
      {"src/tnla_matrix_vector.cpp:tnla_mat_mat_prod:1",
       [] {
         TnLaDblMat C = sample();
         tnla_mat_mat_prod(column(), sample(), C);
         expect_is(C, 0, 1, {});
       },
       [] {
         TnLaDblMat C = sample();
         tnla_mat_mat_prod(sample(), column(), C);
         expect_is(C, 2, 1, {23, 34});
       }},
      {"src/tnla_matrix_vector.cpp:tnla_mat_vec_prod:1",
       [] {
         TnLaDblVec y = ones(2);
         tnla_mat_vec_prod(sample(), ones(3), y);
         expect_is(y, {});
       },
       [] {
         TnLaDblVec y = ones(2);
         tnla_mat_vec_prod(sample(), ones(2), y);
         expect_is(y, {4, 6});
       }},
  };
}
