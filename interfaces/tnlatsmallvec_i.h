// SPDX-License-Identifier: MIT

#pragma once

#include <algorithm>
#include <cstddef>
#include <utility>

#include "tnarray_i.h"
#include "tnjournal.h"
#include "tnla_export.h"

// A vector of N doubles inside the object, N = 1 to 12: the fixed-size counterpart of TnLaDblVec.
//
// Access, copies and sizes are inline; arithmetic is in the module.  Nothing allocates, except debug and
// the array it builds.  Objects are plain values.
//
//  (1) Sums start from +0.0, in ascending order, with one accumulator.
//  (2) operator% has no zero threshold: 1e-50 stays 1e-50 (the dense vector's would give 0.0).
//  (3) A failed assertion names src/tnlatsmallvec.cpp, and the operation goes on as stated.
template <int N, class T>
class TNLA_API TnLaTSmallVec {
  static_assert(N >= 1 && N <= 12, "a small vector has 1 to 12 elements: use TnLaDblVec for other sizes");
  static_assert(std::is_same_v<T, double>, "a small vector holds double: write TnLaTSmallVec<N, double>");

 public:
  // The dimension.
  static constexpr int Dim = N;

  // All elements are zero.
  TnLaTSmallVec() : elements_{} {}
  TnLaTSmallVec(const TnLaTSmallVec& other) = default;
  // The first min(n, N) values; elements beyond are not written.  Asserted: n == N.
  TnLaTSmallVec(const double* values, int n);
  template <class P, std::enable_if_t<std::is_arithmetic_v<P>, int> = 0>
  TnLaTSmallVec(P, int) = delete;  // the first argument is a pointer to double; for none write nullptr
  // The same from an array.  Asserted: a.size() == N.
  TnLaTSmallVec(const TnArray<double>& a);

  TnLaTSmallVec& operator=(const TnLaTSmallVec& other) = default;

  // The dimension, as a dense vector tells it; never empty.
  int dim() const { return N; }
  bool empty() const { return false; }
  // The N elements.
  double* data() { return elements_; }
  const double* data() const { return elements_; }

  // Element i.  Asserted: i < N (a negative index is not caught); the access takes place all the same.
  double& operator()(int i) {
    TN_ASSERT("src/tnlatsmallvec.cpp", i < N);
    return elements_[i];
  }
  const double& operator()(int i) const {
    TN_ASSERT("src/tnlatsmallvec.cpp", i < N);
    return elements_[i];
  }

  // Sets all elements: to those of another vector, to N values, or to one value.
  void initialize(const TnLaTSmallVec& other) { *this = other; }
  void initialize(const double* values) {
    for (int i = 0; i < N; ++i) elements_[i] = values[i];
  }
  void initialize(double value) { std::fill_n(elements_, N, value); }  // for a literal 0 write 0.0

  // Element by element.
  TnLaTSmallVec operator*(const double& s) const;
  TnLaTSmallVec operator+(const TnLaTSmallVec& other) const;
  TnLaTSmallVec operator-(const TnLaTSmallVec& other) const;
  TnLaTSmallVec operator-() const;  // times -1
  // The same in place.
  void operator*=(double s);
  void operator+=(const TnLaTSmallVec& other);
  void operator-=(const TnLaTSmallVec& other);

  // The scalar product, without a zero threshold (2).
  double operator%(const TnLaTSmallVec& other) const;

  // The sum of squares; 0.0 if it is below 1e-40.
  double sq_norm() const;
  // The largest magnitude, where element 0 counts with its sign: (-5, 1) gives 1, and (-5) gives -5.
  double mx_norm() const;

  // Times 1/|x| (a multiplication by the reciprocal, so that (3, 4) gives 0.6000000000000001 first); the
  // zero vector if sq_norm() is 0.0.
  void normalize();
  // A normalised copy.
  TnLaTSmallVec dir() const;
  // A unit vector orthogonal to this one, by tnla_ortho_vec; the zero vector for N = 1.
  TnLaTSmallVec ort() const;

  // Exchanges the elements.
  void swap(TnLaTSmallVec& other) {
    for (int i = 0; i < N; ++i) std::swap(elements_[i], other.elements_[i]);
  }
  // For the sake of the dense interface; changes nothing.  Asserted: n == N.
  void resize(int n, bool keep);

  // Prints the elements by tn_arraydebug in columns of digits + 10.  Asserted: digits != -10; otherwise
  // nothing is written.
  void debug(TnJournal& journal, int digits, int indent) const;

 private:
  // For a result, all of whose elements are written next.
  enum class Unwritten { elements };
  TNLA_HIDDEN explicit TnLaTSmallVec(Unwritten) {}

  double elements_[static_cast<std::size_t>(N)];

  friend struct TnLaLayout;
};

// s x, as x * s.
template <int N, class T>
TnLaTSmallVec<N, T> operator*(const double& s, const TnLaTSmallVec<N, T>& v) {
  return v * s;
}

#ifndef _WIN32  // a DLL shows no inline function of a template: there a client makes its own
extern template class TnLaTSmallVec<1, double>;
extern template class TnLaTSmallVec<2, double>;
extern template class TnLaTSmallVec<3, double>;
extern template class TnLaTSmallVec<4, double>;
extern template class TnLaTSmallVec<5, double>;
extern template class TnLaTSmallVec<6, double>;
extern template class TnLaTSmallVec<7, double>;
extern template class TnLaTSmallVec<8, double>;
extern template class TnLaTSmallVec<9, double>;
extern template class TnLaTSmallVec<10, double>;
extern template class TnLaTSmallVec<11, double>;
extern template class TnLaTSmallVec<12, double>;
#endif
