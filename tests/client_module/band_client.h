#pragma once

#include "tnla_export.h"
#include "tnlablkbndsolver_i.h"

// A client's module, which shows functions that make solvers and keeps the derived classes to itself.

// n numbers, each one more than the one before, and x(0) + x(n-1) = n - 1.  The caller deletes it.
TNLA_API TnLaBlkBndSolver* band_client_closed_chain(int n);

// Throws std::out_of_range when it is asked for the second block.
TNLA_API TnLaBlkBndSolver* band_client_broken_chain();
