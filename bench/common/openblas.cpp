// SPDX-License-Identifier: MIT

#include <cblas.h>

#include "common/peer.h"

std::string bench::version() {
  openblas_set_num_threads(1);
  const std::string text = openblas_get_config();
  return text.substr(0, text.find(' ', text.find(' ') + 1)) + ", kernels for " + openblas_get_corename() +
         ", one thread";
}
