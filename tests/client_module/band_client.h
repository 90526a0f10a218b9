// SPDX-License-Identifier: MIT

#pragma once

#include "tnlablkbndsolver_i.h"

// A client's module, which shows functions that make solvers and keeps the derived classes to itself.

#if defined(_WIN32) && defined(band_client_EXPORTS)
#define BAND_CLIENT_API __declspec(dllexport)
#elif defined(_WIN32)
#define BAND_CLIENT_API __declspec(dllimport)
#else
#define BAND_CLIENT_API __attribute__((visibility("default")))
#endif

// n numbers, each one more than the one before, and x(0) + x(n-1) = n - 1.  The caller deletes it.
BAND_CLIENT_API TnLaBlkBndSolver* band_client_closed_chain(int n);

// Throws std::out_of_range when it is asked for the second block.
BAND_CLIENT_API TnLaBlkBndSolver* band_client_broken_chain();
