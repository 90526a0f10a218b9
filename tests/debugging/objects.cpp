// SPDX-License-Identifier: MIT

// One object of each kind, for gdb to show at stop() as session.txt says.

#include <tarntnla.h>

#include <cstring>
#include <iostream>

namespace {

struct Model {
  TnLaDblMat K;
  TnLaDblVec f;
  TnLaHouseholder H;
};

struct Chain : TnLaBlkBndSolver {
  Chain() : TnLaBlkBndSolver(2, 1, 2, 1) {}
  void get_block_equations(int, int first_row, TnLaDblMat& G, int& count,
                           int& first_unknown) const override {
    for (std::size_t i = 0; i < 2; ++i) {
      for (std::size_t j = 0; j < 3; ++j) G(static_cast<std::size_t>(first_row) + i, j) = i == j ? 2 : 0;
    }
    count = 2;
    first_unknown = 0;
  }
  int max_block_equations() const override { return 2; }
};

struct Careful : TnOperationBehaviour {
  int level = 2;
};

// Memory in which no object was made.
template <class T>
const T* nothing() {
  alignas(T) static unsigned char bytes[sizeof(T)];
  std::memset(bytes, 0xab, sizeof bytes);
  return reinterpret_cast<const T*>(bytes);
}

TnLaTSmallMat<2, 2, double> identity() { return {2, 2, 1.0}; }

[[gnu::noinline]] void stop() { std::cout << "stop\n"; }

}  // namespace

int main() {
  const double values[] = {1, 1, 1, 1, 2, 4, 0.5, -3, 1e300};
  const double three_four[] = {3, 4, 0};

  const TnArray<double> none;
  TnArray<int> numbers;
  numbers.set_size(3, false);
  numbers[0] = 7;
  numbers[2] = -2;

  const TnLaDblMat empty(0, 5, 0.0);
  TnLaDblMat A(values, 3, 2);
  const TnLaDblMat* const pointer = &A;
  const TnLaDblMat& reference = A;
  const TnLaDblVec x(values, 3);
  const TnLaDblMat large(500, 400, 1.0);

  const TnLaTSmallMat<1, 1, double> one(1, 1, 5.0);
  TnLaTSmallMat<3, 3, double> S(3, 3, 2.0);
  S(1, 0) = 7;
  const bool same = identity().sq_norm() == 2.0;
  const TnLaTSmallVec<12, double> v;
  const TnLaTSmallVec<2, double> w(three_four, 2);

  double column[] = {3, 4, 0};
  const TnLaHouseholder H(0, 1, 3, column, 1);
  double zeros[] = {0, 0};
  const TnLaHouseholder nothing_to_do(0, 1, 2, zeros, 1);

  const Model model{TnLaDblMat(three_four, 1, 2), TnLaDblVec(), nothing_to_do};
  const TnLaDblMat sum = model.K + model.K;
  const TnLaDblVec row = model.K.row_vec(0);

  TnLaDblMat B(2, 2, 0.5);
  B(0, 0) = 3;
  B(1, 0) = 4;
  B(0, 1) = -0.4;
  B(1, 1) = 0.3;
  const TnLaTQRDecompo<TnLaDblMat> qr(B);
  const TnLaTQRDecompo<TnLaTSmallMat<2, 2, double>> singular(TnLaTSmallMat<2, 2, double>{});

  const TnLaCholesky untouched(2);
  TnLaCholesky given(1);
  given.a(TnLaDblMat(1, 1, 4.0).array());
  const double spd[] = {4, 2, 2, 5};
  TnLaCholesky cholesky(2);
  cholesky.a(TnLaDblMat(spd, 2, 2).array());
  cholesky.b(TnLaDblVec(three_four, 2).array());
  cholesky.x();
  TnLaCholesky indefinite(1);
  indefinite.a(TnLaDblMat(1, 1, -2.0).array());
  indefinite.b(TnLaDblVec(three_four, 1).array());
  indefinite.x();
  const Chain chain;
  const Chain solved;
  TnLaDblMat solution;
  const bool full_rank = solved.solve(solution);

  const TnString text("singular \"A\"");
  const TnToken token("end\n");
  const TnResult fine;
  TnResult failed;
  TnLaErr::make_result(TnResult::CodeID::error, TnLaErr::singular_matrix, failed);
  const Careful careful;
  const TnOperationBehaviour* const behaviour = &careful;
  const TnJournal journal(std::cout);

  const TnArray<double>* const no_array = nothing<TnArray<double>>();
  const TnLaDblMat* const no_matrix = nothing<TnLaDblMat>();
  const TnLaDblVec* const no_vector = nothing<TnLaDblVec>();
  const TnLaHouseholder* const no_reflection = nothing<TnLaHouseholder>();
  const TnLaTQRDecompo<TnLaDblMat>* const no_qr = nothing<TnLaTQRDecompo<TnLaDblMat>>();
  const TnLaCholesky* const no_cholesky = nothing<TnLaCholesky>();
  const TnLaBlkBndSolver* const no_solver = nothing<TnLaBlkBndSolver>();
  const TnOperationBehaviour* const no_behaviour = nothing<TnOperationBehaviour>();
  const TnResult* const no_result = nothing<TnResult>();
  const TnString* const no_text = nothing<TnString>();

  stop();
  return same && full_rank && &reference == pointer ? 0 : 1;
}
