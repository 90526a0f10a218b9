// SPDX-License-Identifier: MIT

#pragma once

#include <tarntnla.h>

#include <string>

// A cloud of points, one "x y z" a line, in mm: at least three of them, and none with a coordinate beyond
// 1e9.  They become the rows of the matrix.  Throws DataError otherwise.
TnLaDblMat read_cloud(const std::string& path);
