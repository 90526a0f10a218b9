// SPDX-License-Identifier: MIT

#pragma once

#include "tnla_export.h"
#include "tnstring.h"

// The package that this library is.
class TNLA_API TnLa {
 public:
  // The identifier "TnLa".  The string lives as long as the module is loaded; never null.
  static const TnString* package_id();
};
