// SPDX-License-Identifier: MIT

#include "rank_revealing.h"

#include "reflection_chain.h"
#include "simd.h"

namespace tnla_kernels::TNLA_SET {

// The solve's part, in rank_revealing_solve.cpp.
void compress(Index k, Index m, Index n, double* r, const Reflections& right, double* scratch);
void apply_left(Index k, Index m, Index p, const Reflections& left, const double* b, double* x, Index ldx,
                double* scratch);
void turn(Index k, Index n, Index p, const Reflections& right, double* x, double* scratch);

namespace {

// So few columns are searched one by one: their branches are predicted where vectors wait for each other
// (rank_revealing, n = 8: 703 to 676 ns).
constexpr Index kFew = 16;

// The matrix on its way from A to [R S].
class Triangularization {
 public:
  Triangularization(Index m, Index n, const double* a, double* r, const Reflections& left, int* perm,
                    double* scratch)
      : m_(m),
        n_(n),
        n_slabs_(slabs_for(n)),
        w_(slabs_in(scratch, m)),
        lengths_(w_.data + n_slabs_ * w_.ld),
        sums_(lengths_ + n_slabs_ * kLanes),
        r_(r),
        left_(left),
        perm_(perm),
        nothing_(nothing_pending(m, sums_ + n_slabs_ * kLanes, n_slabs_, sums_)),
        pending_(nothing_) {
    fill_slabs(m, n, a, m, w_);
  }

  void run() {
    const Index d = smaller(m_, n_);
    for (Index j = 0; j < d; ++j) {
      const Index pivot = choose_pivot(j);
      perm_[j] = static_cast<int>(pivot);
      reference_ = lengths_[j];
      take_column(j, pivot);
      build(j);
      if (j + 1 < n_) apply(j);
    }
    write_triangle(d);
  }

 private:
  // The first of the longest columns from j on; j if its length is NaN, for nothing is greater.
  Index longest(Index j) const {
    if (n_ - j <= kFew) {
      Index best = j;
      for (Index l = j + 1; l < n_; ++l) {
        if (lengths_[l] > lengths_[best]) best = l;
      }
      return best;
    }
    Lanes most = splat(lengths_[j]);
    for (Index l = j - j % kLanes; l < n_; l += kLanes) {
      const Lanes length = load(lengths_ + l);
      most = select(length > most, length, most);
    }
    double best = most[0];
    for (Index l = 1; l < kLanes; ++l) best = most[l] > best ? most[l] : best;
    for (Index l = j; l < n_; ++l) {
      if (lengths_[l] == best) return l;
    }
    return j;
  }

  Index choose_pivot(Index j) {
    if (j > 0) {
      const Index best = longest(j);
      if ((reference_ + kLengthFraction * lengths_[best]) - reference_ > 0.0) return best;
    }
    const Index first = j / kLanes;
    settle(m_ - j, pending_, columns_from(first, j));
    pending_ = nothing_;
    for (Index l = first * kLanes; l < j; ++l) lengths_[l] = kDead;
    return longest(j);
  }

  // Brings column `pivot` up to date and to r, whose column j it is from now on, and puts column j in its
  // place.  The lane of column j dies: its length and its pivot row become NaN.
  void take_column(Index j, Index pivot) {
    double* const from = w_.column(pivot);
    double* const to = w_.column(j);
    settle_column(m_ - j, from + j * kLanes, sums_[pivot], pending_, r_ + j * m_ + j);
    if (pivot != j) {
      for (Index i = 0; i < j; ++i) {
        const double x = from[i * kLanes];
        from[i * kLanes] = to[i * kLanes];
        to[i * kLanes] = x;
      }
      for (Index i = j; i < m_; ++i) from[i * kLanes] = to[i * kLanes];
      sums_[pivot] = sums_[j];
      lengths_[pivot] = lengths_[j];
    }
    to[j * kLanes] = kDead;
  }

  // The reflection of column j of r; none for the last row, which has nothing below it.
  void build(Index j) {
    double* const pivot = r_ + j * m_ + j;
    if (j + 1 < m_) {
      build_reflection(*pivot, m_ - j - 1, pivot + 1, left_.up[j], left_.scale[j]);
    } else {
      left_.up[j] = left_.scale[j] = 0.0;
    }
  }

  void apply(Index j) {
    const Link link{r_ + j * m_ + j + 1, m_ - j - 1, left_.up[j], left_.scale[j]};
    const Pending below{pending_.u + 1, pending_.scale};
    const Index first = (j + 1) / kLanes;
    apply_link(link, below, {w_.row(first, j), w_.ld, pending_.u}, columns_from(first, j + 1));
    pending_ = {link.u, link.scale};
  }

  Columns columns_from(Index slab, Index row) const {
    return {n_slabs_ - slab, w_.row(slab, row), w_.ld, sums_ + slab * kLanes, lengths_ + slab * kLanes};
  }

  // What is above the diagonal, to r.
  void write_triangle(Index d) {
    for (Index l = 1; l < n_; ++l) {
      const double* const column = w_.column(l);
      const Index height = smaller(l, d);
      for (Index i = 0; i < height; ++i) r_[l * m_ + i] = column[i * kLanes];
    }
  }

  Index m_;
  Index n_;
  Index n_slabs_;
  Slabs w_;
  double* lengths_;  // squared, of the rows from j on
  double* sums_;
  double* r_;
  const Reflections& left_;
  int* perm_;
  Pending nothing_;
  Pending pending_;  // from row j on
  double reference_ = 0.0;
};

void triangularize(Index m, Index n, const double* a, double* r, const Reflections& left, int* perm,
                   double* scratch) {
  Triangularization(m, n, a, r, left, perm, scratch).run();
}

}  // namespace

RankRevealingKernels rank_revealing_kernels() { return {triangularize, compress, apply_left, turn}; }

}  // namespace tnla_kernels::TNLA_SET
