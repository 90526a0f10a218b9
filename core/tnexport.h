#pragma once

#if __cplusplus < 201703L
#error "TARNtn and TARNtnla need C++17 or later"
#endif

// Marks what a module shows to others; everything else is hidden.

#if defined(__GNUC__)
#define TN_API __attribute__((visibility("default")))
#else
#define TN_API
#endif
