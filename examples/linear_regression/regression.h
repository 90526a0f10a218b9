// SPDX-License-Identifier: MIT

#pragma once

#include <tarntnla.h>

#include "data_set.h"

// y = A c + e: the least-squares fit of a data set's model.
struct Fit {
  TnLaDblMat coefficients;  // c, one column
  bool by_qr;               // false: the QR decomposition refused A, the rank-revealing solve answered
  int rank;
  double residual_sd;  // sqrt(|y - A c|^2 / (observations - coefficients))
};

Fit fit(const DataSet& data);

// The number of digits in which a computed value agrees with the true one: the negative logarithm of the
// relative error (of the absolute one if the true value is 0), at most 15; 0 for a NaN.
double correct_digits(double computed, double truth);
