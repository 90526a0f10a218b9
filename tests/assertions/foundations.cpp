// SPDX-License-Identifier: MIT

#include "entries.h"
#include "support/printed.h"
#include "support/small_types.h"
#include "tarntnla.h"

namespace {

// Three elements, and room for a fourth.
TnArray<double> three() {
  TnArray<double> a;
  a.set_size(3, false);
  for (std::size_t i = 0; i < 3; ++i) a.data()[i] = static_cast<double>(i + 1);
  return a;
}

TnResult filed(int number, const TnString* const& package) {
  TnResult result;
  result.set_error_condition(TnResult::CodeID::error, number, &package, nullptr);
  return result;
}

TnResult made(int number) {
  TnResult result;
  TnLaErr::make_result(TnResult::CodeID::error, static_cast<TnLaErr::ErrorNumber>(number), result);
  return result;
}

const TnString foreign_name("TnLaErr");
const TnString* const foreign = &foreign_name;

const Values kTwoByTwo = {1, 2, 3, 4};
const Values kTwoFives = {5, 0, 0, 5};

}  // namespace

// An access out of range takes place all the same: the tests choose elements inside the block, or take the
// address alone.
AssertionEntries foundation_entries() {
  return {
      // --- Arrays ---------------------------------------------------------------------------------------
      {"interfaces/tnarray_i.h:TnArray::operator[]:1",
       [] {
         TnArray<double> a = three();
         EXPECT_EQ(&a[3], a.data() + 3);
       },
       [] {
         TnArray<double> a = three();
         EXPECT_EQ(&a[2], a.data() + 2);
       }},
      {"interfaces/tnarray_i.h:TnArray::operator[]:2",
       [] {
         const TnArray<double> a = three();
         EXPECT_NUMBER(a[3], 0.0);
       },
       [] {
         const TnArray<double> a = three();
         EXPECT_NUMBER(a[2], 3.0);
       }},
      {"interfaces/tnarray_t.h:TnArray::set_capacity:1",
       [] {
         TnArray<double> a = three();
         a.set_capacity(2, true);
         EXPECT_EQ(a.capacity(), 4u);
         EXPECT_VALUES(elements(a), Values({1, 2, 3}));
       },
       [] {
         TnArray<double> a = three();
         a.set_capacity(3, true);
         EXPECT_EQ(a.capacity(), 3u);
         EXPECT_VALUES(elements(a), Values({1, 2, 3}));
       }},

      // --- Error numbers --------------------------------------------------------------------------------
      {"src/tnlaerr.cpp:checked_number:1",
       [] { EXPECT_EQ(TnLaErr::error_number(made(19)), TnLaErr::unknown_error); },
       [] { EXPECT_EQ(TnLaErr::error_number(made(18)), TnLaErr::singular_factor); }},
      {"src/tnlaerr.cpp:checked_number:2",
       [] { EXPECT_EQ(TnLaErr::error_number(filed(16, foreign)), TnLaErr::unknown_error); },
       [] { EXPECT_EQ(TnLaErr::error_number(made(16)), TnLaErr::la_error_base); }},

      // --- Small matrices -------------------------------------------------------------------------------
      {"interfaces/tnlatsmallmat_i.h:TnLaTSmallMat::operator():1",
       [] {
         Mat<2> m;
         EXPECT_EQ(&m(2, 0), &m(0, 1));
       },
       [] {
         Mat<2> m;
         EXPECT_EQ(&m(1, 0), &m(0, 0) + 1);
       }},
      {"interfaces/tnlatsmallmat_i.h:TnLaTSmallMat::operator():2",
       [] {
         Mat<2> m;
         EXPECT_EQ(&m(0, 2), &m(1, 1) + 1);
       },
       [] {
         Mat<2> m;
         EXPECT_EQ(&m(0, 1), &m(0, 0) + 2);
       }},
      {"interfaces/tnlatsmallmat_i.h:TnLaTSmallMat::operator():3",
       [] {
         const Mat<2> m = mat<2>(kTwoByTwo);
         EXPECT_NUMBER(m(2, 0), 3.0);
       },
       [] {
         const Mat<2> m = mat<2>(kTwoByTwo);
         EXPECT_NUMBER(m(1, 0), 2.0);
       }},
      {"interfaces/tnlatsmallmat_i.h:TnLaTSmallMat::operator():4",
       [] {
         const Mat<2> m;
         EXPECT_EQ(&m(0, 2), &m(1, 1) + 1);
       },
       [] {
         const Mat<2> m = mat<2>(kTwoByTwo);
         EXPECT_NUMBER(m(0, 1), 3.0);
       }},
      {"src/tnlatsmallmat.cpp:TnLaTSmallMat::TnLaTSmallMat:1",
       [] { EXPECT_ELEMENTS(Mat<2>(2, 3, 5.0), kTwoFives); },
       [] { EXPECT_ELEMENTS(Mat<2>(2, 2, 5.0), kTwoFives); }},
      {"src/tnlatsmallmat.cpp:TnLaTSmallMat::row_vec:1",
       [] {
         EXPECT_ELEMENTS(mat<2>(kTwoByTwo).row_vec(2), Values({0, 0}));
       },
       [] {
         EXPECT_ELEMENTS(mat<2>(kTwoByTwo).row_vec(1), Values({2, 4}));
       }},
      {"src/tnlatsmallmat.cpp:TnLaTSmallMat::col_vec:1",
       [] {
         EXPECT_ELEMENTS(mat<2>(kTwoByTwo).col_vec(2), Values({0, 0}));
       },
       [] {
         EXPECT_ELEMENTS(mat<2>(kTwoByTwo).col_vec(1), Values({3, 4}));
       }},
      {"src/tnlatsmallmat.cpp:TnLaTSmallMat::resize:1",
       [] {
         Mat<2> m = mat<2>(kTwoByTwo);
         m.resize(1, 2, false);
         EXPECT_ELEMENTS(m, kTwoByTwo);
       },
       [] {
         Mat<2> m = mat<2>(kTwoByTwo);
         m.resize(2, 2, false);
         EXPECT_ELEMENTS(m, kTwoByTwo);
       }},
      {"src/tnlatsmallmat.cpp:TnLaTSmallMat::resize:2",
       [] {
         Mat<2> m = mat<2>(kTwoByTwo);
         m.resize(2, 3, false);
         EXPECT_ELEMENTS(m, kTwoByTwo);
       },
       [] {
         Mat<2> m = mat<2>(kTwoByTwo);
         m.resize(2, 2, true);
         EXPECT_ELEMENTS(m, kTwoByTwo);
       }},
      {"src/tnlatsmallmat.cpp:TnLaTSmallMat::debug:1",
       [] { EXPECT_EQ(printed([](TnJournal& out) { Mat<1>().debug(out, -10, false, 0); }), ""); },
       [] { EXPECT_EQ(printed([](TnJournal& out) { Mat<1>().debug(out, -9, false, 0); }), "0e+00\n"); }},

      // --- Small vectors --------------------------------------------------------------------------------
      {"interfaces/tnlatsmallvec_i.h:TnLaTSmallVec::operator():1",
       [] {
         Vec<2> v;
         EXPECT_EQ(&v(2), v.data() + 2);
       },
       [] {
         Vec<2> v;
         EXPECT_EQ(&v(1), v.data() + 1);
       }},
      {"interfaces/tnlatsmallvec_i.h:TnLaTSmallVec::operator():2",
       [] {
         const Vec<2> v;
         EXPECT_EQ(&v(2), v.data() + 2);
       },
       [] {
         const Vec<2> v = vec<2>({1, 2});
         EXPECT_NUMBER(v(1), 2.0);
       }},
      {"src/tnlatsmallvec.cpp:TnLaTSmallVec::TnLaTSmallVec:1",
       [] {
         EXPECT_ELEMENTS(Vec<2>(kTwoByTwo.data(), 3), Values({1, 2}));
       },
       [] {
         EXPECT_ELEMENTS(Vec<2>(kTwoByTwo.data(), 2), Values({1, 2}));
       }},
      {"src/tnlatsmallvec.cpp:TnLaTSmallVec::TnLaTSmallVec:2",
       [] {
         EXPECT_ELEMENTS(Vec<2>(three()), Values({1, 2}));
       },
       [] {
         EXPECT_ELEMENTS(Vec<3>(three()), Values({1, 2, 3}));
       }},
      {"src/tnlatsmallvec.cpp:TnLaTSmallVec::resize:1",
       [] {
         Vec<2> v = vec<2>({1, 2});
         v.resize(3, false);
         EXPECT_ELEMENTS(v, Values({1, 2}));
       },
       [] {
         Vec<2> v = vec<2>({1, 2});
         v.resize(2, false);
         EXPECT_ELEMENTS(v, Values({1, 2}));
       }},
      {"src/tnlatsmallvec.cpp:TnLaTSmallVec::debug:1",
       [] { EXPECT_EQ(printed([](TnJournal& out) { Vec<1>().debug(out, -10, 0); }), ""); },
       [] { EXPECT_EQ(printed([](TnJournal& out) { Vec<1>().debug(out, -9, 0); }), "0e+00\n"); }},
  };
}
