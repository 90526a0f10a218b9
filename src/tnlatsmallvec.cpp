// SPDX-License-Identifier: MIT

#include <cmath>

#include "kernels/reductions.h"
#include "tnla_debug.h"
#include "tnla_small_loops.h"
#include "tnla_util_i.h"
#include "tnlatsmallvec_i.h"

namespace {
constexpr char kFile[] = "src/tnlatsmallvec.cpp";
}

template <int N, class T>
TnLaTSmallVec<N, T>::TnLaTSmallVec(const double* values, int n) {
  TN_ASSERT(kFile, n == N);
  for (int i = 0; i < std::min(n, N); ++i) elements_[i] = values[i];
}

template <int N, class T>
TnLaTSmallVec<N, T>::TnLaTSmallVec(const TnArray<double>& a) {
  TN_ASSERT(kFile, a.size() == N);
  const std::size_t held = std::min<std::size_t>(a.size(), N);
  for (std::size_t i = 0; i < held; ++i) elements_[i] = a[i];
}

template <int N, class T>
TnLaTSmallVec<N, T> TnLaTSmallVec<N, T>::operator*(const double& s) const {
  TnLaTSmallVec result(Unwritten::elements);
  tnla_small::scale<N>(elements_, s, result.elements_);
  return result;
}

template <int N, class T>
TnLaTSmallVec<N, T> TnLaTSmallVec<N, T>::operator+(const TnLaTSmallVec& other) const {
  TnLaTSmallVec result(Unwritten::elements);
  tnla_small::add<N>(elements_, other.elements_, result.elements_);
  return result;
}

template <int N, class T>
TnLaTSmallVec<N, T> TnLaTSmallVec<N, T>::operator-(const TnLaTSmallVec& other) const {
  TnLaTSmallVec result(Unwritten::elements);
  tnla_small::subtract<N>(elements_, other.elements_, result.elements_);
  return result;
}

template <int N, class T>
TnLaTSmallVec<N, T> TnLaTSmallVec<N, T>::operator-() const {
  return *this * -1.0;
}

template <int N, class T>
void TnLaTSmallVec<N, T>::operator*=(double s) {
  tnla_small::scale<N>(elements_, s, elements_);
}

template <int N, class T>
void TnLaTSmallVec<N, T>::operator+=(const TnLaTSmallVec& other) {
  tnla_small::add<N>(elements_, other.elements_, elements_);
}

template <int N, class T>
void TnLaTSmallVec<N, T>::operator-=(const TnLaTSmallVec& other) {
  tnla_small::subtract<N>(elements_, other.elements_, elements_);
}

template <int N, class T>
double TnLaTSmallVec<N, T>::operator%(const TnLaTSmallVec& other) const {
  return tnla_kernels::dot(N, elements_, other.elements_);
}

template <int N, class T>
double TnLaTSmallVec<N, T>::sq_norm() const {
  return tnla_sq_norm(N, elements_, nullptr);
}

template <int N, class T>
double TnLaTSmallVec<N, T>::mx_norm() const {
  return tnla_kernels::largest_magnitude(N, elements_);
}

template <int N, class T>
void TnLaTSmallVec<N, T>::normalize() {
  const double q = sq_norm();
  if (q == 0.0) {
    initialize(0.0);
  } else {
    *this *= 1.0 / std::sqrt(q);
  }
}

template <int N, class T>
TnLaTSmallVec<N, T> TnLaTSmallVec<N, T>::dir() const {
  TnLaTSmallVec result(*this);
  result.normalize();
  return result;
}

template <int N, class T>
TnLaTSmallVec<N, T> TnLaTSmallVec<N, T>::ort() const {
  TnLaTSmallVec result;
  tnla_ortho_vec(N, elements_, result.elements_);
  return result;
}

template <int N, class T>
void TnLaTSmallVec<N, T>::resize(int n, bool /*keep*/) {
  TN_ASSERT(kFile, n == N);
}

template <int N, class T>
void TnLaTSmallVec<N, T>::debug(TnJournal& journal, int digits, int indent) const {
  tnla_debug_small_vector(journal, kFile, elements_, N, digits, indent);
}

template class TnLaTSmallVec<1, double>;
template class TnLaTSmallVec<2, double>;
template class TnLaTSmallVec<3, double>;
template class TnLaTSmallVec<4, double>;
template class TnLaTSmallVec<5, double>;
template class TnLaTSmallVec<6, double>;
template class TnLaTSmallVec<7, double>;
template class TnLaTSmallVec<8, double>;
template class TnLaTSmallVec<9, double>;
template class TnLaTSmallVec<10, double>;
template class TnLaTSmallVec<11, double>;
template class TnLaTSmallVec<12, double>;
