// SPDX-License-Identifier: MIT

#pragma once

#include <tarntnla.h>

// What the equations A P = B say about the accuracy of their solution.

struct SingularValues {
  double largest;
  double smallest;
  double condition() const { return largest / smallest; }
};

// As the roots of the eigenvalues of A' A: good for conditions up to about 1e7.
SingularValues singular_values(const TnLaDblMat& A);

// How far two least-squares solutions by reflections may be apart, in the Frobenius norm, if one is P.
double most_difference(const TnLaDblMat& A, const TnLaDblMat& B, const TnLaDblMat& P, double smallest);
