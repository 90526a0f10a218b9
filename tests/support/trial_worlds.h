// SPDX-License-Identifier: MIT

#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <ostream>
#include <sstream>
#include <streambuf>
#include <string>

#include "support/trial.h"
#include "support/values.h"
#include "tarntnla.h"

// The objects on which trials run.
namespace trial {

inline TnLaDblMat random_matrix(std::size_t rows, std::size_t cols, std::uint64_t seed) {
  return TnLaDblMat(Random(seed).vector(rows * cols).data(), rows, cols);
}

inline TnLaDblVec random_vector(int n, std::uint64_t seed) {
  return TnLaDblVec(Random(seed).vector(static_cast<std::size_t>(n)).data(), n);
}

// Rank 1, in all its digits.
inline TnLaDblMat rank_one(std::size_t rows, std::size_t cols) {
  TnLaDblMat m(rows, cols, 0.0);
  m.initialize(0.5);
  return m;
}

template <class T>
TnArray<T> filled_array(std::size_t n, T value) {
  TnArray<T> a;
  a.set_size(n, false);
  for (std::size_t i = 0; i < n; ++i) a[i] = value;
  return a;
}

// A reflection of vectors of n elements.
inline TnLaHouseholder reflection(int j_pivot, int n, std::uint64_t seed) {
  std::vector<double> v = Random(seed).vector(static_cast<std::size_t>(n));
  return TnLaHouseholder(j_pivot, j_pivot + 1, n, v.data(), 1);
}

// A journal that keeps its text without an allocation, so that every one seen is the library's.
class QuietJournal : private std::streambuf {
 public:
  QuietJournal() : stream_(this), journal_(stream_) { clear(); }

  operator TnJournal&() { return journal_; }
  void clear() {
    setp(text_, text_ + sizeof text_);
    stream_.clear();
  }
  std::string text() const { return std::string(pbase(), pptr()); }
  bool fits() const { return pptr() < epptr(); }

 private:
  char text_[1 << 14];
  std::ostream stream_;
  TnJournal journal_;
};

// Slots beyond the size hold zero bits.
inline bool has_zero_tail(const TnArray<double>& a) {
  for (std::size_t i = a.size(); i < a.capacity(); ++i) {
    if (std::bit_cast<std::uint64_t>(a.data()[i]) != 0) return false;  // not -0.0
  }
  return a.size() <= a.capacity();
}

inline bool is_sound(const TnLaDblMat& m) {
  return m.array().size() == m.n_rows() * m.n_cols() && has_zero_tail(m.array());
}

// --- Dense matrices and vectors, arrays, strings, reflections ----------------------------------------

struct DenseWorld {
  const TnLaDblMat A = random_matrix(3, 3, 1), B = random_matrix(3, 3, 2), big = random_matrix(7, 7, 3),
                   tall = random_matrix(7, 3, 4), wide = random_matrix(3, 7, 5), flat = rank_one(4, 4),
                   flat_wide = rank_one(3, 7), single = random_matrix(1, 1, 6), none,
                   pair = random_matrix(3, 2, 14), large = random_matrix(13, 13, 15);
  const TnLaDblVec x = random_vector(3, 7), y = random_vector(3, 8), lengthy = random_vector(40, 9), nil;
  const TnArray<double> numbers = filled_array(20, 0.25), few = filled_array(2, 0.75);
  const TnArray<int> indices = filled_array(20, 7);
  const TnArray<TnLaHouseholder*> pointers = filled_array(20, reinterpret_cast<TnLaHouseholder*>(64));
  const TnString text{"a text that is too long for any small-string trick"};
  const TnLaHouseholder h = reflection(1, 4, 10), lengthy_h = reflection(20, 30, 11);
  const std::vector<double> u = Random(12).vector(8), w = Random(13).vector(8);

  // Targets.  M and v have little room, so that most operations must allocate.
  TnLaDblMat M = random_matrix(3, 3, 20), Z;
  TnLaDblVec v = random_vector(3, 21);
  TnArray<double> d = filled_array(3, 1.5);
  TnArray<int> i = filled_array(3, 4);
  TnArray<TnLaHouseholder*> p = filled_array(3, reinterpret_cast<TnLaHouseholder*>(8));
  TnString s{"old"};
  TnLaHouseholder t = reflection(0, 4, 22);
  std::vector<double> column = Random(23).vector(8);  // only ever reduced by a reflection
  std::vector<double> work = Random(24).vector(8);
  int rank = -7;
  Results results;
  QuietJournal journal;

  template <class T>
  void keep(const T& result) {
    results.keep(result);
  }

  static std::string printed(const TnLaHouseholder& reflection) {
    std::ostringstream out;
    TnJournal journal_of_it(out);
    reflection.debug(journal_of_it, 0);
    return out.str();
  }

  Record inputs() const {
    Record r;
    for (const TnLaDblMat* m :
         {&A, &B, &big, &tall, &wide, &flat, &flat_wide, &single, &none, &pair, &large}) {
      r.add(*m);
    }
    for (const TnLaDblVec* e : {&x, &y, &lengthy, &nil}) r.add(*e);
    r.add_whole(numbers).add_whole(few).add_whole(indices).add_whole(pointers).add(text.c_str());
    r.add(printed(h).c_str()).add(printed(lengthy_h).c_str());
    return r.add(u.data(), u.size()).add(w.data(), w.size());
  }
  Record steady() const {
    Record r;
    r.add_whole(d).add_whole(i).add_whole(p).add(s.c_str()).add(printed(t).c_str());
    return r.add(column.data(), column.size());
  }
  Record all() const {
    Record r;
    r.add(M).add(Z).add(v).add(d.data(), d.size()).add(s.c_str()).add(printed(t).c_str()).add(rank);
    for (std::size_t k = 0; k < i.size(); ++k) r.add(i.data()[k]);
    for (std::size_t k = 0; k < p.size(); ++k) r.add(as_number(p.data()[k]));
    r.add(column.data(), column.size()).add(work.data(), work.size()).add(results.data(), results.size());
    return r.add(journal.text().c_str());
  }
  bool sound() const {
    return is_sound(M) && is_sound(Z) && has_zero_tail(v.array()) && has_zero_tail(d) && results.fit() &&
           journal.fits();
  }
  void restore() {
    const DenseWorld fresh;
    M = fresh.M;
    Z = fresh.Z;
    v = fresh.v;
    d = fresh.d;
    i = fresh.i;
    p = fresh.p;
    s = fresh.s;
    t = fresh.t;
    column = fresh.column;
    work = fresh.work;
    rank = fresh.rank;
    results.clear();
    journal.clear();
  }
};

// --- Small matrices and vectors ----------------------------------------------------------------------

template <int N>
struct SmallWorld {
  static constexpr std::size_t kSize = std::size_t{N} * N;
  using M = TnLaTSmallMat<std::size_t{N}, std::size_t{N}, double>;
  using V = TnLaTSmallVec<N, double>;

  static M random_small(std::uint64_t seed) {
    M m;
    const std::vector<double> x = Random(seed).vector(kSize);
    for (std::size_t k = 0; k < kSize; ++k) m(k % N, k / N) = x[k];
    return m;
  }

  static M of(double value) {
    M m;
    for (std::size_t k = 0; k < kSize; ++k) m(k % N, k / N) = value;
    return m;
  }

  const M A = random_small(1), B = random_small(2), flat = of(0.5), zero;
  const V x{Random(3).vector(N).data(), N}, y{Random(4).vector(N).data(), N};
  const TnArray<double> numbers = filled_array(N, 0.25), many = filled_array(20, 0.5);

  M C = random_small(5), X = random_small(6), Z;
  V v{Random(7).vector(N).data(), N};
  int rank = -7;
  Results results;
  QuietJournal journal;

  template <class T>
  void keep(const T& result) {
    results.keep(result);
  }

  Record inputs() const {
    Results r;
    for (const M* m : {&A, &B, &flat, &zero}) r.keep(*m);
    for (const V* e : {&x, &y}) r.keep(*e);
    return Record().add(r.data(), r.size()).add_whole(numbers).add_whole(many);
  }
  Record steady() const { return {}; }
  Record all() const {
    Results r;
    for (const M* m : {&C, &X, &Z}) r.keep(*m);
    r.keep(v);
    Record out;
    out.add(r.data(), r.size()).add(rank).add(results.data(), results.size());
    return out.add(journal.text().c_str());
  }
  bool sound() const { return results.fit() && journal.fits(); }
  void restore() {
    const SmallWorld fresh;
    C = fresh.C;
    X = fresh.X;
    Z = fresh.Z;
    v = fresh.v;
    rank = fresh.rank;
    results.clear();
    journal.clear();
  }
};

}  // namespace trial
