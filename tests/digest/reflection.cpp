// SPDX-License-Identifier: MIT

#include <sstream>

#include "families.h"
#include "placed.h"

// Householder reflections: the free functions and the objects that keep one, on rows and on columns.

namespace {

struct Reflection {
  int j_pivot, j_zero, n;
};

Reflection reflection(Data& data) {
  const std::size_t n = 1 + data.size(1000);
  const std::size_t j_zero = 1 + (data.one_in(2) ? data.below(n) : 0);
  return {static_cast<int>(data.below(j_zero)), static_cast<int>(j_zero), static_cast<int>(n)};
}

// Vectors of n elements as the columns of a block, with a gap between elements and between columns, or as
// its rows.
struct Layout {
  int incr, stride;
};

Layout layout(Data& data, int n, int n_vec) {
  const int gap = data.one_in(2) ? 0 : static_cast<int>(data.below(3));
  if (data.one_in(3)) return {n_vec + gap, 1};
  const int incr = 1 + (data.one_in(3) ? gap : 0);
  return {incr, incr * n + gap};
}

std::size_t extent(const Layout& l, int n, int n_vec) {
  const int last = l.incr * n + l.stride * n_vec;
  return static_cast<std::size_t>(last) + 1;
}

void free_functions(Data& data, Digest& digest) {
  const Reflection h = reflection(data);
  const auto n_vec = static_cast<int>(data.below(h.n > 100 ? 3 : 20));
  const Layout of_v = layout(data, h.n, 1);
  const Layout of_c = layout(data, h.n, n_vec);
  Placed v(data.numbers(extent(of_v, h.n, 1)));
  Placed c(data.numbers(extent(of_c, h.n, n_vec)));
  double up = data.number();
  tnla_h1(h.j_pivot, h.j_zero, h.n, v.data(), of_v.incr, up);
  digest.add(v.data(), v.size());
  digest.add(up);
  tnla_h2(h.j_pivot, h.j_zero, h.n, v.data(), of_v.incr, up, c.data(), of_c.incr, of_c.stride, n_vec);
  digest.add(c.data(), c.size());
}

void objects(Data& data, Digest& digest) {
  Reflection h = reflection(data);
  const Layout of_v = layout(data, h.n, 3);
  Placed v(data.numbers(extent(of_v, h.n, 3)));
  if (data.one_in(40)) h.j_pivot = data.one_in(2) ? -1 : h.n;  // asserted
  const TnLaHouseholder H(h.j_pivot, h.j_zero, h.n, v.data(), of_v.incr);
  digest.add(v.data(), v.size());
  TnLaHouseholder copy(H);
  for (int k = 1; k < 3; ++k) {
    copy.apply(v.data() + k * of_v.stride, of_v.incr);
    digest.add(v.data(), v.size());
  }
  // The elements of plain data are finite, and so is what is printed.
  if (data.kind() == Kind::plain && h.n <= 20) {
    std::ostringstream stream;
    TnJournal journal(stream);
    H.debug(journal, static_cast<int>(data.below(4)));
    digest.add(stream.str());
  }
  std::vector<double> w = data.numbers(5);
  copy = TnLaHouseholder(1, 2, 5, w.data(), 1);
  copy.apply(w.data(), 1);
  digest.add(w);
}

}  // namespace

void reflection_round(Data& data, Digest& digest) {
  free_functions(data, digest);
  free_functions(data, digest);
  objects(data, digest);
  objects(data, digest);
}
