// SPDX-License-Identifier: MIT

#include <sstream>

#include "families.h"
#include "sums.h"

// Element-wise arithmetic, norms and printing of dense matrices and vectors.

namespace {

// Now and then of another shape, which is asserted.
TnLaDblMat partner(Data& data, const TnLaDblMat& A) {
  return data.one_in(20) ? data.leftover() : data.matrix(A.n_rows(), A.n_cols());
}

void matrices(Data& data, Digest& digest) {
  const std::size_t m = data.size();
  TnLaDblMat A = data.matrix(m, data.short_size());
  const TnLaDblMat B = partner(data, A);
  const double s = data.number();
  add_sums(digest, A, B, s);
  digest.add(A.sq_norm());
  digest.add(A.mx_norm());
  add_updates(digest, A, B, s);
  if (!A.empty()) {  // by an element of its own, and by itself
    const std::size_t i = data.below(A.n_rows());
    A *= A(i, data.below(A.n_cols()));
    digest.add(A);
    A += A;
    digest.add(A);
  }
}

void vectors(Data& data, Digest& digest) {
  TnLaDblVec x = data.vector(data.size(1000));
  const TnLaDblVec y = data.one_in(20) ? data.vector(2) : data.vector(x.array().size());
  const double a = data.number();
  const double b = data.number();
  add_sums(digest, x, y, a);
  digest.add(x % y);
  digest.add(x.sq_norm());
  digest.add(x.mx_norm());
  digest.add(x.dir());
  digest.add(x.ort());
  const bool unit_x = data.one_in(2);
  digest.add(tnla_scalprod(x, y, unit_x, data.one_in(2)));
  TnLaDblVec z = data.vector(data.below(4));
  tnla_lincomb(x, a, y, b, z);
  digest.add(z);
  tnla_lincomb(y, b, x, a, x);
  digest.add(x);
  add_updates(digest, x, y, b);
  if (!x.empty()) x *= x(static_cast<int>(data.below(x.array().size())));
  digest.add(x);
  x.normalize();
  digest.add(x);
}

// What data holds, not what was computed: the sign of a computed NaN is nobody's promise, but is printed.
void printed(Data& data, Digest& digest) {
  std::ostringstream stream;
  TnJournal journal(stream);
  const int digits = data.one_in(16) ? -10 : static_cast<int>(data.below(18));
  const int indent = static_cast<int>(data.below(8));
  const std::size_t m = data.below(6);
  const std::size_t n = data.below(12);
  const bool names_rows = data.one_in(2);
  TnLaDblMat(data.numbers(m * n).data(), m, n).debug(journal, digits, names_rows, indent);
  data.vector(n).debug(journal, digits, indent);
  digest.add(stream.str());
}

}  // namespace

void arithmetic_round(Data& data, Digest& digest) {
  matrices(data, digest);
  vectors(data, digest);
  printed(data, digest);
}
