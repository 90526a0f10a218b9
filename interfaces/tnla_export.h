#pragma once

// TNLA_API marks what the module shows to others; everything else is hidden.  TNLA_HIDDEN takes a private
// member of an exported class out again.

#if defined(__GNUC__)
#define TNLA_API __attribute__((visibility("default")))
#define TNLA_HIDDEN __attribute__((visibility("hidden")))
#else
#define TNLA_API
#define TNLA_HIDDEN
#endif
