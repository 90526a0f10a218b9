// SPDX-License-Identifier: MIT

#pragma once

#include "tnla_export.h"
#include "tnresult.h"

// The library's error numbers.
//
// The library itself never files a result: its failures come back as a bool, a rank or a flag.  The
// numbers are for client modules that have such a failure to report:
//
//     if (!tnla_linearsolve(A, B, X)) TnLaErr::make_result(TnResult::CodeID::error,
//                                                          TnLaErr::singular_matrix, result);
//
// A result that was filed here is valid while this module is loaded.  Nothing here allocates.
class TNLA_API TnLaErr {
 public:
  // 0 to 15 are the core library's numbers.
  enum ErrorNumber : int {
    unknown_error = -1,    // "Unknown error."
    la_error_base = 16,    // ""
    singular_matrix = 17,  // "Singular matrix found."
    singular_factor = 18,  // "Decomposition contains singular factor."
  };

  // Files `number` in `result`, under this library's package.  The number is not validated.
  static void make_result(TnResult::CodeID code, ErrorNumber number, TnResult& result);

  // The number filed in `result`; -1 where there is none.  Asserted: it lies in -1 to 18, and a number
  // of this library is filed under this library's package; otherwise -1.
  static ErrorNumber error_number(const TnResult& result);

 protected:
  // The text of a number that error_number would accept; any other is asserted as there, and gives the
  // text of -1.
  static const char* translate_error_number(const TnString* const& package, int number);
};
