// SPDX-License-Identifier: MIT

#pragma once

// TNLA_API marks what the module shows to others; everything else is hidden.  TNLA_HIDDEN takes a private
// member of an exported class out again, which Windows cannot.  The build of the module defines
// TARN_tnla_EXPORTS, which Windows needs to tell the module from its clients.

#if defined(_WIN32) && defined(TARN_tnla_EXPORTS)
#define TNLA_API __declspec(dllexport)
#define TNLA_HIDDEN
#elif defined(_WIN32)
#define TNLA_API __declspec(dllimport)
#define TNLA_HIDDEN
#elif defined(__GNUC__)
#define TNLA_API __attribute__((visibility("default")))
#define TNLA_HIDDEN __attribute__((visibility("hidden")))
#else
#define TNLA_API
#define TNLA_HIDDEN
#endif
