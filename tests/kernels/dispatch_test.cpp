// SPDX-License-Identifier: MIT

// Which kernel sets a module holds, and which of them it takes on this processor.

#include <gtest/gtest.h>

#include <fstream>
#include <string>
#include <string_view>

#include "kernels/kernel_set.h"

namespace {

using tnla_kernels::best;
using tnla_kernels::kernel_sets;
using tnla_kernels::KernelSetChoice;

bool is_chosen(const KernelSetChoice& choice) {
  return choice.set().product.matrix_vector == best.product.matrix_vector;
}

TEST(KernelDispatch, TheLastSetRunsOnAnyProcessor) {
  EXPECT_EQ(kernel_sets().back().name, std::string_view("portable"));
  EXPECT_TRUE(kernel_sets().back().runs_here());
}

TEST(KernelDispatch, TheFirstSetThatRunsHereIsTaken) {
  bool is_first = true;
  for (const KernelSetChoice& choice : kernel_sets()) {
    if (!choice.runs_here()) continue;
    EXPECT_EQ(is_chosen(choice), is_first) << choice.name;
    is_first = false;
  }
}

#if defined(__x86_64__) && defined(__linux__) && TNLA_AVX2_IS_WANTED

// Whether the system says so, whatever the compiler's own question to the processor says.
bool system_has_avx2() {
  std::ifstream file("/proc/cpuinfo");
  for (std::string word; file >> word;) {
    if (word == "avx2") return true;
  }
  return false;
}

TEST(KernelDispatch, AProcessorWithAvx2RunsTheSetForIt) {
  ASSERT_EQ(kernel_sets().size(), 2u);
  const KernelSetChoice& first = kernel_sets().front();
  EXPECT_EQ(first.name, std::string_view("avx2"));
  EXPECT_EQ(first.runs_here(), system_has_avx2());
  EXPECT_EQ(is_chosen(first), system_has_avx2());
}

#endif

}  // namespace
