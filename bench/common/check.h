// SPDX-License-Identifier: MIT

#pragma once

#include <cstddef>
#include <vector>

// How wrong an answer is, in units of what rounding can explain.  All matrices are column by column.
namespace bench {

constexpr double kEpsilon = 0x1p-53;

// The larger one; NaN if one of them is.
double worse(double a, double b);

// The Euclidean length of all elements.
double length(const std::vector<double>& x);

// The n x m transpose of an m x n A.
std::vector<double> transposed(int m, int n, const std::vector<double>& a);

// C = A B for an m x n A and p columns of B.
std::vector<double> multiply(int m, int n, int p, const double* a, const double* b);

// The residual of A X = B, for p columns: the largest over the columns of
//     |A x - b| / (eps |A| |x| + eps |b|) / (10 max(m, n)),
// because a backward stable solver commits a backward error of a small multiple of max(m, n) eps.
double residual(int m, int n, int p, const double* a, const double* x, const double* b);

// max |x - y| / (limit max |y|).
double distance(std::size_t n, const double* x, const double* y, double limit);

}  // namespace bench
