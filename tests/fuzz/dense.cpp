// SPDX-License-Identifier: MIT

// Structure, arithmetic and products of dense matrices, vectors and arrays.
//
// The input is a list of operations on a few objects, among them what violates a precondition and what has
// an object as its own operand.  After each one every object is compared with its model: shape, bits,
// capacity, zeros behind the elements; and so are the calls of the assertion hook.

#include <algorithm>
#include <climits>
#include <cstddef>
#include <limits>
#include <string>
#include <utility>
#include <vector>

#include "fuzz/raw.h"
#include "fuzz/target.h"
#include "reference/dense_model.h"
#include "reference/product_reference.h"
#include "reference/vector_reference.h"
#include "support/assertions.h"
#include "support/dense_objects.h"
#include "tnla_matrix_vector_i.h"

namespace {

using reference::Dense;
using reference::room_for;
using Values = std::vector<double>;

const std::string kFile = "src/tnla_matrix_vector.cpp";
const std::string kMatrixHeader = "interfaces/tnla_matrix_vector_i.h";
const std::string kArrayHeader = "interfaces/tnarray_i.h";
const std::string kArraySource = "interfaces/tnarray_t.h";

constexpr std::size_t kTop = std::numeric_limits<std::size_t>::max();
constexpr std::size_t kMany = 1500;  // elements: a matrix that has more does not grow

int length(const Values& v) { return static_cast<int>(v.size()); }

Dense with_elements(std::size_t m, std::size_t n, const Values& by_columns) {
  Dense result(m, n);
  for (std::size_t k = 0; k < by_columns.size(); ++k) result.at(k % m, k / m) = by_columns[k];
  return result;
}

// `value` in place of what was there: a block that suffices stays.
void assign(Dense& target, Dense value) {
  value.make_room(room_for(value.size(), target.room()));
  target = std::move(value);
}

// The elements of an array and its capacity; those of a vector too.
struct Model {
  Values values;
  std::size_t room = 0;

  explicit Model(Values v = {}) : values(std::move(v)), room(room_for(values.size())) {}

  void assign(const Values& v) {
    values = v;
    room = room_for(values.size(), room);
  }
  void set_size(std::size_t n, bool keep) {
    if (n > room && !keep) std::fill(values.begin(), values.end(), 0.0);
    values.resize(n, 0.0);
    room = room_for(n, room);
  }
};

template <class Actual, class Expected>
struct Slot {
  Actual is;
  Expected expected;
};
using MatrixSlot = Slot<TnLaDblMat, Dense>;
using VectorSlot = Slot<TnLaDblVec, Model>;
using ArraySlot = Slot<TnArray<double>, Model>;

void expect_array(const TnArray<double>& actual, const Values& expected, std::size_t room) {
  ASSERT_EQ(actual.size(), expected.size());
  EXPECT_SAME_ARRAY(expected.size(), actual.data(), expected.data());
  EXPECT_EQ(actual.capacity(), room);
  EXPECT_TRUE(reference::rest_is_zero(actual));
}
void expect_is(const TnLaDblMat& A, const Dense& expected) {
  ASSERT_EQ(A.n_rows(), expected.n_rows());
  ASSERT_EQ(A.n_cols(), expected.n_cols());
  EXPECT_EQ(A.empty(), expected.size() == 0);
  expect_array(A.array(), expected.by_columns(), expected.room());
}
void expect_is(const TnLaDblVec& v, const Model& expected) {
  EXPECT_EQ(v.dim(), length(expected.values));
  EXPECT_EQ(v.empty(), expected.values.empty());
  expect_array(v.array(), expected.values, expected.room);
}
void expect_is(const TnArray<double>& a, const Model& expected) {
  expect_array(a, expected.values, expected.room);
}

template <class F>
Values mapped(const Values& x, F f) {
  Values result;
  for (const double e : x) result.push_back(f(e));
  return result;
}
Values combined(const Values& x, const Values& y, bool adds) {
  Values result;
  for (std::size_t i = 0; i < x.size(); ++i) result.push_back(adds ? x[i] + y[i] : x[i] - y[i]);
  return result;
}
Values scaled(const Values& x, double s) {
  return mapped(x, [s](double e) { return e * s; });
}

class World {
 public:
  explicit World(Bytes& bytes) : bytes_(bytes) {}

  void run() {
    constexpr int kMostSteps = 100;
    for (int step = 0; step < kMostSteps && !bytes_.empty(); ++step) {
      expected_.clear();
      log_.clear();
      (this->*bytes_.one_of(kOperations))();
      EXPECT_EQ(log_.files(), expected_);
      for (const MatrixSlot& slot : matrices_) expect_is(slot.is, slot.expected);
      for (const VectorSlot& slot : vectors_) expect_is(slot.is, slot.expected);
      for (const ArraySlot& slot : arrays_) expect_is(slot.is, slot.expected);
      if (testing::UnitTest::GetInstance()->ad_hoc_test_result().Failed()) return;
    }
  }

 private:
  using Operation = void (World::*)();

  // --- Choices ----------------------------------------------------------------------------------------

  MatrixSlot& matrix() { return bytes_.one_of(matrices_); }
  VectorSlot& vector() { return bytes_.one_of(vectors_); }
  ArraySlot& array() { return bytes_.one_of(arrays_); }

  // Mostly a few, now and then enough for the kernels' larger tiles.
  std::size_t extent() { return bytes_.rarely(8) ? bytes_.below(40) : bytes_.below(7); }
  std::size_t place(std::size_t n) {
    return bytes_.rarely(16) ? kTop - bytes_.below(2) : bytes_.below(n + 2);
  }
  int count() {
    static constexpr int kCounts[] = {1, 2, 3, 0, 5, -1, 9, INT_MIN};
    return bytes_.one_of(kCounts);
  }

  void expect_file(bool allowed, const std::string& file = kFile) {
    if (!allowed) expected_.push_back(file);
  }

  // The target takes a new object, which must have the value and be as roomy as its making says.
  template <class Actual, class Expected>
  void becomes(Slot<Actual, Expected>& target, const Actual& made, const Expected& value) {
    expect_is(made, value);
    target.is = made;
    if constexpr (std::is_same_v<Expected, Dense>) {
      assign(target.expected, value);
    } else {
      target.expected.assign(value.values);
    }
  }

  // --- Matrices: structure ----------------------------------------------------------------------------

  // Alike for the matrix and the model.
  template <class Edit>
  void edit_both(MatrixSlot& slot, Edit edit) {
    expect_file(edit(slot.expected));
    edit(slot.is);
  }

  void resize() {
    MatrixSlot& A = matrix();
    const std::size_t m = extent(), n = extent();
    const bool keep = bytes_.flag();
    edit_both(A, [=](auto& M) { return M.resize(m, n, keep); });
  }

  // One of the edits, by its own function or by the one that takes a flag.
  void edit() {
    MatrixSlot& A = matrix();
    const std::size_t kind = 1 + bytes_.below(reference::Edit::kKinds - 1);
    const bool grows = kind <= 2;
    const std::size_t i = place(A.expected.n_rows()), j = place(A.expected.n_cols());
    const int n = bytes_.rarely(16) && !grows ? INT_MAX : count();
    if (grows && A.expected.size() > kMany) return;
    const reference::Edit change{kind, i, j, n, false};
    edit_both(A, [&](auto& M) { return change.apply(M); });
  }

  void edit_by_flag() {
    MatrixSlot& A = matrix();
    const bool rows = bytes_.flag();
    const std::size_t extent_of_a = rows ? A.expected.n_rows() : A.expected.n_cols();
    const std::size_t i = place(extent_of_a), j = place(extent_of_a);
    const int n = count();
    const std::size_t kind = bytes_.below(4);
    if (kind == 0 && A.expected.size() > kMany) return;
    edit_both(A, [=](auto& M) {
      if (kind == 0) return M.insert(i, n, rows);
      if (kind == 1) return M.remove(i, n, rows);
      if (kind == 2) return M.coilup(i, rows);
      return M.swap(i, j, rows);
    });
  }

  void transposed_copy() {
    MatrixSlot& A = matrix();
    Dense value = with_elements(A.expected.n_rows(), A.expected.n_cols(), A.expected.by_columns());
    value.transpose();
    value.make_room(room_for(value.size()));
    becomes(matrix(), A.is.tr(), value);
  }

  void row_or_column() {
    const MatrixSlot& A = matrix();
    const bool row = bytes_.flag();
    const std::size_t n = row ? A.expected.n_rows() : A.expected.n_cols();
    const std::size_t i = place(n);
    const bool exists = i < n && A.expected.size() > 0;
    expect_file(exists);
    const Values value = !exists ? Values() : row ? A.expected.row(i) : A.expected.col(i);
    becomes(vector(), row ? A.is.row_vec(i) : A.is.col_vec(i), Model(value));
  }

  // --- Matrices: construction and elements ------------------------------------------------------------

  void assign_matrix() {
    const MatrixSlot& from = matrix();
    MatrixSlot& to = matrix();  // may be the same
    to.is = from.is;
    if (&to != &from) assign(to.expected, from.expected);
  }

  void construct_matrix() {
    MatrixSlot& target = matrix();
    const std::size_t m = extent(), n = extent();
    switch (bytes_.below(5)) {
      case 0: {
        const double value = bytes_.number();
        Dense expected(m, n);
        if (value != 0.0) expected.set_diagonal(value, 0);
        return becomes(target, TnLaDblMat(m, n, value), expected);
      }
      case 1: {
        const Values values = bytes_.numbers(m * n);
        return becomes(target, TnLaDblMat(values.data(), m, n), with_elements(m, n, values));
      }
      case 2: {
        const ArraySlot& from = array();
        if (from.expected.values.size() > 4 * kMany) return;
        const std::size_t cols = m == 0 ? 0 : from.expected.values.size() / m;
        const auto end = from.expected.values.begin() + static_cast<std::ptrdiff_t>(m * cols);
        Dense expected = with_elements(m, cols, Values(from.expected.values.begin(), end));
        expected.make_room(room_for(from.expected.values.size()));
        return becomes(target, TnLaDblMat(from.is, m), expected);
      }
      case 3: {
        const VectorSlot& from = vector();
        const bool as_row = bytes_.flag();
        const std::size_t dim = from.expected.values.size();
        const Dense expected = with_elements(as_row ? 1 : dim, as_row ? dim : 1, from.expected.values);
        return becomes(target, TnLaDblMat(from.is, as_row), expected);
      }
      default: {
        const MatrixSlot& from = matrix();
        Dense expected = from.expected;
        expected.make_room(room_for(expected.size()));
        return becomes(target, TnLaDblMat(from.is), expected);
      }
    }
  }

  // From an array, which may be the object's own, and too short.
  template <class Actual>
  void initialize_from(Actual& target, const TnArray<double>& from, Values& expected) {
    const Values values(from.data(), from.data() + from.size());
    expect_file(values.size() >= expected.size());
    for (std::size_t i = 0; i < expected.size(); ++i) {
      expect_file(i < values.size(), kArrayHeader);
      expected[i] = i < values.size() ? values[i] : 0.0;
    }
    target.initialize(from);
  }

  template <class Actual>
  void initialize(Actual& target, Values& expected) {
    switch (bytes_.below(4)) {
      case 0: {
        const double value = bytes_.number();
        target.initialize(value);
        return std::fill(expected.begin(), expected.end(), value);
      }
      case 1:
        expected = bytes_.numbers(expected.size());
        return target.initialize(expected.data());
      case 2:
        return initialize_from(target, bytes_.flag() ? array().is : vector().is.array(), expected);
      default:
        return initialize_from(target, target.array(), expected);
    }
  }

  void initialize_matrix() {
    MatrixSlot& A = matrix();
    Values values = A.expected.by_columns();
    initialize(A.is, values);
    assign(A.expected, with_elements(A.expected.n_rows(), A.expected.n_cols(), values));
  }

  // Also outside the shape, where the array still has a place.
  void element_of_matrix() {
    MatrixSlot& A = matrix();
    const std::size_t m = A.expected.n_rows(), n = A.expected.n_cols();
    const std::size_t i = bytes_.below(m + 2), j = bytes_.below(n + 2);
    const std::size_t at = j * m + i;
    if (at >= A.expected.room()) return;
    expect_file(i < m && j < n, kMatrixHeader);
    expect_file(at < m * n, kArrayHeader);
    if (at < m * n && bytes_.flag()) {
      const double value = bytes_.number();
      A.is(i, j) = value;
      A.expected.at(at % m, at / m) = value;
    } else {
      const TnLaDblMat& constant = A.is;
      EXPECT_SAME(constant(i, j), at < m * n ? A.expected.at(at % m, at / m) : 0.0);
    }
  }

  // --- Matrices: arithmetic ---------------------------------------------------------------------------

  static bool same_filled_shape(const Dense& A, const Dense& B) {
    return A.size() > 0 && A.n_rows() == B.n_rows() && A.n_cols() == B.n_cols();
  }
  static bool can_multiply(const Dense& A, const Dense& B) {
    return A.size() > 0 && B.size() > 0 && A.n_cols() == B.n_rows();
  }
  static Dense product(const Dense& A, const Dense& B) {
    const std::size_t m = A.n_rows(), k = A.n_cols(), n = B.n_cols();
    return with_elements(m, n, reference::product(m, k, n, A.by_columns(), B.by_columns()));
  }

  void sum_of_matrices() {
    MatrixSlot& A = matrix();
    const MatrixSlot& B = matrix();  // may be A
    const bool adds = bytes_.flag();
    const bool fit = same_filled_shape(A.expected, B.expected);
    expect_file(fit);
    const std::size_t m = A.expected.n_rows(), n = A.expected.n_cols();
    Dense value;
    if (fit) value = with_elements(m, n, combined(A.expected.by_columns(), B.expected.by_columns(), adds));
    if (bytes_.flag()) return becomes(matrix(), adds ? A.is + B.is : A.is - B.is, value);
    adds ? A.is += B.is : A.is -= B.is;
    if (fit) assign(A.expected, value);
  }

  void scale_matrix() {
    MatrixSlot& A = matrix();
    const Dense& old = A.expected;
    const bool filled = old.size() > 0;
    const std::size_t kind = bytes_.below(5);
    const bool by_own_element = filled && kind == 4 && bytes_.flag();
    const std::size_t own = by_own_element ? bytes_.below(old.size()) : 0;
    const double given = bytes_.number();
    const double s = kind == 0 ? -1.0 : by_own_element ? old.by_columns()[own] : given;
    expect_file(filled);
    const Dense value =
        filled ? with_elements(old.n_rows(), old.n_cols(), scaled(old.by_columns(), s)) : Dense(0, 1);
    if (kind == 0) return becomes(matrix(), -A.is, value);
    if (kind == 1) return becomes(matrix(), A.is * s, value);
    if (kind == 2) return becomes(matrix(), s * A.is, value);
    A.is *= by_own_element ? A.is.array()[own] : s;
    if (filled) assign(A.expected, value);
  }

  void multiply_matrices() {
    MatrixSlot& A = matrix();
    const MatrixSlot& B = matrix();  // may be A
    MatrixSlot& C = matrix();
    if (A.expected.n_rows() * B.expected.n_cols() > 4 * kMany) return;
    const bool fit = can_multiply(A.expected, B.expected);
    const Dense value = fit ? product(A.expected, B.expected) : Dense();
    expect_file(fit);
    switch (bytes_.below(3)) {
      case 0:
        return becomes(C, A.is * B.is, value);
      case 1:
        A.is *= B.is;
        if (fit) assign(A.expected, value);
        return;
      default:
        if (&C == &A || &C == &B) return expected_.clear();
        tnla_mat_mat_prod(A.is, B.is, C.is);
        return assign(C.expected, fit ? value : Dense(0, 1));
    }
  }

  void multiply_vector() {
    const MatrixSlot& A = matrix();
    VectorSlot& x = vector();
    VectorSlot& y = vector();
    const Values& old = x.expected.values;
    const std::size_t m = A.expected.n_rows(), n = A.expected.n_cols();
    const bool fit = A.expected.size() > 0 && n == old.size();
    Values value;
    if (fit) value = reference::product(m, n, 1, A.expected.by_columns(), old);
    const std::size_t kind = bytes_.below(3);
    if (kind == 2 && &x == &y) return;
    expect_file(fit);
    if (kind == 0) return becomes(y, A.is * x.is, Model(value));
    if (kind == 1) {
      x.is *= A.is;
      if (fit) x.expected.assign(value);
      return;
    }
    tnla_mat_vec_prod(A.is, x.is, y.is);
    y.expected.assign(value);
  }

  void norms() {
    const MatrixSlot& A = matrix();
    const VectorSlot& x = vector();
    const Values elements = A.expected.by_columns();
    expect_file(!elements.empty());
    expect_file(!x.expected.values.empty());
    EXPECT_SAME(A.is.sq_norm(), reference::sq_norm(length(elements), elements.data()));
    EXPECT_SAME(A.is.mx_norm(), reference::mx_norm(elements));
    EXPECT_SAME(x.is.sq_norm(), scalprod(x.expected.values, x.expected.values, false, false));
    EXPECT_SAME(x.is.mx_norm(), reference::mx_norm(x.expected.values));
  }

  // --- Vectors ----------------------------------------------------------------------------------------

  static double scalprod(const Values& x, const Values& y, bool unit_x, bool unit_y) {
    return reference::scalprod(length(x), x.data(), y.data(), unit_x, unit_y);
  }
  static bool same_filled_dim(const VectorSlot& x, const VectorSlot& y) {
    return !x.expected.values.empty() && x.expected.values.size() == y.expected.values.size();
  }

  void construct_vector() {
    VectorSlot& target = vector();
    const int n = bytes_.rarely(16) ? -1 : static_cast<int>(extent());
    const std::size_t size = n < 0 ? 0 : static_cast<std::size_t>(n);
    switch (bytes_.below(4)) {
      case 0: {
        const int k = bytes_.between(-1, 40);
        const double value = bytes_.number();
        Values expected(size, 0.0);
        if (k >= 0 && k < n) expected[static_cast<std::size_t>(k)] = value;
        expect_file(n >= 0);
        return becomes(target, TnLaDblVec(n, k, value), Model(expected));
      }
      case 1: {
        const Values values = bytes_.numbers(size);
        expect_file(n >= 0);
        return becomes(target, TnLaDblVec(values.data(), n), Model(values));
      }
      case 2: {
        const ArraySlot& from = array();
        if (from.expected.values.size() > 4 * kMany) return;
        return becomes(target, TnLaDblVec(from.is), Model(from.expected.values));
      }
      default: {
        const VectorSlot& from = vector();
        return becomes(target, TnLaDblVec(from.is), Model(from.expected.values));
      }
    }
  }

  void change_vector() {
    VectorSlot& x = vector();
    VectorSlot& y = vector();  // may be x
    switch (bytes_.below(4)) {
      case 0:
        x.is = y.is;
        if (&x != &y) x.expected.assign(y.expected.values);
        return;
      case 1: {
        const std::size_t n = extent();
        const bool keep = bytes_.flag();
        x.is.resize(static_cast<int>(n), keep);
        x.expected.set_size(n, keep);
        if (!keep) std::fill(x.expected.values.begin(), x.expected.values.end(), 0.0);
        return;
      }
      case 2:
        return initialize(x.is, x.expected.values);
      default: {
        expect_file(x.expected.values.size() == y.expected.values.size());
        for (std::size_t i = 0; i < x.expected.values.size(); ++i) {
          double none = 0.0;
          std::swap(x.expected.values[i], i < y.expected.values.size() ? y.expected.values[i] : none);
        }
        return x.is.swap(y.is);
      }
    }
  }

  void element_of_vector() {
    VectorSlot& x = vector();
    const std::size_t i = bytes_.below(x.expected.values.size() + 2);
    if (i >= x.expected.room) return;
    expect_file(i < x.expected.values.size(), kArrayHeader);
    const TnLaDblVec& constant = x.is;
    const int at = static_cast<int>(i);
    EXPECT_SAME(constant(at), i < x.expected.values.size() ? x.expected.values[i] : 0.0);
    if (i < x.expected.values.size()) x.is(at) = x.expected.values[i] = bytes_.number();
  }

  void sum_of_vectors() {
    VectorSlot& x = vector();
    const VectorSlot& y = vector();  // may be x
    const bool adds = bytes_.flag();
    const bool fit = same_filled_dim(x, y);
    const Values value = fit ? combined(x.expected.values, y.expected.values, adds) : Values();
    expect_file(fit);
    if (bytes_.flag()) return becomes(vector(), adds ? x.is + y.is : x.is - y.is, Model(value));
    adds ? x.is += y.is : x.is -= y.is;
    if (fit) x.expected.assign(value);
  }

  void scale_vector() {
    VectorSlot& x = vector();
    Values& old = x.expected.values;
    const std::size_t kind = bytes_.below(5);
    const bool by_own_element = !old.empty() && kind == 4 && bytes_.flag();
    const std::size_t own = by_own_element ? bytes_.below(old.size()) : 0;
    const double given = bytes_.number();
    const double s = kind == 0 ? -1.0 : by_own_element ? old[own] : given;
    const Values value = scaled(old, s);
    expect_file(!old.empty());
    if (kind == 0) return becomes(vector(), -x.is, Model(value));
    if (kind == 1) return becomes(vector(), x.is * s, Model(value));
    if (kind == 2) return becomes(vector(), s * x.is, Model(value));
    x.is *= by_own_element ? x.is.array()[own] : s;
    old = value;
  }

  void direction() {
    VectorSlot& x = vector();
    Values value = x.expected.values;
    expect_file(!value.empty());
    switch (bytes_.below(3)) {
      case 0:
        reference::normalize_by_reciprocal(value);
        return becomes(vector(), x.is.dir(), Model(value));
      case 1:
        reference::normalize_by_reciprocal(value);
        x.expected.values = value;
        return x.is.normalize();
      default: {
        Values orthogonal(value.size(), 0.0);
        reference::ortho_vec(length(value), value.data(), orthogonal.data());
        return becomes(vector(), x.is.ort(), Model(orthogonal));
      }
    }
  }

  void combine_vectors() {
    const VectorSlot& x = vector();
    const VectorSlot& y = vector();
    VectorSlot& z = vector();  // may be either, or both
    const bool fit = same_filled_dim(x, y);
    const bool unit_x = bytes_.flag(), unit_y = bytes_.flag();
    expect_file(fit);
    expect_file(fit);
    expect_file(fit);
    const Values& u = x.expected.values;
    const Values& w = y.expected.values;
    EXPECT_SAME(tnla_scalprod(x.is, y.is, unit_x, unit_y), fit ? scalprod(u, w, unit_x, unit_y) : 0.0);
    EXPECT_SAME(x.is % y.is, fit ? scalprod(u, w, false, false) : 0.0);
    const double a = bytes_.number(), b = bytes_.number();
    Values value(fit ? u.size() : 0);
    reference::lincomb(length(value), u.data(), a, w.data(), b, value.data(), false, false, false);
    tnla_lincomb(x.is, a, y.is, b, z.is);
    z.expected.assign(value);
  }

  // --- Arrays -----------------------------------------------------------------------------------------

  void change_array() {
    ArraySlot& a = array();
    // Large enough for growth in steps, now and then.
    const std::size_t n = bytes_.rarely(32) ? 63990 + bytes_.below(9000) : bytes_.below(70);
    const bool keep = bytes_.flag();
    switch (bytes_.below(4)) {
      case 0:
        a.is.set_size(n, keep);
        return a.expected.set_size(n, keep);
      case 1:
        a.is.set_capacity(n, keep);
        expect_file(n >= a.expected.values.size(), kArraySource);
        if (n < a.expected.values.size()) return;
        if (!keep) std::fill(a.expected.values.begin(), a.expected.values.end(), 0.0);
        a.expected.room = n;
        return;
      case 2: {
        const bool from_vector = bytes_.flag();
        const ArraySlot& other = array();  // may be the same
        const Values values = from_vector ? vectors_[0].expected.values : other.expected.values;
        a.is = from_vector ? vectors_[0].is.array() : other.is;
        return a.expected.assign(values);
      }
      default: {
        const TnArray<double> copy(a.is);
        return expect_is(copy, Model(a.expected.values));
      }
    }
  }

  void elements_of_array() {
    ArraySlot& a = array();
    Values& expected = a.expected.values;
    for (std::size_t n = bytes_.below(8); n > 0 && !expected.empty(); --n) {
      const std::size_t i = bytes_.below(expected.size());
      a.is[i] = expected[i] = bytes_.number();
    }
    if (expected.size() >= a.expected.room) return;
    expect_file(false, kArrayHeader);
    EXPECT_SAME(a.is[expected.size()], 0.0);
  }

  // --- Kernels on plain arrays ------------------------------------------------------------------------

  void raw_vectors() { raw::vectors(bytes_); }
  void raw_product() { raw::product(bytes_); }
  void raw_strided_product() { raw::strided_product(bytes_); }

  static constexpr Operation kOperations[] = {&World::resize,
                                              &World::edit,
                                              &World::edit,
                                              &World::edit_by_flag,
                                              &World::transposed_copy,
                                              &World::row_or_column,
                                              &World::assign_matrix,
                                              &World::construct_matrix,
                                              &World::construct_matrix,
                                              &World::initialize_matrix,
                                              &World::element_of_matrix,
                                              &World::sum_of_matrices,
                                              &World::scale_matrix,
                                              &World::multiply_matrices,
                                              &World::multiply_vector,
                                              &World::norms,
                                              &World::construct_vector,
                                              &World::change_vector,
                                              &World::element_of_vector,
                                              &World::sum_of_vectors,
                                              &World::scale_vector,
                                              &World::direction,
                                              &World::combine_vectors,
                                              &World::change_array,
                                              &World::elements_of_array,
                                              &World::raw_vectors,
                                              &World::raw_product,
                                              &World::raw_strided_product};

  Bytes& bytes_;
  MatrixSlot matrices_[3];
  VectorSlot vectors_[3];
  ArraySlot arrays_[2];
  AssertionLog log_;
  Files expected_;
};

}  // namespace

void run(Bytes& bytes) { World(bytes).run(); }
