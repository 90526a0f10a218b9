// SPDX-License-Identifier: MIT

#pragma once

#include <gtest/gtest.h>

#include "kernels/kernel_set.h"

// Hands every kernel set that this processor can run to `check`.
template <class Check>
void for_every_kernel_set(const Check& check) {
  int n_run = 0;
  for (const tnla_kernels::KernelSetChoice& choice : tnla_kernels::kernel_sets()) {
    if (!choice.runs_here()) continue;
    SCOPED_TRACE(choice.name);
    check(choice.set());
    ++n_run;
  }
  EXPECT_GE(n_run, 1);
}
