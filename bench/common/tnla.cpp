// SPDX-License-Identifier: MIT

#include "common/peer.h"

std::string bench::version() { return "this library"; }
