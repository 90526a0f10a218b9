// SPDX-License-Identifier: MIT

// Solves 2 x + y = 5, x + 3 y = 10 with a dense and with a small matrix.

#include <tarntnla.h>

#include <cmath>
#include <cstdio>

namespace {

template <class M>
bool solves(M A, M B) {
  A(0, 0) = 2.0;
  A(0, 1) = A(1, 0) = 1.0;
  A(1, 1) = 3.0;
  B(0, 0) = 5.0;
  B(1, 0) = 10.0;
  M X;
  return tnla_linearsolve(A, B, X) && std::fabs(X(0, 0) - 1.0) < 1e-14 && std::fabs(X(1, 0) - 3.0) < 1e-14;
}

}  // namespace

int main() {
  using Small = TnLaTSmallMat<2, 2, double>;
  const bool ok = solves(TnLaDblMat(2, 2, 0.0), TnLaDblMat(2, 1, 0.0)) && solves(Small(), Small());
  std::puts(ok ? "solved" : "WRONG");
  return ok ? 0 : 1;
}
