// SPDX-License-Identifier: MIT

#include "families.h"

// The structure of dense matrices and vectors: construction, resizing, rows and columns in and out.

namespace {

// A place among n, and now and then behind them, where an operation asserts or does nothing.
std::size_t place_in(Data& data, std::size_t n) {
  return data.one_in(12) ? n + data.below(3) : data.below(n + 1);
}

// How many, and now and then none.
int how_many(Data& data) { return static_cast<int>(data.below(9)) - 1; }

void edit(Data& data, TnLaDblMat& A) {
  const std::size_t i = place_in(data, A.n_rows());
  const std::size_t j = place_in(data, A.n_cols());
  const bool flag = data.one_in(2);
  const double number = data.number();
  const std::size_t length = data.short_size();
  switch (data.below(22)) {
    case 0:
      return A.resize(length, data.short_size(), flag);
    case 1:
      return A.insert_rows(i, how_many(data));
    case 2:
      return A.insert_cols(j, how_many(data));
    case 3:
      return A.insert(flag ? i : j, how_many(data), flag);
    case 4:
      return A.remove_rows(i, how_many(data));
    case 5:
      return A.remove_cols(j, how_many(data));
    case 6:
      return A.remove(flag ? i : j, how_many(data), flag);
    case 7:
      return A.coilup_rows(i);
    case 8:
      return A.coilup_cols(j);
    case 9:
      return A.coilup(flag ? i : j, flag);
    case 10:
      return A.swap_rows(i, place_in(data, A.n_rows()));
    case 11:
      return A.swap_cols(j, place_in(data, A.n_cols()));
    case 12:
      return A.swap(i, j, flag);
    case 13:
      return A.transpose();
    case 14:
      A = A.tr();
      return;
    case 15:
      return A.set_diagonal(number, static_cast<int>(data.below(9)) - 4);
    case 16:
      return A.initialize(number);
    case 17:
      return A.initialize(data.numbers(A.n_rows() * A.n_cols()).data());
    case 18:
      return A.initialize(data.array(data.one_in(8) ? 3 : A.n_rows() * A.n_cols()));
    case 19:
      A = data.leftover();
      return;
    case 20:
      A = TnLaDblMat(A);
      return;
    default:
      if (i < A.n_rows() && j < A.n_cols()) A(i, j) = number;
  }
}

TnLaDblMat made(Data& data) {
  const std::size_t m = data.size();
  const std::size_t n = data.short_size();
  switch (data.below(5)) {
    case 0:
      return TnLaDblMat(m, n, data.number());
    case 1:
      return TnLaDblMat(data.array(m), n);
    case 2:
      return TnLaDblMat(data.vector(m), n % 2 == 0);
    default:
      return data.matrix(m, n);
  }
}

void add_with_room(const TnLaDblMat& A, Digest& digest) {
  digest.add(A);
  digest.add(A.array().capacity());
}

void edit(Data& data, TnLaDblVec& v, TnLaDblVec& other) {
  const double number = data.number();
  const auto length = static_cast<int>(data.short_size());
  switch (data.below(8)) {
    case 0:
      return v.resize(length, data.one_in(2));
    case 1:
      return v.initialize(number);
    case 2:
      return v.initialize(data.numbers(v.array().size()).data());
    case 3:
      return v.initialize(data.array(data.one_in(8) ? 2 : v.array().size()));
    case 4:
      return v.swap(other);
    case 5:
      v = TnLaDblVec(length - 1, static_cast<int>(data.below(22)) - 2, number);
      return;
    case 6:
      v = other;
      return;
    default:
      if (!v.empty()) v(static_cast<int>(data.below(v.array().size()))) = number;
  }
}

}  // namespace

void editing_round(Data& data, Digest& digest) {
  TnLaDblMat A = made(data);
  add_with_room(A, digest);
  for (int k = 0; k < 8; ++k) {
    edit(data, A);
    add_with_room(A, digest);
    if (A.n_rows() * A.n_cols() > 40000) A.resize(64, 64, true);
  }
  digest.add(A.row_vec(place_in(data, A.n_rows())));
  digest.add(A.col_vec(place_in(data, A.n_cols())));

  TnLaDblVec v = data.vector(data.size(1000));
  TnLaDblVec other = data.one_in(2) ? data.vector(v.array().size()) : data.vector(data.short_size());
  for (int k = 0; k < 4; ++k) {
    edit(data, v, other);
    digest.add(v);
    digest.add(other);
  }
}
