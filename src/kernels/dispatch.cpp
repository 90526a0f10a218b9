// SPDX-License-Identifier: MIT

#include "kernel_set.h"

// Which processor runs which kernel set.
namespace tnla_kernels {

namespace portable {
KernelSet kernel_set();
}
#ifdef TNLA_WITH_AVX2
namespace avx2 {
KernelSet kernel_set();
}
#endif

namespace {

constexpr KernelSetChoice kSets[] = {
#ifdef TNLA_WITH_AVX2
    {"avx2", [] { return __builtin_cpu_supports("avx2") != 0; }, avx2::kernel_set},
#endif
    {"portable", [] { return true; }, portable::kernel_set},
};

KernelSet best_set() {
  const KernelSetChoice* choice = kSets;
  while (!choice->runs_here()) ++choice;  // the last one runs anywhere
  return choice->set();
}

}  // namespace

std::span<const KernelSetChoice> kernel_sets() { return kSets; }

const KernelSet best = best_set();

}  // namespace tnla_kernels
