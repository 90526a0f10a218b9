// SPDX-License-Identifier: MIT

#pragma once

#include <cstddef>

// Lengths, positions and increments of the kernels: signed, so that increments may be negative and
// loops may count down.
namespace tnla_kernels {
using Index = std::ptrdiff_t;
}
