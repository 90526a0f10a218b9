// SPDX-License-Identifier: MIT

#include <sstream>

#include "dimensions.h"
#include "families.h"
#include "sums.h"

// Arithmetic, editing and printing of the small types, all twelve in each round.

namespace {

struct Arithmetic {
  Data& data;
  Digest& digest;

  template <int N>
  void run() {
    vectors<N>();
    matrices<N>();
  }

  template <int N>
  TnLaTSmallVec<N, double> vector() {
    return TnLaTSmallVec<N, double>(data.numbers(N).data(), N);
  }

  template <int N>
  void vectors() {
    using Vec = TnLaTSmallVec<N, double>;
    Vec x = vector<N>();
    Vec y(data.array(data.one_in(8) ? N + 1 : N));
    const double s = data.number();
    add_sums(digest, x, y, s);
    digest.add(x % y);
    digest.add(x.sq_norm());
    digest.add(x.mx_norm());
    digest.add(x.dir());
    digest.add(x.ort());
    std::ostringstream stream;
    TnJournal journal(stream);
    x.debug(journal, static_cast<int>(data.below(18)), 1);
    digest.add(stream.str());
    add_updates(digest, x, y, s);
    x.normalize();
    digest.add(x);
    x.swap(y);
    x.resize(data.one_in(8) ? N + 1 : N, true);
    digest.add(x);
    x.initialize(s);
    y.initialize(data.numbers(N).data());
    x(static_cast<int>(data.below(N))) = y(N - 1);
    y(0) = x(N - 1);
    digest.add(x);
    digest.add(y);
    y.initialize(x);
    digest.add(y);
  }

  template <int N>
  void matrices() {
    constexpr std::size_t n = N;
    using Mat = TnLaTSmallMat<n, n, double>;
    Mat A = data.small_matrix<n>();
    const Mat B = data.small_matrix<n>();
    const double s = data.number();
    digest.add(A * vector<N>());
    add_sums(digest, A, B, s);
    digest.add(A.sq_norm());
    digest.add(A.mx_norm());
    add_updates(digest, A, B, s);

    A = B;
    const std::size_t i = data.below(n + 1);
    const std::size_t j = data.below(n + 1);
    digest.add(A.row_vec(i));
    digest.add(A.col_vec(j));
    A.set_diagonal(s, static_cast<int>(data.below(2 * n + 1)) - N);
    A.swap_rows(i, data.below(n));
    A.swap_cols(j, data.below(n));
    const bool flag = data.one_in(2);
    A.swap(i, data.below(n), flag);
    A.resize(i, j, true);
    A.insert_rows(i, 2);
    A.remove_cols(j, 1);
    digest.add(A);
    std::ostringstream stream;
    TnJournal journal(stream);
    A.debug(journal, static_cast<int>(data.below(18)), flag, 2);
    digest.add(stream.str());
    A = vector<N>();
    digest.add(A);
    digest.add(Mat(n, data.one_in(8) ? i : n, s));
    digest.add(Mat());
  }
};

}  // namespace

void small_round(Data& data, Digest& digest) { for_every_dimension(Arithmetic{data, digest}); }
