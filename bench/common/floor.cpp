// SPDX-License-Identifier: MIT

#include "common/peer.h"

std::string bench::version() { return "one addition after the other, each waiting for the one before"; }
