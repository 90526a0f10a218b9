// SPDX-License-Identifier: MIT

#include "common/peer.h"

std::string bench::version() { return "the obvious loops, with the library's own flags"; }
