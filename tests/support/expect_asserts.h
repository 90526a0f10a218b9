// SPDX-License-Identifier: MIT

#pragma once

#include <gtest/gtest.h>

#include "support/assertions.h"

// Runs `call`, which contains the expectations, with a handler whose calls must be `files`, and then
// without: no result depends on being checked.
template <class F>
void expect_asserts(const Files& files, const F& call) {
  {
    const AssertionLog log;
    call();
    EXPECT_EQ(log.files(), files);
  }
  call();
}
