// SPDX-License-Identifier: MIT

#pragma once

#include <tarntnla.h>

#include <array>
#include <cfloat>

// The inertia of a cloud of points, one a row of an n x 3 matrix in mm.  A mass of 1 kg is spread evenly
// over them, so that the moments are in kg mm^2.
struct Inertia {
  std::array<double, 3> centre;
  TnLaDblMat centred;  // the cloud, seen from there
  TnLaDblMat tensor;   // about the centre: the mean of q.q I - q q' over the points q of `centred`
};

Inertia inertia(const TnLaDblMat& cloud);

// By what rounding can change the tensor, in the Frobenius norm.
double rounding_of_tensor(const TnLaDblMat& cloud);

struct PrincipalAxes {
  TnArray<double> moments;  // in decreasing order
  TnLaDblMat axes;          // one a column: a right-handed triad
};

// False if the iteration does not converge.
bool principal_axes(const TnLaDblMat& tensor, PrincipalAxes& result);

// By what rounding can change moments and axes, relative to the norms of the tensor and of the axes: at
// most 50 sweeps of three rotations, each of which rounds what it touches less than ten times.
inline constexpr double kRoundingOfAxes = 50.0 * 3.0 * 10.0 * DBL_EPSILON / 2.0;
