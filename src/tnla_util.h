// SPDX-License-Identifier: MIT

#pragma once

#include "kernels/index.h"

// x . x with the zero rule of tnla_sq_norm, for any length.
double tnla_sq_length(tnla_kernels::Index n, const double* x);
