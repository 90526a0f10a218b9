// SPDX-License-Identifier: MIT

#pragma once

#include <tarntnla.h>

#include <string>

#include "common/text_file.h"

// A symmetric matrix from a file in Matrix Market form:
//
//     %%MatrixMarket matrix coordinate real symmetric
//     % comments
//     n n entries
//     i j value            an entry of the lower triangle, 1 <= j <= i <= n, each at most once
//
// The result has both triangles; what is not listed is 0.  Anything else is a DataError.
TnLaDblMat read_symmetric_matrix(const std::string& path);
