// SPDX-License-Identifier: MIT

#include "regression.h"

#include <algorithm>
#include <cmath>

namespace {

// The tolerance of the rank-revealing solve: the library's own for under-determined systems.
constexpr double kTolerance = 1e-13;

// Certified values have 15 digits.
constexpr double kMostDigits = 15.0;

// x^k, rounded once.  The product is carried along as an unevaluated sum high + low of about 106 bits;
// with plain double products, the rounding of the powers would cost the high-degree fits a digit.
double power(double x, int k) {
  double high = 1.0;
  double low = 0.0;
  for (int i = 0; i < k; ++i) {
    const double product = high * x;
    const double error = std::fma(high, x, -product);  // exact
    const double tail = error + low * x;
    high = product + tail;
    low = tail - (high - product);
  }
  return high;
}

TnLaDblMat design_matrix(const DataSet& data) {
  TnLaDblMat A(data.n_observations(), data.terms.size(), 0.0);
  for (std::size_t j = 0; j < data.terms.size(); ++j) {
    const Term& term = data.terms[j];
    for (std::size_t i = 0; i < data.n_observations(); ++i) {
      A(i, j) = power(data.predictors[term.predictor][i], term.degree);
    }
  }
  return A;
}

}  // namespace

Fit fit(const DataSet& data) {
  const TnLaDblMat A = design_matrix(data);
  const TnLaDblMat y(data.response.data(), data.n_observations(), 1);

  Fit result{};
  result.by_qr = tnla_linearsolve(A, y, result.coefficients);
  result.rank = static_cast<int>(A.n_cols());
  if (!result.by_qr) tnla_linearsolve(A, y, result.coefficients, kTolerance, &result.rank);

  const TnLaDblMat residual = y - A * result.coefficients;
  const double freedom = static_cast<double>(A.n_rows() - A.n_cols());
  result.residual_sd = std::sqrt(residual.sq_norm() / freedom);
  return result;
}

double correct_digits(double computed, double truth) {
  const double error = truth == 0.0 ? std::fabs(computed) : std::fabs(computed - truth) / std::fabs(truth);
  if (error == 0.0) return kMostDigits;
  if (std::isnan(error)) return 0.0;
  return std::min(kMostDigits, -std::log10(error));
}
