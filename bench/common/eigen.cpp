// SPDX-License-Identifier: MIT

#include <Eigen/Core>

#include "common/peer.h"

std::string bench::version() {
  return "Eigen " + std::to_string(EIGEN_WORLD_VERSION) + "." + std::to_string(EIGEN_MAJOR_VERSION) + "." +
         std::to_string(EIGEN_MINOR_VERSION) + ", " + TNLA_BENCH_FLAGS + ", which uses " +
         Eigen::SimdInstructionSetsInUse();
}
