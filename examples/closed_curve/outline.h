// SPDX-License-Identifier: MIT

#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "common/drawing.h"

// Six points for each control point leave enough over to average the noise.  Twelve control points are the
// fewest that the solver eliminates one by one.
inline constexpr std::size_t kPointsPerControl = 6;
inline constexpr std::size_t kFewestControl = 12;

// The points of an outline: one "x y" a line, in mm, at least 72 and at most 20000 of them.  The polygon
// through them is 1 to 1e9 mm long.  Throws DataError otherwise.
std::vector<Point> read_outline(const std::string& path);
