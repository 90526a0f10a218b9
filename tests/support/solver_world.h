// SPDX-License-Identifier: MIT

#pragma once

#include <cstddef>
#include <cstdint>

#include "support/band_client.h"
#include "support/trial_worlds.h"
#include "tarntnla.h"

// The objects on which trials of the special solvers run.
namespace trial {

// Positive definite, with pivots of 1 or more, or the same with the opposite sign.
inline TnLaDblMat definite(std::size_t n, std::uint64_t seed, double sign) {
  const TnLaDblMat R = random_matrix(n, n, seed);
  return sign * (R * R.tr() + TnLaDblMat(n, n, 1.0));
}

// A behaviour object that asks for what was before level 1.
class OldBehaviour : public TnOperationBehaviour {
 public:
  std::int16_t behaviour_level(const TnString*, int, std::int16_t) override { return 0; }
};

// Solvers keep what they were given and what they computed.  So an operation on them either says anew what
// it works on, or can go on where the one before broke off.
struct SolverWorld {
  static constexpr int kN = 5;
  static constexpr int kShort = 8;  // unknowns of a dense solve; 9 or more make a structured one
  static constexpr int kLong = 12;

  const TnArray<double> A = definite(kN, 1, 1.0).array(), next_A = definite(kN, 2, 1.0).array(),
                        negative_A = definite(kN, 3, -1.0).array(), zeros = filled_array(kN * kN, 0.0),
                        one_too_many = filled_array(kN * kN + 1, 1.0), none;
  const TnArray<double> b = filled_array(kN, 0.5), next_b = filled_array(kN, 0.75);
  const TnLaDblMat ref = random_matrix(3, 4, 10), thin_ref = random_matrix(2, 4, 11),
                   short_ref = random_matrix(3, 2, 12);

  // Without A and b; with both; with the factor of A; with a matrix that has none.
  TnLaCholesky fresh{kN}, ready{kN}, solved{kN}, failed{kN}, empty{0};
  BandClient open{kShort, Chain::open}, used{kShort, Chain::open}, closed{kShort, Chain::closed},
      closed_long{kLong, Chain::closed}, used_long{kLong, Chain::closed},
      reshaping{kShort, Chain::open, Fault::another_shape};

  TnLaDblMat symmetric = definite(6, 4, 1.0), pair = definite(2, 5, 1.0), single{1, 1, 3.0}, nothing,
             not_finite{3, 3, 1.0}, wide = random_matrix(3, 4, 13), tall = random_matrix(4, 2, 14);
  TnLaDblMat jet = random_matrix(3, 5, 15), short_jet = random_matrix(3, 3, 16);
  OldBehaviour old;

  TnLaDblMat X = random_matrix(kShort, BandClient::kRightSides, 20), vectors = random_matrix(2, 2, 21);
  TnArray<double> eigenvalues = filled_array(2, 1.5);
  int orientation = 0;
  Results results;

  SolverWorld() {
    for (TnLaCholesky* const cholesky : {&ready, &solved}) cholesky->a(A);
    failed.a(negative_A);
    for (TnLaCholesky* const cholesky : {&ready, &solved, &failed}) cholesky->b(b);
    solved.x();
    failed.x();
    used.be_frugal();
    TnLaDblMat x;
    for (const BandClient* const client : {&used, &used_long}) client->solve(x);
    not_finite(0, 1) = kNaN;
  }

  template <class T>
  void keep(const T& result) {
    results.keep(result);
  }

  void solve_faulty(int unknowns, Chain chain, Fault fault) {
    keep(BandClient(unknowns, chain, fault).solve(X));
  }

  Record inputs() const {
    Record r;
    for (const TnArray<double>* a : {&A, &next_A, &negative_A, &zeros, &one_too_many, &none, &b, &next_b}) {
      r.add_whole(*a);
    }
    return r.add(ref).add(thin_ref).add(short_ref);
  }
  Record steady() const {
    Record r;
    for (const TnLaDblMat* m :
         {&symmetric, &pair, &single, &nothing, &not_finite, &wide, &tall, &jet, &short_jet}) {
      r.add(*m);
    }
    return r;
  }
  Record all() const {
    Record r = steady();
    r.add(X).add(vectors).add(eigenvalues.data(), eigenvalues.size()).add(orientation);
    return r.add(results.data(), results.size());
  }
  bool sound() const {
    return is_sound(X) && is_sound(vectors) && is_sound(symmetric) && is_sound(jet) &&
           has_zero_tail(eigenvalues) && results.fit();
  }
  void restore() {
    const SolverWorld first;
    X = first.X;
    vectors = first.vectors;
    eigenvalues = first.eigenvalues;
    orientation = first.orientation;
    results.clear();
  }
};

}  // namespace trial
