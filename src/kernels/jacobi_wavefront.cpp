// SPDX-License-Identifier: MIT

#include "jacobi_wavefront.h"

#include <cmath>

// The pair (p, q) depends on the earlier pairs with p or q in it, and they all have a smaller sum.  So step
// t takes all pairs with p + q = t, which share no row.  But an element must get its rotations in the order
// of the pairs, and some come too early.  Stage p is the pairs (p, p+1) ... (p, n-1).  In step t its column
// is j = t - p, and the elements (q, j) between p and j are due for
//
//     the rotation (p-1, j) of the stage before, with the elements (p-1, q), which it has left behind;
//     the rotations (p, q) that are older than this step, with the element (p, j);
//
// after which (p, j) is final, and its angle is chosen.
//
//              p-1    p    q    j
//      p-1   [  d     .    r    0 ]      r: left behind by stage p-1, and turned with m
//        p   [        d    0    x ]      x: turned with each m, then gives the angle (p, j)
//        q   [             d    m ]
//        j   [                  d ]
//
// One p a lane: q and j then differ from lane to lane, q upwards and j downwards, so that the elements of
// one sum lie side by side.  The rows left behind, and the rotations, are side by side by difference.
//
// Where a stage has fewer elements than the first one of its vector, the lane goes on beyond them: its
// element (p, j) takes rotations that are not chosen yet, which are zero, and what it writes is not read
// before it is written again.
namespace tnla_kernels::TNLA_SET {

namespace {

// Vectors of stages side by side, since each is one chain of operations.  bench/eigenvectors, AVX2: 1 takes
// 18% longer at n = 100, 3 and 4 up to 3%.
constexpr Index kGroup = 2;

constexpr Index kRoom = 8;  // at the ends of arrays, for the lanes that have nothing to do

Index padded(Index n) { return n + kRoom; }

template <class Vector>
inline Vector reversed(const Vector& v, const double (*)[2]) {
  return __builtin_shufflevector(v, v, 1, 0);
}
template <class Vector>
inline Vector reversed(const Vector& v, const double (*)[4]) {
  return __builtin_shufflevector(v, v, 3, 2, 1, 0);
}
inline Lanes reversed(const Lanes& v) { return reversed(v, static_cast<const double(*)[kLanes]>(nullptr)); }

inline Lanes magnitude(const Lanes& v) {
  constexpr std::int64_t kAllButSign = 0x7fffffffffffffff;
  return reinterpret_cast<Lanes>(reinterpret_cast<Mask>(v) & (Mask{} + kAllButSign));
}

inline Lanes square_root(Lanes v) {
  for (Index l = 0; l < kLanes; ++l) v[l] = std::sqrt(v[l]);
  return v;
}

inline Lanes tangents(const Lanes& element, const Lanes& h) {
  const Lanes theta = 0.5 * h / element;
  const Lanes t = 1.0 / (magnitude(theta) + square_root(theta * theta + 1.0));
  return select(theta < 0.0, -t, t);
}

}  // namespace

// The pairs (p, sum - p) of a step: p = begin ... end-1.
struct Wavefront::Step {
  Step(Index t, Index n) : sum(t), begin(larger(0, t - n + 1)), end((t + 1) / 2) {}
  Index sum;
  Index begin;
  Index end;
};

Index Wavefront::scratch_size(Index n) {
  const Index ld = padded(n);
  return 2 * n * (n / 2 + kRoom) + ld + 3 * (n + 1) * ld + 7 * (ld + kRoom) + n * kBlockRows;
}

Wavefront::Wavefront(Index n, double* scratch) : n_(n), ld_(padded(n)), ld_skewed_(n / 2 + kRoom) {
  double* free = scratch;
  const auto take = [&free](Index size) {
    double* const taken = free;
    for (Index i = 0; i < size; ++i) taken[i] = 0.0;
    free += size;
    return taken;
  };
  row_ = take((n + 1) * ld_);
  s_ = take((n + 1) * ld_);
  tau_ = take((n + 1) * ld_);
  d_ = take(ld_ + kRoom) + kRoom;
  pivot_ = take(ld_);
  last_pivot_ = take(ld_);
  step_s_ = take(ld_);
  step_tau_ = take(ld_);
  taken_ = take(ld_);
  block_ = take(n * kBlockRows);
  skewed_ = take(2 * n * ld_skewed_ + ld_);
}

void Wavefront::load_triangle(const double* a, Index lda) {
  for (Index q = 1; q < n_; ++q) {
    for (Index p = 0; p < q; ++p) skewed_[(p + q) * ld_skewed_ + p] = a[q * lda + p];
  }
}

// The elements of kRunning vectors of stages; the first one has `length` of them, and each vector has
// 2 * kLanes fewer than the one before it.
//
// s, tau: the rotations (p-1, j).  x: the elements (p, j).
template <Index kRunning>
[[gnu::always_inline]] inline void Wavefront::advance_elements(const Places& at, Index i, Index length,
                                                               const Lanes* s, const Lanes* tau, Lanes* x) {
  const Index end = length - 2 * kLanes * (kRunning - 1);
  for (; i < end; ++i) {
    for (Index v = 0; v < kRunning; ++v) {
      double* const element = at.element + i * (ld_skewed_ + 1) + v * kLanes;
      double* const behind = at.behind + i * ld_ + v * kLanes;
      Lanes m = load(element);
      Lanes r = load(behind);
      turn(s[v], tau[v], r, m);
      store(behind, r);
      turn(load(at.s + i * ld_ + v * kLanes), load(at.tau + i * ld_ + v * kLanes), x[v], m);
      store(element, m);
    }
  }
  if constexpr (kRunning > 1) advance_elements<kRunning - 1>(at, larger(i, 0), length, s, tau, x);
}

template <Index kVectors>
void Wavefront::advance_columns(const Step& step, Index p) {
  Lanes s[kVectors];
  Lanes tau[kVectors];
  Lanes x[kVectors];
  for (Index v = 0; v < kVectors; ++v) {
    const Index first = p + v * kLanes;
    s[v] = load(step_s_ + first);
    tau[v] = load(step_tau_ + first);
    x[v] = load(skewed_ + step.sum * ld_skewed_ + first);
    Lanes r = load(row_ + ld_ + first);
    turn(s[v], tau[v], r, x[v]);
    store(row_ + ld_ + first, r);
  }
  const Places at = {skewed_ + (step.sum + 1) * ld_skewed_ + p + 1, row_ + 2 * ld_ + p, s_ + ld_ + p,
                     tau_ + ld_ + p};
  advance_elements<kVectors>(at, 0, step.sum - 2 * p - 1, s, tau, x);
  for (Index v = 0; v < kVectors; ++v) store(pivot_ + p + v * kLanes, x[v]);
}

void Wavefront::advance(const Step& step) {
  Index p = step.begin;
  for (; p + (kGroup - 1) * kLanes < step.end; p += kGroup * kLanes) advance_columns<kGroup>(step, p);
  for (; p < step.end; p += kLanes) advance_columns<1>(step, p);
}

void Wavefront::choose_angles(const Step& step, const SweepRule& rule) {
  Lanes lane;
  for (Index l = 0; l < kLanes; ++l) lane[l] = static_cast<double>(l);
  for (Index p = step.begin; p < step.end; p += kLanes) {
    const Lanes element = load(pivot_ + p);
    const Lanes d_p = load(d_ + p);
    const Lanes d_q = reversed(load(d_ + step.sum - p - (kLanes - 1)));
    const Lanes g = kNegligible * magnitude(element);
    Mask zeroed = {};
    if (rule.zeroes_negligible) zeroed = is_lost(g, magnitude(d_p)) & is_lost(g, magnitude(d_q));
    const Mask is_pair = lane < static_cast<double>(step.end - p);
    const Mask rotates = is_pair & ~zeroed & (magnitude(element) > rule.threshold);
    Lanes t = {};
    if (any(rotates)) {
      const Lanes h = d_q - d_p;
      const Mask small = is_lost(g, magnitude(h));
      if (any(rotates & ~small)) t = tangents(element, h);
      if (any(rotates & small)) t = select(small, element / h, t);
      t = select(rotates, t, Lanes{});
    }
    const Lanes c = 1.0 / square_root(t * t + 1.0);
    const Lanes s = t * c;
    const Lanes h = t * element;
    store(step_s_ + p + 1, s);
    store(step_tau_ + p + 1, s / (1.0 + c));
    store(taken_ + p, select(rotates, h, Lanes{}));
    store(pivot_ + p, select(rotates | zeroed, Lanes{}, element));
  }
}

// A pair that is not turned takes 0: that may lose the sign of a diagonal element -0.0, which nobody looks
// at, and which the end of the sweep loses anyway.
void Wavefront::record(const Step& step, double* z) {
  for (Index p = step.begin; p < step.end; ++p) {
    const Index q = step.sum - p;
    z[p] -= taken_[p];
    z[q] += taken_[p];
    d_[p] -= taken_[p];
    d_[q] += taken_[p];
    s_[(q - p) * ld_ + p] = step_s_[p + 1];
    tau_[(q - p) * ld_ + p] = step_tau_[p + 1];
  }
}

// The pairs of a step leave their elements behind one step later: until then idle lanes write there.
void Wavefront::deposit(const Step& step) {
  for (Index p = step.begin; p < step.end; ++p) {
    row_[(step.sum - 2 * p) * ld_ + p + 1] = last_pivot_[p];
  }
}

// And forgets them: a rotation that is not chosen yet is none.
void Wavefront::list(const Turns& turns) {
  Index n_turns = 0;
  for (Index p = 0; p < n_ - 1; ++p) {
    turns.first[p] = n_turns;
    for (Index q = p + 1; q < n_; ++q) {
      double& s = s_[(q - p) * ld_ + p];
      if (s != 0.0) turns.list[n_turns++] = {s, tau_[(q - p) * ld_ + p], q};
      s = 0.0;
    }
  }
  turns.first[n_ - 1] = n_turns;
}

void Wavefront::store_triangle(const Turns& turns, double* a, Index lda) {
  for (Index first = 0; first < n_ - 1; first += kBlockRows) {
    const Index n_rows = smaller(kBlockRows, n_ - 1 - first);
    for (Index q = first + 1; q < n_; ++q) {
      for (Index r = 0; r < smaller(n_rows, q - first); ++r) {
        block_[q * kBlockRows + r] = row_[(q - first - r) * ld_ + first + r + 1];
      }
    }
    turn_triangle_block(n_, first, turns, block_);
    for (Index q = first + 1; q < n_; ++q) {
      for (Index r = 0; r < smaller(n_rows, q - first); ++r) {
        a[q * lda + first + r] = block_[q * kBlockRows + r];
      }
    }
  }
}

void Wavefront::sweep(const SweepRule& rule, double* a, Index lda, double* d, double* z,
                      const Turns& turns) {
  load_triangle(a, lda);
  for (Index i = 0; i < n_; ++i) d_[i] = d[i];
  for (Index t = 1; t <= 2 * n_ - 3; ++t) {
    const Step step(t, n_);
    advance(step);
    choose_angles(step, rule);
    record(step, z);
    deposit(Step(t - 1, n_));
    double* const chosen = pivot_;
    pivot_ = last_pivot_;
    last_pivot_ = chosen;
  }
  deposit(Step(2 * n_ - 3, n_));
  list(turns);
  store_triangle(turns, a, lda);
}

}  // namespace tnla_kernels::TNLA_SET
