#pragma once

// Marks what a module shows to others; everything else is hidden.

#if defined(__GNUC__)
#define TN_API __attribute__((visibility("default")))
#else
#define TN_API
#endif
