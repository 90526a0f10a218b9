// SPDX-License-Identifier: MIT

#include "entries.h"
#include "support/dense_objects.h"
#include "support/printed.h"

namespace {

TnLaDblVec sample() { return vec({3, 4}); }

template <class F>
void expect_becomes(F change, const std::vector<double>& expected) {
  TnLaDblVec x = sample();
  change(x);
  expect_is(x, expected);
}

template <class F>
void expect_stays(F change) {
  expect_becomes(change, {3, 4});
}

std::string debugged(int digits) {
  return printed([=](TnJournal& out) { ones(1).debug(out, digits, 0); });
}

}  // namespace

AssertionEntries vector_entries() {
  return {
      // --- Construction and elements --------------------------------------------------------------------
      {"src/tnla_matrix_vector.cpp:TnLaDblVec::TnLaDblVec:1", [] { expect_is(TnLaDblVec(-1, 0, 5.0), {}); },
       [] { expect_is(TnLaDblVec(0, 0, 5.0), {}); }},
      {"src/tnla_matrix_vector.cpp:TnLaDblVec::TnLaDblVec:2",
       [] { expect_is(TnLaDblVec(nullptr, -1), {}); }, [] { expect_is(TnLaDblVec(nullptr, 0), {}); }},
      {"src/tnla_matrix_vector.cpp:TnLaDblVec::initialize:1",
       [] {
         expect_becomes([](TnLaDblVec& x) { x.initialize(ones(1).array()); }, {1, 0});
       },
       [] {
         expect_becomes([](TnLaDblVec& x) { x.initialize(ones(2).array()); }, {1, 1});
       },
       {"src/tnla_matrix_vector.cpp:TnLaDblVec::initialize:1", "src/tnla_matrix_vector.cpp:copy_front:1"}},
      {"src/tnla_matrix_vector.cpp:TnLaDblVec::swap:1",
       [] {
         TnLaDblVec x = sample();
         TnLaDblVec y = ones(1);
         x.swap(y);
         expect_is(x, {1, 0});
         expect_is(y, {3});
       },
       [] {
         TnLaDblVec x = sample();
         TnLaDblVec y = ones(2);
         x.swap(y);
         expect_is(x, {1, 1});
         expect_is(y, {3, 4});
       }},

      // --- Arithmetic -----------------------------------------------------------------------------------
      {"src/tnla_matrix_vector.cpp:TnLaDblVec::operator+:1", [] { expect_is(sample() + ones(3), {}); },
       [] {
         expect_is(sample() + ones(2), {4, 5});
       }},
      {"src/tnla_matrix_vector.cpp:TnLaDblVec::operator-:1", [] { expect_is(sample() - ones(3), {}); },
       [] {
         expect_is(sample() - ones(2), {2, 3});
       }},
      {"src/tnla_matrix_vector.cpp:TnLaDblVec::operator*:1", [] { expect_is(TnLaDblVec() * 2.0, {}); },
       [] { expect_is(ones(1) * 2.0, {2}); }},
      {"src/tnla_matrix_vector.cpp:TnLaDblVec::operator+=:1",
       [] { expect_stays([](TnLaDblVec& x) { x += ones(3); }); },
       [] {
         expect_becomes([](TnLaDblVec& x) { x += ones(2); }, {4, 5});
       }},
      {"src/tnla_matrix_vector.cpp:TnLaDblVec::operator-=:1",
       [] { expect_stays([](TnLaDblVec& x) { x -= ones(3); }); },
       [] {
         expect_becomes([](TnLaDblVec& x) { x -= ones(2); }, {2, 3});
       }},
      {"src/tnla_matrix_vector.cpp:TnLaDblVec::operator*=:1",
       [] {
         TnLaDblVec x;
         x *= 2.0;
         expect_is(x, {});
       },
       [] {
         expect_becomes([](TnLaDblVec& x) { x *= 2.0; }, {6, 8});
       }},
      {"src/tnla_matrix_vector.cpp:TnLaDblVec::operator*=:2",
       [] { expect_stays([](TnLaDblVec& x) { x *= ones(2, 3); }); },
       [] {
         expect_becomes([](TnLaDblVec& x) { x *= ones(3, 2); }, {7, 7, 7});
       }},
      {"src/tnla_matrix_vector.cpp:TnLaDblVec::ort:1", [] { expect_is(TnLaDblVec().ort(), {}); },
       [] {
         expect_is(vec({0, 2}).ort(), {1, -0.0});
       }},
      {"src/tnla_matrix_vector.cpp:tnla_scalprod:1", [] { EXPECT_SAME(sample() % ones(3), 0.0); },
       [] { EXPECT_SAME(sample() % ones(2), 7.0); }},
      {"src/tnla_matrix_vector.cpp:tnla_lincomb:1",
       [] {
         TnLaDblVec z = ones(2);
         tnla_lincomb(sample(), 1.0, ones(3), 2.0, z);
         expect_is(z, {});
       },
       [] {
         TnLaDblVec z = ones(3);
         tnla_lincomb(sample(), 1.0, ones(2), 2.0, z);
         expect_is(z, {5, 6});
       }},

      // --- Output ---------------------------------------------------------------------------------------
      {"src/tnla_matrix_vector.cpp:TnLaDblVec::debug:1", [] { EXPECT_EQ(debugged(-10), ""); },
       [] { EXPECT_EQ(debugged(-9), "1e+00\n"); }},
  };
}
