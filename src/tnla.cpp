// SPDX-License-Identifier: MIT

#include "tnla_i.h"

namespace {
const TnString package_name("TnLa");
}

const TnString* TnLa::package_id() { return &package_name; }
