// SPDX-License-Identifier: MIT

#pragma once

#include <gtest/gtest.h>

#include "bytes.h"

// What a target of the fuzzer does with an input: calls of the library, held against a plain model by the
// checks of GoogleTest.  A check that fails ends the process.
void run(Bytes& bytes);
