// SPDX-License-Identifier: MIT

#include <gsl/gsl_version.h>

#include "common/peer.h"

std::string bench::version() { return std::string("GSL ") + gsl_version + ", with its own BLAS"; }
