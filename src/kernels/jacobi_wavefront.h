// SPDX-License-Identifier: MIT

#pragma once

#include "jacobi_turns.h"

// A sweep over all pairs (p, q) of rows, with the pairs of equal p + q side by side.
namespace tnla_kernels::TNLA_SET {

class Wavefront {
 public:
  static Index scratch_size(Index n);  // doubles
  Wavefront(Index n, double* scratch);

  // One sweep over the strictly upper triangle of a; d and z as in a sweep pair by pair.  Lists its
  // rotations.
  //
  // All elements are finite, their squares do not overflow, and none is -0.0.
  void sweep(const SweepRule& rule, double* a, Index lda, double* d, double* z, const Turns& turns);

 private:
  struct Step;
  struct Places {
    double* element;
    double* behind;
    const double* s;
    const double* tau;
  };

  void load_triangle(const double* a, Index lda);
  void advance(const Step& step);
  template <Index kRunning>
  void advance_elements(const Places& at, Index i, Index length, const Lanes* s, const Lanes* tau,
                        Lanes* x);
  template <Index kVectors>
  void advance_columns(const Step& step, Index p);
  void choose_angles(const Step& step, const SweepRule& rule);
  void record(const Step& step, double* z);
  void deposit(const Step& step);
  void list(const Turns& turns);
  void store_triangle(const Turns& turns, double* a, Index lda);

  Index n_;
  Index ld_;         // of the arrays by difference
  Index ld_skewed_;  // of the array by sum
  double* skewed_;   // a(q, j) at (q + j) * ld_skewed_ + q
  double* row_;      // a(p, q), once its angle is chosen, at (q - p) * ld_ + p + 1
  double* s_;        // the rotation of (p, q) at (q - p) * ld_ + p
  double* tau_;
  double* d_;      // a copy, with room on both sides
  double* pivot_;  // a(p, t - p) at p, in step t
  double* last_pivot_;
  double* step_s_;  // of the last step, at p + 1
  double* step_tau_;
  double* taken_;  // what d(p) loses and d(q) gains
  double* block_;
};

}  // namespace tnla_kernels::TNLA_SET
