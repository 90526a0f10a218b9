// SPDX-License-Identifier: MIT

#include "tnassert.h"

TnAssertionHandler kit_assertion_handler = nullptr;
