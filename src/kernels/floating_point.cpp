// SPDX-License-Identifier: MIT

#include <cfloat>
#include <limits>

// What the kernels rely on; a build that breaks it must not happen.

static_assert(std::numeric_limits<double>::is_iec559 && std::numeric_limits<double>::digits == 53,
              "double is IEEE 754 binary64");
static_assert(FLT_EVAL_METHOD == 0,
              "double expressions are rounded to double at every step; on x86 build with SSE2");

#if defined(__FAST_MATH__) || defined(__ASSOCIATIVE_MATH__) || defined(__RECIPROCAL_MATH__) || \
    defined(__NO_SIGNED_ZEROS__) || (defined(__FINITE_MATH_ONLY__) && __FINITE_MATH_ONLY__ > 0)
#error "the order and rounding of every operation is fixed: build without -ffast-math and its parts"
#endif
