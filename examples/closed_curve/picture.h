// SPDX-License-Identifier: MIT

#pragma once

#include <string>
#include <vector>

#include "closed_curve.h"

// The points, the curve, its control polygon and the residuals; inside the outline, where there is room,
// the seam under a lens.
void draw_fit(const std::string& path, const std::vector<Point>& points, const std::vector<Place>& places,
              const ClosedCurve& curve);
