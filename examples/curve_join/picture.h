// SPDX-License-Identifier: MIT

#pragma once

#include <tarntnla.h>

#include <string>

// The spiral in its two pieces, with a dot at each step of the parameter: as they come, and with the second
// piece replaced by the Taylor cubic of the adapted jet.
void draw_join(const TnLaDblMat& adapted, const std::string& path);
