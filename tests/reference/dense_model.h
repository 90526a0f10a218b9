// SPDX-License-Identifier: MIT

#pragma once

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <utility>
#include <vector>

// A dense matrix said as plainly as possible: a list of rows, and edits that are obviously right.  The
// judge of the library's matrices.
namespace reference {

// The room that an array has for n elements, if it had room for `room` before.
inline std::size_t room_for(std::size_t n, std::size_t room = 0) {
  if (n <= room) return room;
  if (n < 64000) {
    if (room == 0) room = 1;
    while (room < n) room *= 2;
  } else {
    do room += 4096;
    while (room < n);
  }
  return room;
}

// The same from nothing, worked out by hand.
struct Room {
  std::size_t size;
  std::size_t capacity;
};
inline constexpr Room kFreshRooms[] = {{0, 0},         {1, 1},         {2, 2},         {3, 4},
                                       {4, 4},         {5, 8},         {9, 16},        {63999, 65536},
                                       {64000, 65536}, {65536, 65536}, {65537, 69632}, {70000, 73728}};

// Whether every slot of an array behind its elements holds zero bits.
template <class Array>
bool rest_is_zero(const Array& a) {
  const double zero = 0.0;
  for (std::size_t i = a.size(); i < a.capacity(); ++i) {
    if (std::memcmp(a.data() + i, &zero, sizeof zero) != 0) return false;
  }
  return true;
}

// 1, 2, 3, ... n
inline std::vector<double> counting(std::size_t n) {
  std::vector<double> v;
  for (std::size_t i = 1; i <= n; ++i) v.push_back(static_cast<double>(i));
  return v;
}

using Row = std::vector<double>;
using Rows = std::vector<Row>;

// Every edit says whether its precondition held; if not, it changed nothing.
class Dense {
 public:
  Dense() = default;
  Dense(std::size_t m, std::size_t n) : rows_(m, Row(n, 0.0)), n_cols_(n) { settle(); }
  explicit Dense(const Rows& rows) : rows_(rows), n_cols_(rows[0].size()) { settle(); }

  std::size_t n_rows() const { return rows_.size(); }
  std::size_t n_cols() const { return n_cols_; }
  std::size_t size() const { return n_rows() * n_cols_; }
  std::size_t room() const { return room_; }
  void make_room(std::size_t room) { room_ = room; }

  double& at(std::size_t i, std::size_t j) { return rows_[i][j]; }
  double at(std::size_t i, std::size_t j) const { return rows_[i][j]; }
  const Row& row(std::size_t i) const { return rows_[i]; }
  std::vector<double> col(std::size_t j) const {
    std::vector<double> elements;
    for (const Row& row : rows_) elements.push_back(row[j]);
    return elements;
  }
  std::vector<double> by_columns() const {
    std::vector<double> elements;
    for (std::size_t j = 0; j < n_cols_; ++j) {
      for (const Row& row : rows_) elements.push_back(row[j]);
    }
    return elements;
  }

  bool resize(std::size_t m, std::size_t n, bool keep) {
    const Rows old = rows_;
    rows_.assign(m, Row(n, 0.0));
    for (std::size_t i = 0; keep && i < m && i < old.size(); ++i) {
      for (std::size_t j = 0; j < n && j < n_cols_; ++j) rows_[i][j] = old[i][j];
    }
    n_cols_ = n;
    return settle();
  }

  bool insert_rows(std::size_t pos, int count) {
    if (count < 1) return true;
    if (pos > n_rows()) return false;
    rows_.insert(rows_.begin() + place(pos), static_cast<std::size_t>(count), Row(n_cols_, 0.0));
    return settle();
  }
  bool insert_cols(std::size_t pos, int count) {
    if (count < 1) return true;
    if (pos > n_cols_) return false;
    for (Row& row : rows_) row.insert(row.begin() + place(pos), static_cast<std::size_t>(count), 0.0);
    n_cols_ += static_cast<std::size_t>(count);
    return settle();
  }
  bool insert(std::size_t pos, int count, bool rows) {
    return rows ? insert_rows(pos, count) : insert_cols(pos, count);
  }

  bool remove_rows(std::size_t pos, int count) {
    if (count < 1) return true;
    if (pos >= n_rows()) return false;
    const std::size_t removed = std::min(n_rows() - pos, static_cast<std::size_t>(count));
    rows_.erase(rows_.begin() + place(pos), rows_.begin() + place(pos + removed));
    return true;
  }
  bool remove_cols(std::size_t pos, int count) {
    if (count < 1) return true;
    if (pos >= n_cols_) return false;
    const std::size_t removed = std::min(n_cols_ - pos, static_cast<std::size_t>(count));
    for (Row& row : rows_) row.erase(row.begin() + place(pos), row.begin() + place(pos + removed));
    n_cols_ -= removed;
    return true;
  }
  bool remove(std::size_t pos, int count, bool rows) {
    return rows ? remove_rows(pos, count) : remove_cols(pos, count);
  }

  bool coilup_rows(std::size_t n) {
    if (n >= n_rows()) return true;
    if (n == 0 && n_cols_ > 0) return false;
    for (std::size_t r = n; r < n_rows(); ++r) {
      for (std::size_t c = 0; c < n_cols_; ++c) rows_[r % n][c] += rows_[r][c];
    }
    rows_.resize(n);
    return true;
  }
  bool coilup_cols(std::size_t n) {
    if (n >= n_cols_) return true;
    if (n == 0 && n_rows() > 0) return false;
    for (Row& row : rows_) {
      for (std::size_t c = n; c < n_cols_; ++c) row[c % n] += row[c];
      row.resize(n);
    }
    n_cols_ = n;
    return true;
  }
  bool coilup(std::size_t n, bool rows) { return rows ? coilup_rows(n) : coilup_cols(n); }

  bool swap_rows(std::size_t i, std::size_t j) {
    if (i < n_rows() && j < n_rows()) std::swap(rows_[i], rows_[j]);
    return true;
  }
  bool swap_cols(std::size_t i, std::size_t j) {
    if (i >= n_cols_ || j >= n_cols_) return true;
    for (Row& row : rows_) std::swap(row[i], row[j]);
    return true;
  }
  bool swap(std::size_t i, std::size_t j, bool rows) { return rows ? swap_rows(i, j) : swap_cols(i, j); }

  bool transpose() {
    Rows flipped;
    for (std::size_t j = 0; j < n_cols_; ++j) flipped.push_back(col(j));
    n_cols_ = n_rows();
    rows_ = flipped;
    return true;
  }

  bool set_diagonal(double value, int offset) {
    for (std::size_t i = 0; i < n_rows(); ++i) {
      for (std::size_t j = 0; j < n_cols_; ++j) {
        if (static_cast<long long>(j) == static_cast<long long>(i) + offset) rows_[i][j] = value;
      }
    }
    return true;
  }

 private:
  static std::ptrdiff_t place(std::size_t pos) { return static_cast<std::ptrdiff_t>(pos); }
  bool settle() {
    room_ = room_for(size(), room_);
    return true;
  }

  Rows rows_;
  std::size_t n_cols_ = 0;
  std::size_t room_ = 0;
};

// An edit that can be done to a matrix and to its model.
struct Edit {
  static constexpr std::size_t kKinds = 11;

  std::size_t kind, i, j;
  int count;
  bool keep;

  template <class M>
  auto apply(M& A) const {
    if (kind == 0) return A.resize(i, j, keep);
    if (kind == 1) return A.insert_rows(i, count);
    if (kind == 2) return A.insert_cols(j, count);
    if (kind == 3) return A.remove_rows(i, count);
    if (kind == 4) return A.remove_cols(j, count);
    if (kind == 5) return A.coilup_rows(i);
    if (kind == 6) return A.coilup_cols(j);
    if (kind == 7) return A.swap_rows(i, j);
    if (kind == 8) return A.swap_cols(i, j);
    if (kind == 9) return A.set_diagonal(0.25, count);
    return A.transpose();
  }
};

}  // namespace reference
