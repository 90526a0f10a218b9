// SPDX-License-Identifier: MIT

#pragma once

#if __cplusplus < 201703L
#error "TARNtn and TARNtnla need C++17 or later"
#endif

// Marks what a module shows to others; everything else is hidden.  The build of the module defines
// TARN_tn_EXPORTS, which Windows needs to tell the module from its clients.

#if defined(_WIN32) && defined(TARN_tn_EXPORTS)
#define TN_API __declspec(dllexport)
#elif defined(_WIN32)
#define TN_API __declspec(dllimport)
#elif defined(__GNUC__)
#define TN_API __attribute__((visibility("default")))
#else
#define TN_API
#endif
